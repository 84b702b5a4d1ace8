// The text of cube files, digit by digit.

#include "lut/CubeFile.h"

#include <gtest/gtest.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <locale>
#include <random>
#include <string>
#include <vector>

#include "arithmetic/BitCast.h"
#include "support/OddNumbers.h"

namespace {

using keladjust::CubeFile;
using keladjust::test::infinity;
using keladjust::test::quietNan;
namespace fs = std::filesystem;

class CubeFileText : public testing::Test {
protected:
    CubeFileText()
        : path_(fs::temp_directory_path() /
                ("keladjust-text-" + std::to_string(std::random_device()()) + ".cube")) {}
    ~CubeFileText() override { fs::remove(path_); }

    void write(const std::vector<float>& values) const {
        CubeFile file(path_.string().c_str());
        ASSERT_TRUE(file.isOpen());
        for (std::size_t i = 0; i + 2 < values.size(); i += 3) {
            file.writeColour(values[i], values[i + 1], values[i + 2]);
        }
    }

    // The lines behind the header.
    std::vector<std::string> dataLines() const {
        std::ifstream file(path_);
        std::vector<std::string> lines;
        std::string line;
        while (std::getline(file, line)) lines.push_back(line);
        if (lines.size() < 8) return {};
        return {lines.begin() + 8, lines.end()};
    }

    fs::path path_;
};

TEST_F(CubeFileText, HeaderIsAlwaysTheSame) {
    write({});
    std::ifstream file(path_);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    EXPECT_EQ(text,
              "#LUT size\n"
              "LUT_3D_SIZE 32\n"
              "\n"
              "#data domain\n"
              "DOMAIN_MIN 0.0 0.0 0.0\n"
              "DOMAIN_MAX 1.0 1.0 1.0\n"
              "\n"
              "#LUT data points\n");
}

TEST_F(CubeFileText, LinesEndAsThePlatformEndsThem) {
    write({0.25f, 0.5f, 1.0f});
    std::ifstream file(path_, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    std::string expected;
    for (const char* line :
         {"#LUT size", "LUT_3D_SIZE 32", "", "#data domain", "DOMAIN_MIN 0.0 0.0 0.0",
          "DOMAIN_MAX 1.0 1.0 1.0", "", "#LUT data points", "0.25000000 0.50000000 1.00000000"}) {
        expected += line;
        expected += KELADJUST_LINE_END;
    }
    EXPECT_EQ(text, expected);
}

TEST_F(CubeFileText, ValuesOutsideTheUnitRangeStayAsTheyAre) {
    write({-0.01234568f, 1.10000002f, 0.0f});
    EXPECT_EQ(dataLines(), std::vector<std::string>{"-0.01234568 1.10000002 0.00000000"});
}

TEST_F(CubeFileText, OddValuesHaveOneSpelling) {
    write({-0.0f, quietNan, std::copysign(quietNan, -1.0f), infinity, -infinity, -1e-20f});
    EXPECT_EQ(dataLines(), (std::vector<std::string>{"-0.00000000 nan nan",  //
                                                     "inf -inf -0.00000000"}));
}

TEST_F(CubeFileText, TiesGoToTheEvenDigit) {
    // 1/512 = 0.001953125 and 3/512 = 0.005859375 lie half-way between two numbers of 8 decimals.
    write({1.0f / 512, 3.0f / 512, -1.0f / 512});
    EXPECT_EQ(dataLines(), std::vector<std::string>{"0.00195312 0.00585938 -0.00195312"});
}

TEST_F(CubeFileText, LargeValuesHaveAllTheirDigits) {
    write({1e30f, -8388608.0f, 8388607.5f, -std::numeric_limits<float>::max(), 16777216.0f, 1e6f});
    EXPECT_EQ(dataLines(),
              (std::vector<std::string>{
                  "1000000015047466219876688855040.00000000 -8388608.00000000 8388607.50000000",
                  "-340282346638528859811704183484516925440.00000000 16777216.00000000 "
                  "1000000.00000000"}));
}

// Any number at all prints as the exact value of the float, rounded half to even.
TEST_F(CubeFileText, DigitsAreExactForAnyFloat) {
    std::mt19937 generator(7);
    std::vector<float> values;
    while (values.size() < 300000) {
        // Half of them anywhere, half of them where tables lie.
        const float anywhere = keladjust::bitCast<float>(static_cast<std::uint32_t>(generator()));
        if (!std::isnan(anywhere)) values.push_back(anywhere);
        values.push_back(static_cast<float>(generator() >> 8) / 16777216.0f);
    }
    values.resize(300000);
    write(values);

    const std::vector<std::string> lines = dataLines();
    ASSERT_EQ(lines.size(), values.size() / 3);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string expected;
        for (std::size_t c = 0; c < 3; ++c) {
            char digits[64];
            const auto end =
                std::to_chars(digits, digits + sizeof digits,
                              static_cast<double>(values[3 * i + c]), std::chars_format::fixed, 8);
            if (c != 0) expected += ' ';
            expected.append(digits, end.ptr);
        }
        ASSERT_EQ(lines[i], expected);
    }
}

struct CommaDecimals : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

// A host in German or French must get the same file.
TEST_F(CubeFileText, DigitsDoNotFollowTheLocale) {
    const std::string previousC = std::setlocale(LC_ALL, nullptr);
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new CommaDecimals));
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "German_Germany.1252"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) break;  // not every machine has one
    }
    write({0.5f, 12345678.0f, 1234.5f});
    std::locale::global(previous);
    std::setlocale(LC_ALL, previousC.c_str());
    EXPECT_EQ(dataLines(), std::vector<std::string>{"0.50000000 12345678.00000000 1234.50000000"});
}

TEST_F(CubeFileText, NullPathIsReportedOnStandardOutput) {
    testing::internal::CaptureStdout();
    const CubeFile file(nullptr);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Path cannot be NULL!\n");
    EXPECT_FALSE(file.isOpen());
}

TEST_F(CubeFileText, UnopenablePathIsReportedOnStandardOutput) {
    const fs::path missing = path_ / "missing" / "table.cube";
    testing::internal::CaptureStdout();
    const CubeFile file(missing.string().c_str());
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Cannot open the path file!\n");
    EXPECT_FALSE(file.isOpen());
}

}  // namespace
