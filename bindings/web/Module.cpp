// What the package's JavaScript calls beside the library's own functions.

#include <keladjust/CxImage.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "host/Pipeline.h"
#include "text/CubeText.h"
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

/// True if the settings do nothing to any picture.
__attribute__((export_name("leavesPicturesAlone"))) std::int32_t leavesPicturesAlone(
    const _AdjustParam* record) {
    return keladjust::leavesPicturesAlone(*record) ? 1 : 0;
}

/// True if a picture of this shape can as well be adjusted a few rows at a time.
__attribute__((export_name("rowsStandAlone"))) std::int32_t rowsStandAlone(
    std::uint8_t* row, std::uint32_t width, std::uint32_t bitsPerPixel, _ImagePixelFormat format,
    const _AdjustParam* record) {
    CxImage image(&row, width, 1, bitsPerPixel, format);
    return keladjust::rowsStandAlone(image, *record) ? 1 : 0;
}

/// The setting's name that a wrong one is nearest to, or null.
__attribute__((export_name("nearestSetting"))) const char* nearestSetting(const char* wrong,
                                                                          std::size_t length) {
    int count = 0;
    const KeladjustSetting* const settings = keladjustSettings(&count);
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.emplace_back(settings[i].name);
    const auto nearest = keladjust::app::nearestName({wrong, length}, names);
    if (!nearest) return nullptr;
    for (int i = 0; i < count; ++i) {
        if (*nearest == settings[i].name) return settings[i].name;
    }
    return nullptr;
}

/// The text of a cube file, for free(), and its length; null if memory is short.
__attribute__((export_name("cubeFile"))) char* cubeFile(const float* points, std::int32_t dimension,
                                                        std::int32_t redFastest,
                                                        std::size_t* length) {
    using keladjust::app::CubeOrder;
    try {
        const std::size_t edge = static_cast<std::size_t>(dimension);
        const std::string text = keladjust::app::cubeText(
            {points, 3 * edge * edge * edge}, dimension,
            redFastest != 0 ? CubeOrder::redFastest : CubeOrder::blueFastest);
        auto* const copy = static_cast<char*>(std::malloc(text.size()));
        if (copy == nullptr) return nullptr;
        std::memcpy(copy, text.data(), text.size());
        *length = text.size();
        return copy;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
}
