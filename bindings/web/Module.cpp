// What the package's JavaScript calls beside the library's own functions.

#include <keladjust/CxImage.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "text/NearestName.h"

extern "C" {

/// JavaScript's own: as KeladjustRun::progress.
__attribute__((import_module("keladjust"), import_name("progress"))) std::int32_t progressOfHost(
    float share);

namespace {

enum Outcome : std::int32_t { done, cancelled, outOfMemory };

std::int32_t passProgress(void*, float share) {
    return progressOfHost(share);
}

}  // namespace

/// Adjusts a picture and says whether every stage had the memory it needs, of which the library
/// itself only leaves word.
__attribute__((export_name("adjustPicture"))) std::int32_t adjustPicture(
    std::uint8_t* bits, std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel,
    _ImagePixelFormat format, const _AdjustParam* record, std::int32_t tellsProgress) {
    CxImage image(&bits, width, height, bitsPerPixel, format);
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = KELADJUST_CPU;
    if (tellsProgress != 0) run.progress = passProgress;
    errno = 0;
    const KeladjustResult result = keladjustRun(&image, record, sizeof *record, &run);
    if (result == KELADJUST_CANCELLED) return cancelled;
    // Nothing but memory can be missing: picture, record and path are what the library asks for.
    return result == KELADJUST_REFUSED || errno == ENOMEM ? outOfMemory : done;
}

/// The setting's name that a wrong one is nearest to, or null.
__attribute__((export_name("nearestSetting"))) const char* nearestSetting(const char* wrong,
                                                                          std::size_t length) {
    int count = 0;
    const KeladjustSetting* const settings = keladjustSettings(&count);
    const std::vector<std::string> names = [&] {
        std::vector<std::string> all;
        for (int i = 0; i < count; ++i) all.emplace_back(settings[i].name);
        return all;
    }();
    const auto nearest = keladjust::app::nearestName({wrong, length}, names);
    if (!nearest) return nullptr;
    for (int i = 0; i < count; ++i) {
        if (*nearest == settings[i].name) return settings[i].name;
    }
    return nullptr;
}
}
