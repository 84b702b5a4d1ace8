// The table in the hands of another program: ffmpeg's lut3d filter makes of a photograph what the
// library's own stages make of it.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/HostPicture.h"
#include "support/Photograph.h"
#include "support/StageSettings.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::photographCrop;
namespace fs = std::filesystem;

constexpr unsigned width = 640;
constexpr unsigned height = 480;

void runFfmpeg(const std::string& arguments) {
    const std::string command = "ffmpeg -nostdin -v error -y " + arguments;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

class LutOnPhotograph : public testing::Test {
protected:
    LutOnPhotograph()
        : folder_(fs::temp_directory_path() /
                  ("keladjust-ffmpeg-" + std::to_string(std::random_device()()))) {
        fs::create_directory(folder_);
        initOgreRunTime(nullptr, nullptr);
    }
    ~LutOnPhotograph() override {
        releaseOgre();
        fs::remove_all(folder_);
    }

    std::string file(const char* name) const { return (folder_ / name).string(); }

    // Most readers of the format expect red to vary fastest.
    void writeRedFastest(const _AdjustParam& parameters, const std::string& path) const {
        const float* const table = getLut3dData(parameters);
        ASSERT_NE(table, nullptr);
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(path.c_str(), "w"),
                                                                  std::fclose);
        std::fputs("LUT_3D_SIZE 32\n", out.get());
        for (unsigned b = 0; b < 32; ++b) {
            for (unsigned g = 0; g < 32; ++g) {
                for (unsigned r = 0; r < 32; ++r) {
                    const float* const c = table + 3 * (r / 8 * 8192 + g * 256 + r % 8 * 32 + b);
                    std::fprintf(out.get(), "%.9g %.9g %.9g\n", static_cast<double>(c[0]),
                                 static_cast<double>(c[1]), static_cast<double>(c[2]));
                }
            }
        }
    }

    std::vector<std::uint8_t> throughFfmpeg(HostPicture& photograph,
                                            const std::string& cube) const {
        const std::vector<std::uint8_t> bytes = photograph.bytes();
        std::ofstream(file("in.rgb"), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        runFfmpeg("-f rawvideo -pix_fmt rgb24 -s 640x480 -i \"" + file("in.rgb") +
                  "\" -vf lut3d=file=\"" + cube +
                  "\":interp=trilinear -f rawvideo -pix_fmt rgb24 \"" + file("out.rgb") + "\"");
        std::ifstream out(file("out.rgb"), std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(out)), {});
        return {text.begin(), text.end()};
    }

    fs::path folder_;
};

struct Distance {
    double mean = 0;
    double farShare = 0;  ///< of bytes more than 4 levels apart
};

Distance distance(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    Distance result;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int levels = std::abs(int{a[i]} - int{b[i]});
        result.mean += levels;
        result.farShare += levels > 4 ? 1 : 0;
    }
    result.mean /= static_cast<double>(a.size());
    result.farShare /= static_cast<double>(a.size());
    return result;
}

struct Row {
    const char* name;
    _AdjustParam settings;
    // The picture's stages truncate to a byte where the table interpolates floats, which costs up
    // to a level; straight lines between the 32 points of a bent curve cost less than another.
    double mean = 0.75;
    double farShare = 0;
};

Row row(const char* name, float _AdjustParam::*setting, float value) {
    Row result{name, identity};
    result.settings.*setting = value;
    return result;
}

std::vector<Row> rows() {
    Row warm{"warm", identity};
    warm.settings.temperature = 14000;
    // Temperature keeps the lightness through hue and saturation in bytes, which are coarse for
    // dark and for dull colours.
    warm.mean = 1.5;
    warm.farShare = 0.04;
    Row cool = warm;
    cool.name = "cool";
    cool.settings.temperature = 9000;
    return {warm,
            cool,
            row("tint", &_AdjustParam::tint, 20),
            row("exposure", &_AdjustParam::exposure, 20),
            row("brightness", &_AdjustParam::brightness, 20),
            row("darkness", &_AdjustParam::brightness, -20),
            row("contrast", &_AdjustParam::contrast, 20),
            row("vibrance", &_AdjustParam::vibrance, 30),
            row("saturation", &_AdjustParam::saturation, 30),
            row("highlights", &_AdjustParam::highlights, -30),
            row("shadows", &_AdjustParam::shadows, 30),
            row("whites", &_AdjustParam::whites, 20),
            row("blacks", &_AdjustParam::blacks, -20)};
}

TEST_F(LutOnPhotograph, IdentityLeavesThePhotographAlone) {
    HostPicture photograph = photographCrop("nature/YellowFlower", 600, 400, width, height);
    writeRedFastest(identity, file("table.cube"));
    const std::vector<std::uint8_t> looked = throughFfmpeg(photograph, file("table.cube"));
    const std::vector<std::uint8_t> original = photograph.bytes();
    ASSERT_EQ(looked.size(), original.size());
    // ffmpeg truncates a sum of products that may fall just short of the level.
    for (std::size_t i = 0; i < original.size(); ++i) {
        ASSERT_LE(std::abs(int{looked[i]} - int{original[i]}), 1) << i;
    }
}

TEST_F(LutOnPhotograph, MatchesTheStagesOnThePicture) {
    HostPicture photograph = photographCrop("nature/YellowFlower", 600, 400, width, height);
    for (const Row& r : rows()) {
        SCOPED_TRACE(r.name);
        writeRedFastest(r.settings, file("table.cube"));
        const std::vector<std::uint8_t> looked = throughFfmpeg(photograph, file("table.cube"));

        HostPicture picture(photograph);
        doAdjust(picture.image(), r.settings);
        ASSERT_EQ(looked.size(), picture.size());
        const Distance matched = distance(looked, picture.bytes());
        EXPECT_LE(matched.mean, r.mean);
        EXPECT_LE(matched.farShare, r.farShare);
        // The match means something only where the setting changes the photograph by more.
        EXPECT_GT(distance(photograph.bytes(), picture.bytes()).mean, 2 * matched.mean);
    }
}

// The library's own file has blue fastest: read by a program that expects red there, it swaps the
// two channels of the identity.
TEST_F(LutOnPhotograph, TheLibrarysOwnFileHasBlueFastest) {
    HostPicture photograph = photographCrop("nature/YellowFlower", 600, 400, width, height);
    ASSERT_TRUE(writeLut3DFile(identity, file("table.cube").c_str()));
    const std::vector<std::uint8_t> looked = throughFfmpeg(photograph, file("table.cube"));
    const std::vector<std::uint8_t> original = photograph.bytes();
    ASSERT_EQ(looked.size(), original.size());
    for (std::size_t i = 0; i < original.size(); i += 3) {
        ASSERT_LE(std::abs(int{looked[i]} - int{original[i + 2]}), 1) << i;
        ASSERT_LE(std::abs(int{looked[i + 2]} - int{original[i]}), 1) << i;
    }
}

}  // namespace
