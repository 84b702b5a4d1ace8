#ifndef KELADJUST_TESTS_SUPPORT_CLOSENESS_H
#define KELADJUST_TESTS_SUPPORT_CLOSENESS_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace keladjust::test {

/// How near two pictures of equal size are, byte by byte.
struct Closeness {
    std::size_t bytes = 0;
    std::size_t within = 0;  ///< those at most one level apart
    int worst = 0;           ///< levels
    std::size_t worstAt = 0;

    Closeness(const std::vector<std::uint8_t>& got, const std::vector<std::uint8_t>& expected) {
        EXPECT_EQ(got.size(), expected.size());
        for (; bytes < got.size() && bytes < expected.size(); ++bytes) {
            const int difference = std::abs(got[bytes] - expected[bytes]);
            if (difference <= 1) ++within;
            if (difference > worst) {
                worst = difference;
                worstAt = bytes;
            }
        }
    }

    double share() const {
        return bytes == 0 ? 1.0 : static_cast<double>(within) / static_cast<double>(bytes);
    }
};

inline std::ostream& operator<<(std::ostream& out, const Closeness& c) {
    out << 100.0 * c.share() << " % of " << c.bytes << " bytes within one level";
    if (c.worst > 1) out << ", worst " << c.worst << " levels at byte " << c.worstAt;
    return out;
}

}  // namespace keladjust::test

#endif
