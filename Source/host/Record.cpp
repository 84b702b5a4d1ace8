#include "host/Record.h"

#include <algorithm>
#include <cstring>

namespace keladjust {

std::optional<_AdjustParam> readRecord(const _AdjustParam* record, std::size_t bytes) {
    if (record == nullptr) return {};
    const auto* const given = reinterpret_cast<const unsigned char*>(record);
    for (std::size_t i = sizeof *record; i < bytes; ++i) {
        if (given[i] != 0) return {};
    }
    _AdjustParam read{};
    read.temperature = 11500;
    const std::size_t slots = std::min(bytes, sizeof read) / 4;
    std::memcpy(&read, given, 4 * slots);
    return read;
}

_AdjustParam recordByValue(const _AdjustParam& passed) {
    constexpr std::size_t slotsEverPassed = 65;  // more only under another name of the library
    return *readRecord(&passed, 4 * slotsEverPassed);
}

}  // namespace keladjust
