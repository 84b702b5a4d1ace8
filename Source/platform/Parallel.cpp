#include "platform/Parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>

#include "platform/FloatingPoint.h"

namespace keladjust::platform {

namespace {

// More threads than this are of no use to a picture; it lets them be kept without allocation.
constexpr std::size_t mostThreads = 64;

std::atomic<int> threadLimit{0};

}  // namespace

void setThreadLimit(int count) noexcept {
    threadLimit = count;
}

std::size_t bandCount(std::size_t count, std::size_t grain) noexcept {
    const int limit = threadLimit;
    const std::size_t threads = limit > 0
                                    ? static_cast<std::size_t>(limit)
                                    : std::max<std::size_t>(1, std::thread::hardware_concurrency());
    return std::clamp<std::size_t>(count / grain, 1, std::min(threads, mostThreads));
}

void runBands(std::size_t count, std::size_t bands, BandWork work) {
    std::mutex failureMutex;
    std::exception_ptr failure;
    const auto runBand = [&](std::size_t band) {
        // The first count % bands bands hold one item more.
        const std::size_t share = count / bands;
        const std::size_t longer = count % bands;
        const std::size_t begin = band * share + std::min(band, longer);
        const std::size_t end = begin + share + (band < longer ? 1 : 0);
        if (begin == end) return;
        try {
            const DefaultFloatingPoint scope;
            work.call(work.body, band, begin, end);
        } catch (...) {
            const std::lock_guard lock(failureMutex);
            if (!failure) failure = std::current_exception();
        }
    };

    std::array<std::thread, mostThreads> workers;
    std::size_t started = 1;
    try {
        for (; started < std::min(bands, mostThreads); ++started) {
            workers[started] = std::thread(runBand, started);
        }
    } catch (...) {
        // No thread, or no memory for one: the caller does the rest itself.
    }
    runBand(0);
    for (std::size_t band = started; band < bands; ++band) runBand(band);
    for (std::size_t band = 1; band < started; ++band) workers[band].join();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace keladjust::platform
