#ifndef KELADJUST_WALKS_BYTERAMP_H
#define KELADJUST_WALKS_BYTERAMP_H

#include <algorithm>
#include <cstdint>
#include <optional>

#include "arithmetic/Rounding.h"
#include "walks/ByteScale.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// A byte table that is flat up to a byte and rises from there with one slope, until it is flat
/// again at 255: what gains, offsets and contrasts make. Computing it takes a vector a third of the
/// steps that looking it up takes.
struct ByteRamp {
    std::uint8_t low = 0;   ///< the last byte that is mapped to `base`
    std::uint8_t base = 0;  ///< what the table begins with
    ByteScale slope;

    std::uint8_t operator()(std::uint8_t in) const {
        const auto way = static_cast<std::uint8_t>(std::max(in, low) - low);
        return clampToByte(std::int32_t{base} + slope(way));
    }
};

/// The ramp that holds for every byte what the table holds, if there is one.
inline std::optional<ByteRamp> byteRampOf(const ByteTable& table) {
    const std::uint8_t base = table[0];
    const auto leaves = std::find_if(table.begin(), table.end(),
                                     [base](std::uint8_t value) { return value != base; });
    if (leaves == table.end()) return {};
    // A slope below 1 begins with a few equal values of its own.
    const auto flat = static_cast<std::uint8_t>(leaves - table.begin() - 1);
    for (const std::uint8_t low : {std::uint8_t{0}, flat}) {
        ByteTable risen{};
        for (unsigned in = low; in < table.size(); ++in) {
            risen[in - low] = clampToByte(std::int32_t{table[in]} - base);
        }
        const ByteRamp ramp{low, base, leastScaleFor(risen)};
        if (givesTable(ramp, table)) return ramp;
    }
    return {};
}

}  // namespace keladjust

#endif
