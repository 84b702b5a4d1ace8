#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "settings/Record.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

using Colour = std::array<double, 3>;

/// The entries of a cube file in their order, without the lines that begin with a letter.
std::vector<Colour> entriesOf(const std::filesystem::path& path) {
    const Bytes bytes = readFile(path);
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    std::vector<Colour> entries;
    for (std::string line; std::getline(text, line);) {
        std::istringstream numbers(line);
        Colour colour;
        if (numbers >> colour[0] >> colour[1] >> colour[2]) entries.push_back(colour);
    }
    return entries;
}

class ProgramLut : public testing::Test {
protected:
    std::vector<Colour> table(std::vector<std::string> options) {
        const auto output = folder / "look.cube";
        options.insert(options.begin(), "lut");
        options.insert(options.end(), {"-o", output.string()});
        const Outcome outcome = runProgram(options);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        return entriesOf(output);
    }

    TemporaryFolder folder;
};

TEST_F(ProgramLut, IdentityMapsEveryColourToItself) {
    const auto entries = table({"--order", "red-fastest"});
    ASSERT_EQ(entries.size(), 32u * 32 * 32);
    for (std::size_t index = 0; index < entries.size(); ++index) {
        ASSERT_NEAR(entries[index][0], static_cast<double>(index % 32) / 31, 1e-6);
        ASSERT_NEAR(entries[index][1], static_cast<double>(index / 32 % 32) / 31, 1e-6);
        ASSERT_NEAR(entries[index][2], static_cast<double>(index / 1024) / 31, 1e-6);
    }
}

TEST_F(ProgramLut, LeavesNothingButTheTableInTheCurrentFolder) {
    // No engine is started, whose log would lie there.
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "");
    table({});
    std::filesystem::current_path(before);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, std::vector<std::string>{"look.cube"});
}

TEST_F(ProgramLut, OrdersHoldTheSameColours) {
    const std::vector<std::string> settings = {"--exposure",    "20",  "--red-hue", "30",
                                               "--temperature", "9000"};
    auto redFastest = settings;
    redFastest.insert(redFastest.end(), {"--order", "red-fastest"});
    const auto blueFirst = table(settings);
    const auto redFirst = table(redFastest);
    ASSERT_EQ(blueFirst.size(), 32u * 32 * 32);
    ASSERT_EQ(redFirst.size(), 32u * 32 * 32);
    for (std::size_t red = 0; red < 32; ++red) {
        for (std::size_t green = 0; green < 32; ++green) {
            for (std::size_t blue = 0; blue < 32; ++blue) {
                const Colour& first = blueFirst[1024 * red + 32 * green + blue];
                const Colour& second = redFirst[1024 * blue + 32 * green + red];
                // The library keeps the values of its own file on a scale of 255, which costs up
                // to one unit of the last binary place.
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    ASSERT_NEAR(first[channel], second[channel], 1.5e-7);
                }
            }
        }
    }
}

TEST_F(ProgramLut, HasAnySize) {
    const auto entries = table({"--order", "red-fastest", "--size", "5"});
    ASSERT_EQ(entries.size(), 5u * 5 * 5);
    for (std::size_t index = 0; index < entries.size(); ++index) {
        EXPECT_EQ(entries[index][0], static_cast<double>(index % 5) / 4);
        EXPECT_EQ(entries[index][1], static_cast<double>(index / 5 % 5) / 4);
        EXPECT_EQ(entries[index][2], static_cast<double>(index / 25) / 4);
    }
    EXPECT_EQ(table({"--size", "64"}).size(), 64u * 64 * 64);
}

// As other hosts get it from the library.
TEST_F(ProgramLut, TheUsualOneIsTheLibrarysOwn) {
    const std::vector<std::string> settings = {"--exposure",    "20",  "--red-hue", "30",
                                               "--temperature", "9000"};
    table(settings);
    _AdjustParam record = usualRecord();
    record.exposure = 20;
    record.range[KELADJUST_RANGE_RED].hue = 30;
    record.temperature = 9000;
    // Without an engine, which need not come up for that.
    const std::string nowhere = (folder / "none" / "").string();
    setLogPath(nowhere.c_str());
    initOgreRunTime(nowhere.c_str(), nowhere.c_str());
    EXPECT_TRUE(writeLut3DFile(record, (folder / "library.cube").string().c_str()));
    releaseOgre();

    const auto text = [&](const char* name) {
        std::ifstream file(folder / name);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_EQ(text("look.cube"), text("library.cube"));
}

TEST_F(ProgramLut, TakesPresetsAndOptions) {
    writeFile(folder / "p.json", std::string_view(R"({"exposure": 20, "tint": 9})"));
    EXPECT_EQ(table({"--preset", (folder / "p.json").string(), "--tint", "0"}),
              table({"--exposure", "20"}));
    EXPECT_NE(table({"--exposure", "20"}), table({}));
}

TEST_F(ProgramLut, LeavesOnlyTheTable) {
    table({"--contrast", "10"});
    EXPECT_EQ(folder.files(), std::vector<std::string>{"look.cube"});
}

TEST_F(ProgramLut, NeverGoesOverAPreset) {
    const std::string preset = (folder / "p.json").string();
    writeFile(preset, std::string_view("{}"));
    EXPECT_EQ(runProgram({"lut", "--preset", preset, "-o", preset}).code, 2);
    EXPECT_EQ(readFile(preset), (Bytes{'{', '}'}));
}

}  // namespace
