#ifndef KELADJUST_BENCH_SUPPORT_PHOTOGRAPH_H
#define KELADJUST_BENCH_SUPPORT_PHOTOGRAPH_H

#include <keladjust/CxImage.h>

#include <cstdint>

namespace keladjust::bench {

/// The upper left corner of four real photographs at their native grain, a quarter of 4000 x 3000
/// pixels each, as a BGRA picture; made once for the size asked for last.
///
/// @throws std::runtime_error naming the file that cannot be read
CxImage& photograph(std::int64_t columns, std::int64_t rows);

}  // namespace keladjust::bench

#endif
