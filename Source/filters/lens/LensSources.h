#ifndef KELADJUST_FILTERS_LENS_LENSSOURCES_H
#define KELADJUST_FILTERS_LENS_LENSSOURCES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Where the lens stages fetch the pixels of a row from, compiled for every instruction set and
/// chosen when it runs. All of them give the same places.
namespace keladjust {

/// Distances from the centre, `distance(i)` each. The last one is repeated for vectors that reach
/// beyond it.
class ColumnDistances {
public:
    template <class Distance>
    ColumnDistances(std::size_t count, Distance distance) : count_(count), distances_(count_ + 64) {
        for (std::size_t i = 0; i < count; ++i) distances_[i] = distance(i);
        std::fill(distances_.begin() + static_cast<std::ptrdiff_t>(count), distances_.end(),
                  distances_[count - 1]);
    }
    std::size_t count() const { return count_; }
    const float* data() const { return distances_.data(); }

private:
    std::size_t count_;
    std::vector<float> distances_;
};

/// A pixel at the distance `length` from the centre, in units of `unitX` and `unitY`, comes from
/// its ray's place at (length^power * strength + length) * scale.
struct Lens {
    float strength;
    int power;
    float scale;
    float unitX;
    float unitY;
    float centreX;
    float centreY;
};

/// Distortion raises to the third power or to the sixth.
constexpr int barrelPower = 3;
constexpr int pincushionPower = 6;

/// Fringing draws the rays of red and blue out or in by factors of their own. Places are clamped
/// to 0 and the last ones, be these smaller.
struct Fringing {
    Lens lens;
    float redFactor;
    float blueFactor;
    float lastX;
    float lastY;
};
constexpr int fringingPower = 10;

// Any setting, any size of a picture.

/// Coordinates are kept as the low 16 bits of the whole number.
struct Place {
    std::int16_t x;
    std::int16_t y;
};

void placesOfRow(const Lens& lens, const ColumnDistances& columns, float rowDistance,
                 Place* places);

/// Numbers of pixels.
struct FringingRow {
    std::uint32_t* red;
    std::uint32_t* green;
    std::uint32_t* blue;
};

/// @param width of the picture
/// @param nowhere the number that stands for places outside it
void pixelsOfRow(const Fringing& fringing, const ColumnDistances& columns, float rowDistance,
                 std::uint32_t width, std::uint32_t nowhere, FringingRow row);

// Settings that fetch from inside the picture alone. The columns at the left of the centre mirror
// those at its right: both sides come from one computation.

/// Rows of a picture in a ring: where they end they begin anew.
struct RowRing {
    std::int32_t first;   ///< the row that lies at the beginning of memory
    std::int32_t count;   ///< row first + count would lie there, too
    std::int32_t stride;  ///< from one row to the next
    std::int32_t top;     ///< of the rows that it holds
    std::int32_t bottom;  ///< the last one
};

/// Sources of neighbouring columns at equal distances on both sides of the centre, as offsets into
/// a ring.
struct MirroredRun {
    static constexpr std::size_t capacity = 1024;

    std::uint32_t right[capacity];
    std::uint32_t left[capacity];  ///< from left to right, the last one nearest to the centre
};

/// @param distances of `count` columns at the right of the centre, at most a run's capacity
/// @param lastColumn of the picture
void distortedRun(const Lens& lens, const float* distances, std::size_t count, float rowDistance,
                  std::int32_t lastColumn, const RowRing& ring, MirroredRun& run);

struct FringingRun {
    MirroredRun red;
    MirroredRun green;
    MirroredRun blue;
};

/// For a last column of at least 0, and a ring whose rows go no further down than the last one.
void fringedRun(const Fringing& fringing, const float* distances, std::size_t count,
                float rowDistance, const RowRing& ring, FringingRun& run);

/// Pixels of four bytes of which the first, the second and fourth, and the third come from
/// `originals` of the given numbers.
void fetchFringed(const std::uint8_t* originals, const std::uint32_t* firsts,
                  const std::uint32_t* seconds, const std::uint32_t* thirds, std::size_t count,
                  std::uint8_t* pixels);

}  // namespace keladjust

#endif
