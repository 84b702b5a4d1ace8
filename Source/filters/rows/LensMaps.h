#ifndef KELADJUST_FILTERS_ROWS_LENSMAPS_H
#define KELADJUST_FILTERS_ROWS_LENSMAPS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// Where the lens stages fetch the pixels of a row from, compiled for every instruction set and
/// chosen when it runs. All of them give the same places.
namespace keladjust::rows {

/// Of the columns of a picture, as many as there are, `distance(x)` each. The last one is repeated
/// for vectors that reach beyond it.
class ColumnDistances {
public:
    template <class Distance>
    ColumnDistances(unsigned width, Distance distance) : count_(width), distances_(count_ + 64) {
        for (unsigned x = 0; x < width; ++x) distances_[x] = distance(x);
        std::fill(distances_.begin() + width, distances_.end(), distances_[width - 1]);
    }
    std::size_t count() const { return count_; }
    const float* data() const { return distances_.data(); }

private:
    std::size_t count_;
    std::vector<float> distances_;
};

/// Coordinates are kept as the low 16 bits of the whole number.
struct Place {
    std::int16_t x;
    std::int16_t y;
};

/// The rows that a row fetches from.
struct SourceRows {
    std::int32_t first = std::numeric_limits<std::int32_t>::max();
    std::int32_t last = std::numeric_limits<std::int32_t>::min();
    bool leavesPicture = false;  ///< some place has a column or a row that the picture lacks
};

/// A distance from the centre is in units of `unitX` and `unitY`.
struct Distortion {
    float strength;
    bool cubic;  ///< the power of the distance that is added: its third, or its sixth
    float scale;
    float unitX;
    float unitY;
    float centreX;
    float centreY;
    unsigned width;
    unsigned height;
};
SourceRows placesOfRow(const Distortion& distortion, const ColumnDistances& columns,
                       float rowDistance, Place* places);

/// Places are clamped to 0 and the last ones, be these smaller.
struct Fringing {
    float strength;
    float scale;
    float redScale;
    float blueScale;
    float width;  ///< of the picture, and the unit of distances
    float height;
    float centreX;
    float centreY;
    float lastX;
    float lastY;
    std::uint32_t columns;  ///< of the picture
    std::uint32_t nowhere;  ///< the number that stands for places outside it
};

/// Numbers of pixels.
struct FringingRow {
    std::uint32_t* red;
    std::uint32_t* green;
    std::uint32_t* blue;
};
SourceRows pixelsOfRow(const Fringing& fringing, const ColumnDistances& columns, float rowDistance,
                       FringingRow row);

}  // namespace keladjust::rows

#endif
