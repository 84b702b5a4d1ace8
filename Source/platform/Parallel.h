#ifndef KELADJUST_PLATFORM_PARALLEL_H
#define KELADJUST_PLATFORM_PARALLEL_H

#include <cstddef>

namespace keladjust::platform {

#if defined(__EMSCRIPTEN__) && !defined(__EMSCRIPTEN_PTHREADS__)
// No thread can be started, and bands that the caller does one after another only cost.
inline constexpr std::size_t mostThreads = 1;
#else
// More threads than this are of no use to a picture; it lets them be kept without allocation.
inline constexpr std::size_t mostThreads = 64;
#endif

/// Bounds the threads of parallelBands(), the caller's included; 0 or less: as many as cores. A
/// call may have a limit of its own; see CallScope.
void setThreadLimit(int count) noexcept;

/// How many bands parallelBands() makes of `count` items when a band holds at least `grain` (>= 1).
/// Never 0 nor above mostThreads; for callers that need working storage per band.
std::size_t bandCount(std::size_t count, std::size_t grain) noexcept;

/// The work of parallelBands() without its type: what to call, and with which object.
struct BandWork {
    const void* body;
    void (*call)(const void* body, std::size_t band, std::size_t begin, std::size_t end);
};
void runBands(std::size_t count, std::size_t bands, BandWork work);

/// Splits 0..count-1 into `bands` contiguous bands (usually bandCount()) and calls
/// `body(band, begin, end)` for each that is not empty, every one on a thread of its own.
///
/// All threads are joined before the call returns, also when `body` throws (the first exception is
/// then passed on), so nothing outlives it. Bands for which no thread can be started run on the
/// caller's, so that no shortage stops a stage halfway. Workers compute in the default
/// floating-point environment and take part in the caller's CallScope.
template <class Body>
void parallelBands(std::size_t count, std::size_t bands, const Body& body) {
    runBands(count, bands,
             {&body, [](const void* object, std::size_t band, std::size_t begin, std::size_t end) {
                  (*static_cast<const Body*>(object))(band, begin, end);
              }});
}

}  // namespace keladjust::platform

#endif
