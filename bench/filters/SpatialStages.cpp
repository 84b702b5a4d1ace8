// Each stage that looks at neighbours, at positions or at the whole picture. "Map kept" is a lens
// stage whose peer finds the map of the call before; "new map" one whose setting has changed.

#include <keladjust/keladjust.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/Catalogued.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::Catalogued;
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
        {"clarity", plainly(Catalogued("clarity", 100))},
        {"sharpen", plainly(Catalogued("sharpen", 80))},
        {"dehaze", plainly(Catalogued("dehaze", 50))},
        {"15 x 15 mean", meanFilter},
        {"diffuse", plainly(Catalogued("diffuse", 50))},
        {"vignette", plainly([](CxImage& i) { vignetteAdjustFilter(&i, -50, 50, 70, 50, 0, 20); })},
        {"distortion, map kept", plainly(Catalogued("distortion", lens))},
        {"distortion, new map", inTurn<distortFilter>},
        {"fringing, maps kept", plainly(Catalogued("fringing", lens))},
        {"fringing, new maps", inTurn<fringingFilter>},
        {"grain", plainly([](CxImage& i) { addNoiseFilter(&i, 30, 50); })},
        {"white balance", plainly([](CxImage& i) { whiteBalanceAdjustment(&i, 50); })},
        {"denoise", plainly(Catalogued("colour-noise-reduction", 100.0f / 3))},  // a level of 5
        {"denoise luminance", plainly(Catalogued("luminance-noise-reduction", 100.0f / 3))},
    });

}  // namespace
