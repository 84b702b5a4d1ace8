#include "platform/CallScope.h"

#include <algorithm>

#include "platform/FloatingPoint.h"

namespace keladjust::platform {

namespace {

/// What a thread knows of the call that it works for.
struct Place {
    CallScope* call = nullptr;
    bool helps = false;  ///< the call is another thread's
};
thread_local constinit Place here;

constexpr std::chrono::milliseconds betweenQuestions{4};

}  // namespace

CallScope::CallScope(int threadLimit, Progress progress, void* user) noexcept
    : threadLimit_(threadLimit), progress_(progress), user_(user) {
    here = {this, false};
}

CallScope::~CallScope() {
    here = {};
}

bool CallScope::tell(float share) noexcept {
    told_ = std::max(told_, share);
    if (progress_ == nullptr || isCancelled()) return isCancelled();
    // What the host does in between is none of this call's.
    here = {};
    try {
        const DefaultFloatingPoint scope;
        if (progress_(user_, told_) != 0) cancelled_ = true;
    } catch (...) {
        cancelled_ = true;
    }
    here = {this, false};
    asked_ = std::chrono::steady_clock::now();
    return isCancelled();
}

bool CallScope::report(std::size_t done, std::size_t total) noexcept {
    if (progress_ == nullptr || isCancelled()) return isCancelled();
    if (std::chrono::steady_clock::now() - asked_ < betweenQuestions) return false;
    const float share =
        static_cast<float>(done) / static_cast<float>(std::max<std::size_t>(total, 1));
    return tell(begin_ + (end_ - begin_) * share);
}

CallScope* currentCall() noexcept {
    return here.call;
}

bool checkpoint(std::size_t done, std::size_t total) noexcept {
    CallScope* const call = here.call;
    if (call == nullptr) return false;
    return here.helps ? call->isCancelled() : call->report(done, total);
}

bool isCancelled() noexcept {
    return here.call != nullptr && here.call->isCancelled();
}

ProgressPart::ProgressPart(float begin, float end) noexcept
    : call_(here.helps ? nullptr : here.call) {
    if (call_ == nullptr) return;
    begin_ = call_->begin_;
    end_ = call_->end_;
    const float whole = end_ - begin_;
    call_->begin_ = begin_ + whole * begin;
    call_->end_ = begin_ + whole * end;
}

ProgressPart::~ProgressPart() {
    if (call_ == nullptr) return;
    call_->begin_ = begin_;
    call_->end_ = end_;
}

CallShare::CallShare(CallScope* call) noexcept {
    here = {call, true};
}

CallShare::~CallShare() {
    here = {};
}

}  // namespace keladjust::platform
