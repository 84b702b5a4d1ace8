#include "lut/CubeLut.h"

#include <cmath>
#include <type_traits>
#include <utility>

#include "filters/colour-ranges/ColourRanges.h"
#include "filters/contrast/Contrast.h"
#include "filters/exposure/Brightness.h"
#include "filters/exposure/Exposure.h"
#include "filters/saturation/Saturation.h"
#include "filters/temperature/Temperature.h"
#include "filters/temperature/Tint.h"
#include "filters/tonal/TonalRanges.h"
#include "filters/vibrance/Vibrance.h"
#include "lut/CubeFile.h"
#include "platform/FloatingPoint.h"
#include "platform/Parallel.h"
#include "walks/ColourKernel.h"

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

// A lattice coordinate on the scale 0..1.
constexpr std::array<float, CubeLut::edge> unitLevels = [] {
    std::array<float, CubeLut::edge> levels{};
    for (unsigned i = 0; i < levels.size(); ++i) levels[i] = static_cast<float>(i) / 31.0f;
    return levels;
}();

// All stages that a table can hold.
class TableStages {
public:
    explicit TableStages(const _AdjustParam& p)
        : temperature_(p.temperature),
          tint_(p.tint),
          exposure_(p.exposure),
          brightness_(p.brightness),
          contrast_(p.contrast),
          vibrance_(p.vibrance),
          saturation_(p.saturation),
          highlights_(p.highlights),
          shadows_(p.shadows),
          whites_(p.whites),
          blacks_(p.blacks),
          ranges_(rangesOf(p.range)) {}

    void change(ColourRun& run) const {
        const ColourKernel* const global[] = {&temperature_, &tint_,     &exposure_,   &brightness_,
                                              &contrast_,    &vibrance_, &saturation_, &highlights_,
                                              &shadows_,     &whites_,   &blacks_};
        for (const ColourKernel* kernel : global) changeIfActive(*kernel, run);
        for (const ColourRangeKernel& range : ranges_) changeIfActive(range, run);
    }

private:
    static constexpr std::size_t rangeCount = std::extent_v<decltype(_AdjustParam::range)>;
    using Ranges = std::array<ColourRangeKernel, rangeCount>;

    static Ranges rangesOf(const _AdjustColourRange (&ranges)[rangeCount]) {
        return [&]<std::size_t... place>(std::index_sequence<place...>) {
            return Ranges{rangeOf(ranges[place])...};
        }
        (std::make_index_sequence<rangeCount>());
    }
    static ColourRangeKernel rangeOf(const _AdjustColourRange& r) {
        return {r.minDegree, r.maxDegree, r.hue, r.saturation, r.brightness};
    }
    static void changeIfActive(const ColourKernel& kernel, ColourRun& run) {
        if (kernel.active()) kernel.change(run);
    }

    TemperatureKernel temperature_;
    TintKernel tint_;
    ExposureKernel exposure_;
    BrightnessKernel brightness_;
    ContrastKernel contrast_;
    VibranceKernel vibrance_;
    SaturationKernel saturation_;
    HighlightKernel highlights_;
    ShadowKernel shadows_;
    WhiteLevelKernel whites_;
    BlackLevelKernel blacks_;
    Ranges ranges_;
};

// A row of the texture: of eight tiles the colours with one green.
constexpr unsigned tilesPerRow = 8;
constexpr std::size_t coloursPerRow = tilesPerRow * CubeLut::edge;
constexpr std::size_t rowCount = CubeLut::pointCount / coloursPerRow;
static_assert(coloursPerRow <= ColourRun::capacity);

// Calls body(place, red, green, blue) for every colour of a row.
template <class Body>
void forEachColourOfRow(std::size_t row, Body body) {
    const auto green = static_cast<unsigned>(row % CubeLut::edge);
    const auto firstRed = static_cast<unsigned>(row / CubeLut::edge * tilesPerRow);
    std::size_t place = 0;
    for (unsigned red = firstRed; red < firstRed + tilesPerRow; ++red) {
        for (unsigned blue = 0; blue < CubeLut::edge; ++blue) body(place++, red, green, blue);
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
    forEachColour([&](unsigned red, unsigned green, unsigned blue) {
        float* const entry = grid_.get() + 3 * entryOf(red, green, blue);
        entry[0] = unitLevels[red];
        entry[1] = unitLevels[green];
        entry[2] = unitLevels[blue];
    });
}

float* CubeLut::bake(const _AdjustParam& parameters) {
    if (grid_ == nullptr) return nullptr;
    const platform::DefaultFloatingPoint scope;
    state_ = State::baking;
    const TableStages stages(parameters);
    // All stages see one row after another, which fits the first-level cache.
    const auto bakeRow = [&](std::size_t row, ColourRun& run) {
        run.count = coloursPerRow;
        forEachColourOfRow(row, [&](std::size_t i, unsigned red, unsigned green, unsigned blue) {
            run.red[i] = unitLevels[red];
            run.green[i] = unitLevels[green];
            run.blue[i] = unitLevels[blue];
        });
        stages.change(run);
        float* entry = grid_.get() + 3 * coloursPerRow * row;
        forEachColourOfRow(row, [&](std::size_t i, unsigned red, unsigned green, unsigned blue) {
            *entry++ = run.red[i];
            *entry++ = run.green[i];
            *entry++ = run.blue[i];
            points_[placeOf(red, green, blue)] = {run.red[i] * 255.0f, run.green[i] * 255.0f,
                                                  run.blue[i] * 255.0f};
        });
    };
    constexpr std::size_t rowsPerThread = 16;
    platform::parallelBands(rowCount, platform::bandCount(rowCount, rowsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                ColourRun run;
                                for (std::size_t row = begin; row < end; ++row) bakeRow(row, run);
                            });
    state_ = State::idle;
    return grid_.get();
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
