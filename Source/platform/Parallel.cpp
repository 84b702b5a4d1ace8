#include "platform/Parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "platform/CallScope.h"
#include "platform/FloatingPoint.h"
#include "platform/SignalsBlocked.h"

namespace keladjust::platform {

namespace {

std::atomic<int> threadLimit{0};

/// Counts the threads that help a call whose host wants to be asked while the caller waits.
class Helpers {
public:
    explicit Helpers(CallScope* call) : asks_(call != nullptr && call->hasProgress()) {}

    void begin() {
        if (!asks_) return;
        const std::lock_guard lock(mutex_);
        ++working_;
    }
    void end() {
        if (!asks_) return;
        const std::lock_guard lock(mutex_);
        --working_;
        ended_.notify_one();
    }
    /// Asks the host now and then until all have ended.
    void await() {
        if (!asks_) return;
        constexpr std::chrono::milliseconds pause{4};
        std::unique_lock lock(mutex_);
        while (!ended_.wait_for(lock, pause, [this] { return working_ == 0; })) {
            lock.unlock();
            checkpoint(1, 1);
            lock.lock();
        }
    }

private:
    bool asks_;
    std::mutex mutex_;
    std::condition_variable ended_;
    std::size_t working_ = 0;
};

}  // namespace

void setThreadLimit(int count) noexcept {
    threadLimit = count;
}

std::size_t bandCount(std::size_t count, std::size_t grain) noexcept {
    const CallScope* const call = currentCall();
    const int limit =
        call != nullptr && call->threadLimit() > 0 ? call->threadLimit() : threadLimit.load();
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

    CallScope* const call = currentCall();
    Helpers helpers(call);
    const auto help = [&](std::size_t band) {
        const CallShare share(call);
        runBand(band);
        helpers.end();
    };

    std::array<std::thread, mostThreads> workers;
    std::size_t started = 1;
    try {
        for (; started < std::min(bands, mostThreads); ++started) {
            helpers.begin();
            const SignalsBlocked blocked;
            workers[started] = std::thread(help, started);
        }
    } catch (...) {
        helpers.end();
        // No thread, or no memory for one: the caller does the rest itself.
    }
    runBand(0);
    for (std::size_t band = started; band < bands; ++band) runBand(band);
    helpers.await();
    for (std::size_t band = 1; band < started; ++band) workers[band].join();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace keladjust::platform
