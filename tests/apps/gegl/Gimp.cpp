// The plug-in in GIMP, run without its window, beside the command line.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "codecs/PictureFile.h"
#include "files/AtomicFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "support/Variable.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

constexpr const char* settings = "exposure 20 clarity 30 distortion 10 vignette-amount -50";

// One start of GIMP for all: it takes longer than everything that is tested.
class Gimp : public testing::Test {
protected:
    Gimp() {
        // A folder of its own, in which GIMP finds this plug-in and the two that the test needs.
        const auto plugins = folder_ / "plug-ins";
        std::filesystem::create_directory(plugins);
        for (const char* needed : {"script-fu", "file-png"}) {
            std::filesystem::create_directory_symlink(
                std::filesystem::path(KELADJUST_GIMP_PLUGINS) / needed, plugins / needed);
        }
        std::filesystem::create_directory_symlink(KELADJUST_GIMP_PLUGIN_FOLDER,
                                                  plugins / "keladjust");
        std::ofstream(folder_ / "gimprc") << "(plug-in-path \"" << plugins.string() << "\")\n";

        const Codec& png = *codecForExtension("png");
        writeFile(folder_ / "in.png", png.encode(noise(161, 119, ChannelLayout::bgra), {}));
        EXPECT_EQ(
            runProgram({folder_ / "in.png", "--exposure", "20", "--clarity", "30", "--distortion",
                        "10", "--vignette-amount", "-50", "-q", "-o", folder_ / "program.png"})
                .code,
            0);
    }

    /// Runs lines of Scheme. In them, (adjust PREPARE SETTINGS OUT) loads the picture, has PREPARE
    /// called with its image and layer, adjusts it and saves it.
    Outcome runScript(const std::string& lines) {
        const std::string in = folder_ / "in.png";
        std::ofstream(folder_ / "script.scm")
            << "(define (adjust prepare settings out)\n"
               "  (let* ((image (car (file-png-load RUN-NONINTERACTIVE \""
            << in << "\" \"in.png\")))\n"
            << "         (layer (car (gimp-image-get-active-layer image))))\n"
               "    (prepare image layer)\n"
               "    (plug-in-keladjust RUN-NONINTERACTIVE image layer settings)\n"
               "    (file-png-save-defaults RUN-NONINTERACTIVE image layer out out)))\n"
               "(define (nothing image layer) #t)\n"
            << lines;
        const Variable folder("GIMP2_DIRECTORY", folder_.path().c_str());
        return runProgram(
            KELADJUST_GIMP_PROGRAM,
            {"-i", "-d", "-f", "-s", "-b", "(load \"" + (folder_ / "script.scm").string() + "\")",
             "-b", "(gimp-quit 1)"});
    }

    std::string quoted(const std::string& name) const {
        return '"' + (folder_ / name).string() + '"';
    }

    const TemporaryFolder folder_;
};

TEST_F(Gimp, AdjustsInBatchWhatTheCommandLineDoes) {
    std::ofstream(folder_ / "look.json")
        << R"({"exposure": 20, "clarity": 30, "distortion": 10, "vignette-amount": -50})";
    const std::string text = '"' + std::string(settings) + '"';
    const Outcome outcome =
        runScript("(adjust nothing " + text + " " + quoted("words.png") + ")\n" +
                  "(adjust nothing " + quoted("look.json") + " " + quoted("preset.png") + ")\n" +
                  "(adjust (lambda (image layer)\n"
                  "          (gimp-image-select-rectangle image CHANNEL-OP-REPLACE 20 10 100 50))\n"
                  "        " +
                  text + " " + quoted("selected.png") + ")\n");
    const Photo before = decodeFile(folder_ / "in.png");
    const Photo after = decodeFile(folder_ / "program.png");
    ASSERT_TRUE(std::filesystem::exists(folder_ / "selected.png")) << outcome.errors;
    expectSamePixels(decodeFile(folder_ / "words.png"), after);
    expectSamePixels(decodeFile(folder_ / "preset.png"), after);

    // What is selected is as in a picture that was adjusted as a whole, and nothing else changed.
    const Photo selected = decodeFile(folder_ / "selected.png");
    for (std::uint32_t y = 0; y < before.height(); ++y) {
        for (std::uint32_t x = 0; x < before.width(); ++x) {
            const bool inside = x >= 20 && x < 120 && y >= 10 && y < 60;
            const Photo& expected = inside ? after : before;
            for (std::size_t channel = 0; channel < 3; ++channel) {
                ASSERT_EQ(selected.pixel(x, y)[channel], expected.pixel(x, y)[channel])
                    << x << ", " << y;
            }
        }
    }
}

TEST_F(Gimp, SaysWhatIsWrongWithSettingsAndLeavesTheLayerAlone) {
    const Outcome outcome =
        runScript("(let* ((image (car (file-png-load RUN-NONINTERACTIVE " + quoted("in.png") +
                  " \"\")))\n"
                  "       (layer (car (gimp-image-get-active-layer image))))\n"
                  "  (catch #t (plug-in-keladjust RUN-NONINTERACTIVE image layer \"exposre 20\"))\n"
                  "  (file-png-save-defaults RUN-NONINTERACTIVE image layer " +
                  quoted("out.png") + " \"\"))\n");
    EXPECT_NE((outcome.output + outcome.errors)
                  .find("unknown setting \"exposre\"; did you mean exposure?"),
              std::string::npos)
        << outcome.errors;
    expectSamePixels(decodeFile(folder_ / "out.png"), decodeFile(folder_ / "in.png"));
}

}  // namespace
