#include "commands/OutputPlan.h"

#include <gtest/gtest.h>

#include "files/AtomicFile.h"
#include "support/Pictures.h"
#include "support/TemporaryFolder.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

class OutputPlanTest : public testing::Test {
protected:
    std::filesystem::path picture(const std::string& name, const Codec& codec = pngCodec()) {
        const auto path = folder / name;
        std::filesystem::create_directories(path.parent_path());
        writeFile(path, codec.encode(noise(4, 4, ChannelLayout::bgra), {}));
        options.inputs.push_back(path);
        return path;
    }

    std::string outputName(std::size_t index = 0) {
        return planOutputs(options).pictures.at(index).output.filename().string();
    }

    TemporaryFolder folder;
    Options options;
};

TEST_F(OutputPlanTest, KeepsNamesInAFolder) {
    picture("a.png");
    picture("b.JPG", jpegCodec());
    options.output = folder / "out";
    EXPECT_EQ(outputName(0), "a.png");
    EXPECT_EQ(outputName(1), "b.JPG");
    EXPECT_EQ(planOutputs(options).folder, folder / "out");
}

TEST_F(OutputPlanTest, MakesExtensionsFitTheContent) {
    picture("misnamed.jpg", pngCodec());
    options.output = folder / "out/";
    EXPECT_EQ(outputName(), "misnamed.png");
    options.format = &tiffCodec();
    EXPECT_EQ(outputName(), "misnamed.tif");
}

TEST_F(OutputPlanTest, TakesTheFormatFromTheOutputsExtension) {
    picture("a.png");
    options.output = folder / "b.WEBP";
    EXPECT_EQ(planOutputs(options).pictures[0].codec, &webpCodec());
    options.output = folder / "b.xyz";
    EXPECT_THROW(planOutputs(options), UsageError);
    options.format = &jpegCodec();
    EXPECT_EQ(planOutputs(options).pictures[0].codec, &jpegCodec());
}

TEST_F(OutputPlanTest, RefusesAnyWayToNameTheInput) {
    picture("a.png");
    for (const char* name : {"a.png", "./a.png", "sub/../a.png"}) {
        options.output = folder / name;
        EXPECT_THROW(planOutputs(options), UsageError) << name;
    }
    options.output = folder / "";
    EXPECT_THROW(planOutputs(options), UsageError);
    std::filesystem::create_hard_link(folder / "a.png", folder / "hard.png");
    options.output = folder / "hard.png";
    EXPECT_THROW(planOutputs(options), UsageError);
}

TEST_F(OutputPlanTest, RefusesToReplaceAnotherInput) {
    picture("x/a.png");
    picture("out/a.png");
    options.output = folder / "out";
    EXPECT_THROW(planOutputs(options), UsageError);
}

TEST_F(OutputPlanTest, RefusesTwoOutputsOfOneName) {
    picture("x/a.png");
    picture("y/a.png");
    options.output = folder / "out";
    EXPECT_THROW(planOutputs(options), UsageError);
}

TEST_F(OutputPlanTest, TellsNamesApartAsTheSystemDoes) {
    picture("x/a.png");
    picture("y/A.PNG");
    options.output = folder / "out";
    if (std::filesystem::path::preferred_separator == '\\') {
        EXPECT_THROW(planOutputs(options), UsageError);  // one file to Windows
    } else {
        EXPECT_NO_THROW(planOutputs(options));
    }
}

TEST_F(OutputPlanTest, CountsComparisonsSheetsAndPresetsAmongTheOutputs) {
    picture("x/a.png");
    picture("x/a-compare.png");
    options.output = folder / "out";
    EXPECT_NO_THROW(planOutputs(options));
    options.compare = true;
    EXPECT_THROW(planOutputs(options), UsageError);
    options.compare = false;
    options.savePreset = folder / "x/a.png";
    EXPECT_THROW(planOutputs(options), UsageError);
}

TEST_F(OutputPlanTest, NamesComparisonAndSheetAfterTheOutput) {
    picture("a.png");
    options.output = folder / "b.tif";
    options.compare = true;
    options.sheet = findSetting("red-hue");
    const PicturePlan plan = planOutputs(options).pictures[0];
    EXPECT_EQ(plan.comparison, folder / "b-compare.tif");
    EXPECT_EQ(plan.sheet, folder / "b-sheet-red-hue.tif");
}

TEST_F(OutputPlanTest, RefusesAFileAsTheFolderOfSeveral) {
    picture("a.png");
    picture("b.png");
    writeFile(folder / "file", std::string_view("x"));
    options.output = folder / "file";
    EXPECT_THROW(planOutputs(options), UsageError);
}

}  // namespace
