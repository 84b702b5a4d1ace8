#include "text/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace keladjust::app;

TEST(NumberText, ReadsWhatPeopleType) {
    EXPECT_EQ(numberFromText("20"), 20.0);
    EXPECT_EQ(numberFromText("+20"), 20.0);
    EXPECT_EQ(numberFromText("-.5"), -0.5);
    EXPECT_EQ(numberFromText("1e3"), 1000.0);
}

TEST(NumberText, RefusesEverythingElse) {
    for (const char* text : {"", "+", "-", "+-1", "abc", "20%", "20 ", " 20", "1,5", "0x10"}) {
        EXPECT_EQ(numberFromText(text), std::nullopt) << '"' << text << '"';
    }
}

TEST(NumberText, LetsTheCallerSeeValuesBeyondAllBounds) {
    ASSERT_TRUE(numberFromText("1e999"));
    EXPECT_TRUE(std::isinf(*numberFromText("1e999")));
}

TEST(NumberText, PrintsTheShortestText) {
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(-100), "-100");
    EXPECT_EQ(numberText(11500), "11500");
}

TEST(NumberText, PrintsAsManyDecimalsAsAreAskedFor) {
    EXPECT_EQ(numberText(12, 1), "12.0");
    EXPECT_EQ(numberText(0.125, 2), "0.12");  // halves go to the even digit
    EXPECT_EQ(numberText(-1.96, 1), "-2.0");
    EXPECT_EQ(numberText(1e300, 0).size(), 301u);
}

}  // namespace
