#ifndef KELADJUST_PLATFORM_CALLSCOPE_H
#define KELADJUST_PLATFORM_CALLSCOPE_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace keladjust::platform {

/// What one call of a host's asks for beside its work: a thread limit, news of its progress, leave
/// to stop it. Belongs to the thread that makes the call and, while they run, to the threads that
/// help it; see parallelBands(). Calls on other threads know nothing of it.
class CallScope {
public:
    /// Gets the share of the work that is done, 0..1, and what the host wants to see again; a
    /// result other than 0 cancels. What it throws cancels, too.
    using Progress = std::int32_t (*)(void* user, float share);

    /// @param threadLimit bounds the call's threads; 0 or less: as setThreadLimit() says
    /// @param progress    may be null
    CallScope(int threadLimit, Progress progress, void* user) noexcept;
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    int threadLimit() const { return threadLimit_; }
    bool hasProgress() const { return progress_ != nullptr; }
    bool isCancelled() const { return cancelled_.load(std::memory_order_relaxed); }

    /// Asks the host at once, with a share that is not below the last one.
    /// @return true if the call is cancelled
    bool tell(float share) noexcept;

private:
    friend class ProgressPart;
    friend class CallShare;
    friend bool checkpoint(std::size_t done, std::size_t total) noexcept;

    bool report(std::size_t done, std::size_t total) noexcept;

    int threadLimit_;
    Progress progress_;
    void* user_;
    std::atomic<bool> cancelled_{false};
    // The calling thread's alone:
    float begin_ = 0.0f;  ///< of the part that runs
    float end_ = 1.0f;
    float told_ = 0.0f;
    std::chrono::steady_clock::time_point asked_{};
};

/// The scope of the call that this thread works for, or null.
CallScope* currentCall() noexcept;

/// Loops of stages call it once for each row or tile, at the end of the others telling how far they
/// are: the calling thread asks the host every few milliseconds.
/// @return true if the loop should end now, whatever it leaves undone
bool checkpoint(std::size_t done, std::size_t total) noexcept;

/// True if the call that this thread works for should end now.
bool isCancelled() noexcept;

/// While it lives, checkpoints stand for the part of the work from `begin` to `end`, as shares of
/// what they stood for before. Of several loops in a row each has its part.
class ProgressPart {
public:
    ProgressPart(float begin, float end) noexcept;
    ProgressPart(std::size_t index, std::size_t count) noexcept
        : ProgressPart(static_cast<float>(index) / static_cast<float>(count),
                       static_cast<float>(index + 1) / static_cast<float>(count)) {}
    ~ProgressPart();
    ProgressPart(const ProgressPart&) = delete;
    ProgressPart& operator=(const ProgressPart&) = delete;

private:
    CallScope* call_;  ///< null on threads that help
    float begin_ = 0.0f;
    float end_ = 0.0f;
};

/// Lets a thread that helps take part in a call while it lives.
class CallShare {
public:
    explicit CallShare(CallScope* call) noexcept;
    ~CallShare();
    CallShare(const CallShare&) = delete;
    CallShare& operator=(const CallShare&) = delete;
};

}  // namespace keladjust::platform

#endif
