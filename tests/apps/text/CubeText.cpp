#include "text/CubeText.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using namespace keladjust::app;

// The file has the colours in the order given, whichever that is.
const std::vector<float> eightColours = {0, 0.125f, 0.25f, 0, 0.125f, 0.75f, 0, 0.875f, 0.25f,
                                         0, 0.875f, 0.75f, 1, 0.125f, 0.25f, 1, 0.125f, 0.75f,
                                         1, 0.875f, 0.25f, 1, 0.875f, 0.75f};
const std::string eightLines =
    "0.00000000 0.12500000 0.25000000\n"
    "0.00000000 0.12500000 0.75000000\n"
    "0.00000000 0.87500000 0.25000000\n"
    "0.00000000 0.87500000 0.75000000\n"
    "1.00000000 0.12500000 0.25000000\n"
    "1.00000000 0.12500000 0.75000000\n"
    "1.00000000 0.87500000 0.25000000\n"
    "1.00000000 0.87500000 0.75000000\n";

TEST(CubeText, BeginsWithTheSize) {
    EXPECT_EQ(cubeText(eightColours, 2, CubeOrder::redFastest),
              "LUT_3D_SIZE 2\n"
              "DOMAIN_MIN 0.0 0.0 0.0\n"
              "DOMAIN_MAX 1.0 1.0 1.0\n" +
                  eightLines);
    EXPECT_TRUE(cubeText({}, 65, CubeOrder::redFastest).starts_with("LUT_3D_SIZE 65\n"));
}

TEST(CubeText, HasTheLibrarysRemarksInTheLibrarysOrder) {
    EXPECT_EQ(cubeText(eightColours, 2, CubeOrder::blueFastest),
              "#LUT size\n"
              "LUT_3D_SIZE 2\n"
              "\n"
              "#data domain\n"
              "DOMAIN_MIN 0.0 0.0 0.0\n"
              "DOMAIN_MAX 1.0 1.0 1.0\n"
              "\n"
              "#LUT data points\n" +
                  eightLines);
}

TEST(CubeText, WritesEightDecimalsAndOddValues) {
    using Limits = std::numeric_limits<float>;
    const std::vector<float> odd = {-0.0f,        -Limits::quiet_NaN(), Limits::max(),
                                    1.0f / 31.0f, Limits::infinity(),   0.0f};
    const std::string text = cubeText(odd, 2, CubeOrder::redFastest);
    EXPECT_TRUE(
        text.ends_with("\n"
                       "-0.00000000 nan 340282346638528859811704183484516925440.00000000\n"
                       "0.03225806 inf 0.00000000\n"))
        << text;
}

}  // namespace
