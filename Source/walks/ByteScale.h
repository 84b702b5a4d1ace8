#ifndef KELADJUST_WALKS_BYTESCALE_H
#define KELADJUST_WALKS_BYTESCALE_H

#include <cstdint>
#include <optional>

#include "arithmetic/Rounding.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Multiplication of a byte by a factor of 0..256 in whole numbers:
/// min(255, in * whole + (in * fraction >> 16)).
struct ByteScale {
    std::uint16_t whole = 1;
    std::uint16_t fraction = 0;

    std::uint8_t operator()(std::uint8_t in) const {
        return clampToByte(std::int32_t{in} * whole + ((std::int32_t{in} * fraction) >> 16));
    }
};

/// The smallest scale that reaches every entry of a table from below.
inline ByteScale leastScaleFor(const ByteTable& table) {
    // The largest of the quotients out / in.
    std::uint32_t out = 0;
    std::uint32_t in = 1;
    for (std::uint32_t i = 1; i < table.size(); ++i) {
        if (table[i] * in > out * i) {
            out = table[i];
            in = i;
        }
    }
    const std::uint32_t factor = ((out << 16) + in - 1) / in;
    return {static_cast<std::uint16_t>(factor >> 16), static_cast<std::uint16_t>(factor)};
}

/// True if `map(byte)` is what the table holds for every byte.
template <class Map>
bool givesTable(const Map& map, const ByteTable& table) {
    for (unsigned in = 0; in < table.size(); ++in) {
        if (map(static_cast<std::uint8_t>(in)) != table[in]) return false;
    }
    return true;
}

/// The scale that gives what a table of clamped products with one factor, made in single
/// precision, holds for every byte.
///
/// Of exact products there always is one: the factors that give the same 256 bytes lie between two
/// fractions with denominators of at most 255, the lower one included, so the smallest of them in
/// 65536ths exceeds the lower one by less than the two are apart, 1 / 255^2. Only a factor that
/// single precision cannot tell from such a fraction may have products of which some are rounded up
/// to a whole number and some are not; then there is none.
inline std::optional<ByteScale> byteScaleOf(const ByteTable& table) {
    const ByteScale scale = leastScaleFor(table);
    return givesTable(scale, table) ? std::optional(scale) : std::nullopt;
}

}  // namespace keladjust

#endif
