#include "lut/CubeLut.h"

#include <cmath>
#include <utility>

#include "lut/CubeFile.h"
#include "lut/TableStages.h"
#include "platform/FloatingPoint.h"
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
    const TableStages tableStages(parameters);
    state_ = State::baking;
    // All stages see one row after another, which fits the first-level cache.
    const auto fill = [](std::size_t row, ColourRun& run) {
        run.count = coloursPerRow;
        forEachColourOfRow(row, [&](std::size_t i, unsigned red, unsigned green, unsigned blue) {
            run.red[i] = unitLevels[red];
            run.green[i] = unitLevels[green];
            run.blue[i] = unitLevels[blue];
        });
    };
    const auto store = [this](std::size_t row, const ColourRun& run) {
        float* entry = grid_.get() + 3 * coloursPerRow * row;
        forEachColourOfRow(row, [&](std::size_t i, unsigned red, unsigned green, unsigned blue) {
            *entry++ = run.red[i];
            *entry++ = run.green[i];
            *entry++ = run.blue[i];
            points_[placeOf(red, green, blue)] = {run.red[i] * 255.0f, run.green[i] * 255.0f,
                                                  run.blue[i] * 255.0f};
        });
    };
    bakeRuns(tableStages, rowCount, fill, store);
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
