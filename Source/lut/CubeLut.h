#ifndef KELADJUST_LUT_CUBELUT_H
#define KELADJUST_LUT_CUBELUT_H

#include <keladjust/keladjust.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace keladjust {

/// The settings as a colour table: a lattice of colours that starts as the identity and goes
/// through the look-up-table form of every per-pixel stage.
///
/// The lattice that stages and hosts see is tiled like a 2-D texture of the table, 256 wide and 128
/// high: eight by four tiles, one for each red index; green is the row inside a tile, blue the
/// column.
class CubeLut {
public:
    /// Colours along each axis.
    static constexpr unsigned edge = 32;
    static constexpr unsigned pointCount = edge * edge * edge;

    /// Where a bake stands.
    enum class State : int { baking = 1, idle = 2 };

    /// A colour on the scale 0..255. A bake leaves red, green, blue in the three places.
    using Point = std::array<float, 3>;
    using BytePoint = std::array<std::uint8_t, 3>;

    CubeLut() = default;
    virtual ~CubeLut() = default;
    CubeLut(const CubeLut&) = delete;
    CubeLut& operator=(const CubeLut&) = delete;

    /// Makes the lattice, as the identity; does nothing if there is one.
    /// @throws std::bad_alloc, the object being as before
    void build();

    /// Bakes the settings over a fresh identity.
    /// @return the lattice, `count()` colours of three floats; null if it was never built
    float* bake(const _AdjustParam& parameters);

    /// Writes the points of the last bake (zeros before the lattice is built) as a cube file.
    /// @return false, with a line on standard output, if `path` is null or cannot be opened
    bool write(const char* path) const;

    /// The place of a colour in the lattice and among the byte points.
    static constexpr std::size_t entryOf(unsigned red, unsigned green, unsigned blue) {
        return std::size_t{8192} * (red / 8) + 256 * green + 32 * (red % 8) + blue;
    }

    State state() const { return state_; }
    /// 0 and null before build().
    unsigned dimension() const { return dimension_; }
    unsigned count() const { return count_; }
    const float* grid() const { return grid_.get(); }
    const BytePoint* bytePoints() const { return bytePoints_.get(); }

    /// The lattice coordinate that a byte value stands for.
    float indexInteger(std::uint8_t value) const { return indexInteger_[value]; }
    float indexFraction(std::uint8_t value) const { return indexFraction_[value]; }

    const Point& point(unsigned red, unsigned green, unsigned blue) const {
        return points_[placeOf(red, green, blue)];
    }

private:
    // Points have room for twice the edge.
    static constexpr std::size_t placeOf(unsigned red, unsigned green, unsigned blue) {
        return (std::size_t{red} * 64 + green) * 64 + blue;
    }

    unsigned dimension_ = 0;
    unsigned count_ = 0;
    State state_ = State::idle;
    std::array<float, 256> indexFraction_{};
    std::array<float, 256> indexInteger_{};
    std::unique_ptr<BytePoint[]> bytePoints_;
    std::unique_ptr<float[]> grid_;
    std::array<Point, 64 * 64 * 64> points_{};
};

}  // namespace keladjust

#endif
