#ifndef KELADJUST_TESTS_SUPPORT_GROWTH_H
#define KELADJUST_TESTS_SUPPORT_GROWTH_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace keladjust::test {

/// How much a figure grows from one reading to the next: the median of the slopes between all pairs
/// of readings (Theil 1950, Sen 1968), which a few steps up or down do not move. At least two
/// readings.
inline double growth(const std::vector<long>& readings) {
    std::vector<double> slopes;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        for (std::size_t j = i + 1; j < readings.size(); ++j) {
            slopes.push_back(static_cast<double>(readings[j] - readings[i]) /
                             static_cast<double>(j - i));
        }
    }
    const auto middle = slopes.begin() + static_cast<std::ptrdiff_t>(slopes.size() / 2);
    std::nth_element(slopes.begin(), middle, slopes.end());
    return *middle;
}

}  // namespace keladjust::test

#endif
