#include "platform/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/FloatingPoint.h"

namespace keladjust::platform {

namespace {
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
    return std::clamp<std::size_t>(count / grain, 1, threads);
}

void parallelBands(std::size_t count, std::size_t bands,
                   const std::function<void(std::size_t, std::size_t, std::size_t)>& body) {
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
            body(band, begin, end);
        } catch (...) {
            const std::lock_guard lock(failureMutex);
            if (!failure) failure = std::current_exception();
        }
    };

    std::vector<std::thread> workers;
    workers.reserve(bands - 1);
    std::size_t started = 1;
    try {
        for (; started < bands; ++started) workers.emplace_back(runBand, started);
    } catch (const std::system_error&) {
        // No more threads to be had: the caller does the rest itself.
    }
    runBand(0);
    for (std::size_t band = started; band < bands; ++band) runBand(band);
    for (std::thread& worker : workers) worker.join();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace keladjust::platform
