#include "arithmetic/Angle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using keladjust::cosineOf;
using keladjust::sineOf;

// Both come within a few units in the last place of numbers up to 1.
constexpr double lastPlaces = 4e-16;

TEST(Angle, OfUsualSizeIsThatOfTheCLibrary) {
    for (int i = -200000; i <= 200000; ++i) {
        const double angle = i * 0.001;
        ASSERT_NEAR(sineOf(angle), std::sin(angle), lastPlaces) << angle;
        ASSERT_NEAR(cosineOf(angle), std::cos(angle), lastPlaces) << angle;
    }
}

// Expected values from 900 bits of pi and series in whole numbers.
TEST(Angle, OfAnySizeIsExact) {
    struct Known {
        double angle;
        double sine;
        double cosine;
    };
    for (const auto& [angle, sine, cosine] :
         {Known{1e6, -0.34999350217129294, 0.9367521275331447},
          {1e22, -0.8522008497671888, 0.523214785395139},
          {1.7453292782571125e+28, -0.9515000310203973, -0.3076486485720083},
          {1.0000000150474662e+30, -0.7911634385219837, -0.6116047854178966},
          {0x1p120, 0.377820109360752, -0.9258790228548379},
          {3.4028234663852886e+38, -0.5218765233336585, 0.8530210398303042}}) {
        EXPECT_NEAR(sineOf(angle), sine, lastPlaces) << angle;
        EXPECT_NEAR(cosineOf(angle), cosine, lastPlaces) << angle;
        EXPECT_EQ(sineOf(-angle), -sineOf(angle)) << angle;
        EXPECT_EQ(cosineOf(-angle), cosineOf(angle)) << angle;
    }
}

// Half a turn as a double is not quite pi; what is missing is its sine, to all digits.
TEST(Angle, NearHalfATurnKeepsItsDigits) {
    EXPECT_NEAR(sineOf(3.141592653589793) / 1.2246467991473532e-16, 1.0, lastPlaces);
    EXPECT_NEAR(cosineOf(1.5707963267948966) / 6.123233995736766e-17, 1.0, lastPlaces);
}

TEST(Angle, WithoutAValueIsNaN) {
    for (const double angle :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_TRUE(std::isnan(sineOf(angle)));
        EXPECT_TRUE(std::isnan(cosineOf(angle)));
    }
}

}  // namespace
