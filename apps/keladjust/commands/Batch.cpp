#include "commands/Batch.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

namespace keladjust::app {

namespace {

/// Holds reports back until those of all earlier pictures are there.
class InOrder {
public:
    InOrder(std::size_t count, const std::function<void(const JobReport&)>& onReport)
        : waiting_(count), onReport_(onReport) {}

    void add(std::size_t index, JobReport report) {
        const std::lock_guard lock(mutex_);
        waiting_[index] = std::move(report);
        while (next_ < waiting_.size() && waiting_[next_]) {
            const JobReport due = std::move(*waiting_[next_]);
            waiting_[next_++].reset();
            onReport_(due);
        }
    }

private:
    std::mutex mutex_;
    std::vector<std::optional<JobReport>> waiting_;
    std::size_t next_ = 0;
    const std::function<void(const JobReport&)>& onReport_;
};

/// The first exception that ended a thread's work, for the thread that waits for all of them.
class FirstException {
public:
    void keepCurrent() noexcept {
        const std::lock_guard lock(mutex_);
        if (first_ == nullptr) first_ = std::current_exception();
        there_ = true;
    }

    bool isThere() const { return there_; }

    void rethrow() const {
        if (first_ != nullptr) std::rethrow_exception(first_);
    }

private:
    std::mutex mutex_;
    std::exception_ptr first_;
    std::atomic<bool> there_{false};
};

}  // namespace

void runBatch(const std::vector<PicturePlan>& plans, const JobSettings& settings,
              Adjuster& adjuster, int jobs, bool (*stop)(),
              const std::function<void(const JobReport&)>& onReport) {
    InOrder reports(plans.size(), onReport);
    std::atomic<std::size_t> next{0};
    // Pictures are taken in order, so those that are done when the run stops are the first ones.
    FirstException failure;
    const auto work = [&] {
        try {
            while (!stop() && !failure.isThere()) {
                const std::size_t index = next++;
                if (index >= plans.size()) return;
                reports.add(index, runJob(plans[index], settings, adjuster));
            }
        } catch (...) {
            failure.keepCurrent();
        }
    };

    const std::size_t helpers = std::min(static_cast<std::size_t>(jobs), plans.size()) - 1;
    std::vector<std::jthread> threads;
    threads.reserve(helpers);
    try {
        while (threads.size() < helpers) threads.emplace_back(work);
    } catch (const std::exception&) {
        // Where threads or memory are short, fewer of them do the same work.
    }
    work();
    threads.clear();
    failure.rethrow();
}

}  // namespace keladjust::app
