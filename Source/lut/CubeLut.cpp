#include "lut/CubeLut.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lut/CubeFile.h"
#include "platform/FloatingPoint.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

// Calls body(red, green, blue) for every colour, blue fastest.
template <class Body>
void forEachColour(Body body) {
    for (unsigned red = 0; red < CubeLut::edge; ++red) {
        for (unsigned green = 0; green < CubeLut::edge; ++green) {
            for (unsigned blue = 0; blue < CubeLut::edge; ++blue) body(red, green, blue);
        }
    }
}

// NaN differs from 0, too, and counts as a change.
bool changesColours(const _AdjustColourRange& range) {
    return range.hue != 0.0f || range.saturation != 0.0f || range.brightness != 0.0f;
}

void applyStages(float* lut, unsigned long count, const _AdjustParam& p) {
    constexpr int stride = 3;
    lut = lut3d_temperatureAdjustment(lut, count, stride, p.temperature);
    lut = lut3d_tintAdjustment(lut, count, stride, p.tint);
    lut = lut3d_exposureAdjustment(lut, count, stride, p.exposure);
    lut = lut3d_brightnessAdjustment(lut, count, stride, p.brightness);
    lut = lut3d_contrastAdjustment(lut, count, stride, p.contrast);
    lut = lut3d_vibranceAdjustment(lut, count, stride, p.vibrance);
    lut = lut3d_saturationAdjustment(lut, count, stride, p.saturation);
    lut = lut3d_hdrHighlight(lut, count, stride, p.highlights);
    lut = lut3d_hdrShadow(lut, count, stride, p.shadows);
    lut = lut3d_hdrWhiteLevel(lut, count, stride, p.whites);
    lut = lut3d_hdrBlackLevel(lut, count, stride, p.blacks);
    for (const _AdjustColourRange& range : p.range) {
        if (!changesColours(range)) continue;
        lut = lut3d_doHSLAdjustFilter(lut, count, stride, range.minDegree, range.maxDegree,
                                      range.hue, range.saturation, range.brightness);
    }
}

}  // namespace

void CubeLut::build() {
    if (grid_ != nullptr) return;
    const platform::DefaultFloatingPoint scope;
    auto bytePoints = std::make_unique<BytePoint[]>(pointCount);
    auto grid = std::make_unique<float[]>(std::size_t{pointCount} * 3);

    dimension_ = edge;
    for (unsigned value = 0; value < 256; ++value) {
        const float x = static_cast<float>(value) / (255.0f / static_cast<float>(dimension_ - 1));
        indexInteger_[value] = std::floor(x);
        indexFraction_[value] = x - std::floor(x);
    }

    count_ = pointCount;
    bytePoints_ = std::move(bytePoints);
    grid_ = std::move(grid);
    const auto level = [](unsigned index) { return static_cast<float>(index) * 255.0f / 31.0f; };
    const auto truncated = [](float value) { return static_cast<std::uint8_t>(value); };
    forEachColour([&](unsigned red, unsigned green, unsigned blue) {
        // Blue first: only a bake puts red there.
        const Point colour{level(blue), level(green), level(red)};
        points_[placeOf(red, green, blue)] = colour;
        bytePoints_[entryOf(red, green, blue)] = {truncated(colour[0]), truncated(colour[1]),
                                                  truncated(colour[2])};
    });
    fillGrid();
}

void CubeLut::resetToIdentity() {
    if (bytePoints_ == nullptr || grid_ == nullptr) return;
    const auto level = [](unsigned index) { return static_cast<std::uint8_t>(index * 255 / 31); };
    forEachColour([&](unsigned red, unsigned green, unsigned blue) {
        const BytePoint colour{level(blue), level(green), level(red)};
        bytePoints_[entryOf(red, green, blue)] = colour;
        points_[placeOf(red, green, blue)] = {static_cast<float>(colour[0]),
                                              static_cast<float>(colour[1]),
                                              static_cast<float>(colour[2])};
    });
    fillGrid();
}

void CubeLut::fillGrid() {
    std::array<float, edge> unit;
    for (unsigned i = 0; i < edge; ++i) unit[i] = static_cast<float>(i) / 31.0f;
    forEachColour([&](unsigned red, unsigned green, unsigned blue) {
        float* const entry = grid_.get() + 3 * entryOf(red, green, blue);
        entry[0] = unit[red];
        entry[1] = unit[green];
        entry[2] = unit[blue];
    });
}

float* CubeLut::bake(const _AdjustParam& parameters) {
    const platform::DefaultFloatingPoint scope;
    resetToIdentity();
    state_ = State::baking;

    // Stages see one colour at a time, so a run of colours that fits the first-level cache goes
    // through all of them before the next one does.
    constexpr std::size_t run = 1024;
    constexpr std::size_t colourPerThread = 4 * run;
    platform::parallelBands(count_, platform::bandCount(count_, colourPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                for (std::size_t i = begin; i < end; i += run) {
                                    const std::size_t length = std::min(run, end - i);
                                    applyStages(grid_.get() + 3 * i,
                                                static_cast<unsigned long>(length), parameters);
                                }
                            });

    copyGridToPoints();
    state_ = State::idle;
    return grid_.get();
}

void CubeLut::copyGridToPoints() {
    if (bytePoints_ == nullptr || grid_ == nullptr) return;
    forEachColour([&](unsigned red, unsigned green, unsigned blue) {
        const float* const entry = grid_.get() + 3 * entryOf(red, green, blue);
        points_[placeOf(red, green, blue)] = {entry[0] * 255.0f, entry[1] * 255.0f,
                                              entry[2] * 255.0f};
    });
}

bool CubeLut::write(const char* path) const {
    const platform::DefaultFloatingPoint scope;
    CubeFile file(path);
    if (!file.isOpen()) return false;
    forEachColour([&](unsigned red, unsigned green, unsigned blue) {
        const Point& colour = point(red, green, blue);
        file.writeColour(colour[0] / 255.0f, colour[1] / 255.0f, colour[2] / 255.0f);
    });
    return true;
}

}  // namespace keladjust
