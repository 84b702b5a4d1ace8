// Each stage that looks at neighbours, at positions or at the whole picture. "Map kept" is a lens
// stage whose peer finds the map of the call before; "new map" one whose setting has changed.

#include <keladjust/keladjust.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::plainly;
using keladjust::bench::Work;

constexpr float lens = 20;
constexpr float otherLens = 21;

/// Takes two settings in turn, so that nothing fits that a stage may keep from the call before.
template <auto stage>
Work inTurn(CxImage&) {
    return {[setting = lens](CxImage& i) mutable {
        setting = setting == lens ? otherLens : lens;
        stage(&i, setting);
    }};
}

auto stackBlurOf(int radius) {
    return plainly([radius](CxImage& i) {
        stackBlur(i.GetBits(), static_cast<int>(i.GetWidth()), static_cast<int>(i.GetHeight()), 4,
                  radius);
    });
}

/// Takes the first bytes of the picture for a map.
Work meanFilter(CxImage& like) {
    return {[means = std::vector<std::uint8_t>(std::size_t{like.GetWidth()} * like.GetHeight())](
                CxImage& i) mutable {
        meanFilter15(i.GetBits(), means.data(), static_cast<int>(i.GetWidth()),
                     static_cast<int>(i.GetHeight()));
    }};
}

const bool added = addRows(
    "library",
    {
        {"blur, radius 1", stackBlurOf(1)},
        {"blur, radius 50", stackBlurOf(50)},
        {"clarity", plainly([](CxImage& i) { clarity(&i, 100); })},
        {"sharpen", plainly([](CxImage& i) { sharpen(&i, 80); })},
        {"dehaze", plainly([](CxImage& i) { dehaze(&i, 50); })},
        {"15 x 15 mean", meanFilter},
        {"diffuse", plainly([](CxImage& i) { diffuse(&i, 50); })},
        {"vignette", plainly([](CxImage& i) { vignetteAdjustFilter(&i, -50, 50, 70, 50, 0, 20); })},
        {"distortion, map kept", plainly([](CxImage& i) { distortFilter(&i, lens); })},
        {"distortion, new map", inTurn<distortFilter>},
        {"fringing, maps kept", plainly([](CxImage& i) { fringingFilter(&i, lens); })},
        {"fringing, new maps", inTurn<fringingFilter>},
        {"grain", plainly([](CxImage& i) { addNoiseFilter(&i, 30, 50); })},
        {"white balance", plainly([](CxImage& i) { whiteBalanceAdjustment(&i, 50); })},
        {"denoise", plainly([](CxImage& i) { deNoiseRGB(&i, 100.0f / 3); })},  // a level of 5
        {"denoise luminance", plainly([](CxImage& i) { deNoiseLumiance(&i, 100.0f / 3); })},
    });

}  // namespace
