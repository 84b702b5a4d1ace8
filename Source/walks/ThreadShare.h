#ifndef KELADJUST_WALKS_THREADSHARE_H
#define KELADJUST_WALKS_THREADSHARE_H

#include <cstddef>

namespace keladjust {

// With less to do than this a thread costs more than it saves.
inline constexpr std::size_t pixelsPerThread = 1 << 15;
inline constexpr std::size_t bytesPerThread = 1 << 17;  ///< where each is looked at a few times

}  // namespace keladjust

#endif
