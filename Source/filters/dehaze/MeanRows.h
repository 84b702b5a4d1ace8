#ifndef KELADJUST_FILTERS_DEHAZE_MEANROWS_H
#define KELADJUST_FILTERS_DEHAZE_MEANROWS_H

#include <cstddef>
#include <cstdint>

/// The mean filter's work on a row, compiled for every instruction set and chosen when it runs. All
/// of them give the same bytes.
namespace keladjust {

/// Rows and columns of a window.
constexpr std::size_t meanSide = 15;

/// Elements to have behind the column sums and the sums of three, which are read and written by
/// whole vectors.
constexpr std::size_t columnSlack = 32;

void addToColumns(const std::uint8_t* row, std::size_t width, std::uint16_t* sums);
void exchangeInColumns(const std::uint8_t* added, const std::uint8_t* taken, std::size_t width,
                       std::uint16_t* sums);
void takeFromColumns(const std::uint8_t* row, std::size_t width, std::uint16_t* sums);

/// The means of `count` windows, `rows` high; the first begins with the first column and each
/// other one column on.
/// @param triples scratch for count + 12 sums and the slack
void meansInside(const std::uint16_t* sums, std::size_t count, std::uint32_t rows,
                 std::uint16_t* triples, std::uint8_t* means);

}  // namespace keladjust

#endif
