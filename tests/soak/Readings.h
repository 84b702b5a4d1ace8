#ifndef KELADJUST_TESTS_SOAK_READINGS_H
#define KELADJUST_TESTS_SOAK_READINGS_H

#include <cstdio>
#include <vector>

#include "support/Growth.h"
#include "support/Holdings.h"

namespace keladjust::test {

/// What the process held after each of many equal steps.
class Readings {
public:
    void take() {
        const Holdings held = holdingsNow();
        kilobytes_.push_back(held.residentKilobytes);
        threads_.push_back(held.threads);
        handles_.push_back(held.handles);
        mappings_.push_back(held.mappings);
    }

    /// Prints how much each step added.
    /// @param mostKilobytes what a step may add to memory; of all else it may add nothing
    /// @return false if one added more
    bool areFlat(double mostKilobytes) const {
        const bool flat = isBelow("memory, kB", kilobytes_, mostKilobytes);
        // What each step left behind would be one at least.
        const bool threadsFlat = isBelow("threads", threads_, 0.5);
        const bool handlesFlat = isBelow("handles", handles_, 0.5);
        const bool mappingsFlat = isBelow("mappings", mappings_, 0.5);
        return flat && threadsFlat && handlesFlat && mappingsFlat;
    }

private:
    static bool isBelow(const char* what, const std::vector<long>& readings, double bound) {
        const double slope = growth(readings);
        std::printf("%-12s %ld -> %ld in %zu steps, %+.3f a step (bound %.1f)\n", what,
                    readings.front(), readings.back(), readings.size(), slope, bound);
        return slope <= bound;
    }

    std::vector<long> kilobytes_;
    std::vector<long> threads_;
    std::vector<long> handles_;
    std::vector<long> mappings_;
};

}  // namespace keladjust::test

#endif
