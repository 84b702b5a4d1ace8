#ifndef KELADJUST_ENGINE_RENDERTIMING_H
#define KELADJUST_ENGINE_RENDERTIMING_H

#include <cstdint>

namespace keladjust {

/// Judges whether renders keep within a time: after one to warm up, ten are averaged, then it
/// starts over.
class RenderTiming {
public:
    /// True if the next pass is one of the ten. The first is not: it builds programs and textures.
    bool isTimed() const { return runs_ != 0; }

    /// Notes a pass that took so long; the time of the first is not looked at. Sets `slow` when the
    /// tenth has been averaged, and leaves it alone before.
    void notePass(std::int64_t milliseconds, std::int64_t evaluateMilliseconds, bool& slow) {
        if (isTimed()) total_ += milliseconds;
        if (++runs_ <= timedRuns) return;
        slow = total_ / timedRuns > evaluateMilliseconds;
        runs_ = 0;
        total_ = 0;
    }

private:
    static constexpr std::uint32_t timedRuns = 10;

    std::uint32_t runs_ = 0;
    std::int64_t total_ = 0;
};

}  // namespace keladjust

#endif
