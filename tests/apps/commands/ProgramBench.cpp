#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "settings/Record.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "support/Xml.h"
#include "text/NumberText.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

struct Line {
    std::string stage;
    double milliseconds = 0;
    double megapixelsPerSecond = 0;
};

/// The table's lines: those that end in two numbers.
std::vector<Line> linesOf(const std::string& output) {
    std::istringstream text(output);
    std::vector<Line> lines;
    for (std::string each; std::getline(text, each);) {
        std::istringstream words(each);
        std::vector<std::string> all;
        for (std::string word; words >> word;) all.push_back(word);
        if (all.size() < 3) continue;
        const auto speed = numberFromText(all.back());
        const auto time = numberFromText(all[all.size() - 2]);
        if (!speed || !time) continue;
        Line line{all.front(), *time, *speed};
        for (std::size_t i = 1; i + 2 < all.size(); ++i) line.stage += ' ' + all[i];
        lines.push_back(line);
    }
    return lines;
}

class ProgramBench : public testing::Test {
protected:
    std::string picture(const std::string& name, std::uint32_t width = 90,
                        std::uint32_t height = 70) {
        writeFile(folder / name, pngCodec().encode(noise(width, height, ChannelLayout::bgra), {}));
        return (folder / name).string();
    }

    std::vector<Line> measured(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "bench");
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        return linesOf(outcome.output);
    }

    void expectRefusal(std::vector<std::string> arguments, int code, const std::string& text) {
        const auto before = folder.files();
        arguments.insert(arguments.begin(), "bench");
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, code) << outcome.errors;
        EXPECT_NE(outcome.errors.find(text), std::string::npos) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(folder.files(), before);
    }

    std::string chartOf(const std::string& name) {
        const Bytes bytes = readFile(folder / name);
        return {bytes.begin(), bytes.end()};
    }

    TemporaryFolder folder;
};

TEST_F(ProgramBench, HasALineForEveryStage) {
    const auto lines = measured({picture("p.png"), "--runs", "1"});
    std::vector<std::string> stages;
    for (const Line& line : lines) {
        stages.push_back(line.stage);
        // On a small picture or a busy machine either is rounded to 0.
        EXPECT_GE(line.milliseconds, 0) << line.stage;
        EXPECT_GE(line.megapixelsPerSecond, 0) << line.stage;
    }
    // Every setting but those that only say how others act.
    std::vector<std::string> expected = {"memory pass"};
    const std::set<std::string> shapes = {"vignette-size", "vignette-roundness", "vignette-feather",
                                          "vignette-highlights"};
    for (const std::string& name : settingNames()) {
        if (!name.ends_with("-degree") && !shapes.contains(name)) expected.push_back(name);
    }
    expected.insert(expected.end(), {"hue", "grain", "white-balance", "colour ranges at once",
                                     "global settings at once"});
    EXPECT_EQ(stages, expected);
}

TEST_F(ProgramBench, SaysWhatItMeasures) {
    const Outcome outcome =
        runProgram({"bench", picture("p.png", 500, 400), "--runs", "1", "--threads", "1"});
    EXPECT_TRUE(
        outcome.output.starts_with("p.png: 500 x 400, 0.2 megapixels, 1 thread, median of 1\n"))
        << outcome.output;
}

TEST_F(ProgramBench, MeasuresTheSettingsGiven) {
    const auto lines = measured({picture("p.png"), "--runs", "1", "--clarity", "20"});
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().stage, "the settings given");
}

TEST_F(ProgramBench, TakesGreyPictures) {
    writeFile(folder / "grey.png", pngCodec().encode(noise(50, 40, ChannelLayout::grey), {}));
    EXPECT_EQ(measured({(folder / "grey.png").string(), "--runs", "1"}).size(),
              measured({picture("p.png"), "--runs", "1"}).size());
}

TEST_F(ProgramBench, DrawsABarForEveryLine) {
    const auto lines =
        measured({picture("p.png"), "--runs", "1", "-o", (folder / "chart.svg").string()});
    const std::string chart = chartOf("chart.svg");
    EXPECT_EQ(whyNotXml(chart), "");
    for (const Line& line : lines) {
        EXPECT_NE(chart.find('>' + line.stage + "</text>"), std::string::npos) << line.stage;
        EXPECT_NE(chart.find('>' + numberText(line.milliseconds, 2) + " ms</text>"),
                  std::string::npos)
            << line.stage;
    }
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"chart.svg", "p.png"}));
}

TEST_F(ProgramBench, RefusesWhatItCannotMeasureOrWrite) {
    const std::string good = picture("p.png");
    writeFile(folder / "text.jpg", std::string_view("hello, this is text"));
    expectRefusal({}, 2, "PICTURE is required");
    expectRefusal({(folder / "none.jpg").string()}, 1, "none.jpg: no such file");
    expectRefusal({(folder / "text.jpg").string()}, 1, "not a JPEG, PNG, TIFF or WebP picture");
    expectRefusal({good, good}, 2, "not expected");
    expectRefusal({good, "--runs", "0"}, 2, "--runs");
    expectRefusal({good, "--rums", "3"}, 2, "did you mean --runs");
    expectRefusal({good, "-o", good}, 2, "would be overwritten");
    expectRefusal({good, "-o", (folder / "no/chart.svg").string()}, 1, "cannot write");
}

}  // namespace
