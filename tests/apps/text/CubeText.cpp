#include "text/CubeText.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <vector>

namespace {

using namespace keladjust::app;

// The layout that keladjust.h documents, filled with each entry's own colour.
std::vector<float> identityTable() {
    std::vector<float> table(32 * 32 * 32 * 3);
    for (int red = 0; red < 32; ++red) {
        for (int green = 0; green < 32; ++green) {
            for (int blue = 0; blue < 32; ++blue) {
                const auto index = static_cast<std::size_t>(8192 * (red / 8) + 256 * green +
                                                            32 * (red % 8) + blue);
                table[3 * index] = static_cast<float>(red) / 31;
                table[3 * index + 1] = static_cast<float>(green) / 31;
                table[3 * index + 2] = static_cast<float>(blue) / 31;
            }
        }
    }
    return table;
}

TEST(CubeText, LetsRedVaryFastest) {
    std::istringstream text(cubeRedFastest(identityTable().data()));
    std::string line;
    for (const char* expected :
         {"LUT_3D_SIZE 32", "DOMAIN_MIN 0.0 0.0 0.0", "DOMAIN_MAX 1.0 1.0 1.0"}) {
        std::getline(text, line);
        EXPECT_EQ(line, expected);
    }
    for (int blue = 0; blue < 32; ++blue) {
        for (int green = 0; green < 32; ++green) {
            for (int red = 0; red < 32; ++red) {
                double r = -1;
                double g = -1;
                double b = -1;
                ASSERT_TRUE(text >> r >> g >> b);
                // Half a unit of the last of eight decimals.
                ASSERT_NEAR(r, red / 31.0, 4e-8);
                ASSERT_NEAR(g, green / 31.0, 4e-8);
                ASSERT_NEAR(b, blue / 31.0, 4e-8);
            }
        }
    }
    EXPECT_FALSE(text >> line) << "nothing follows";
}

TEST(CubeText, WritesEightDecimalsAndOddValues) {
    std::vector<float> table = identityTable();
    table[0] = -0.0f;
    table[1] = std::numeric_limits<float>::quiet_NaN();
    table[2] = std::numeric_limits<float>::max();
    std::istringstream text(cubeRedFastest(table.data()));
    std::string line;
    for (int skipped = 0; skipped < 4; ++skipped) std::getline(text, line);
    EXPECT_EQ(line, "-0.00000000 nan 340282346638528859811704183484516925440.00000000");
    std::getline(text, line);
    EXPECT_EQ(line, "0.03225806 0.00000000 0.00000000");
}

}  // namespace
