// The filter in ffmpeg: what comes out of it is the library's own.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "frei0r/FilterInPrograms.h"
#include "frei0r/Frames.h"
#include "support/Program.h"

namespace {

using namespace keladjust::test;

class Ffmpeg : public FilterInPrograms {
protected:
    /// @param filters of ten frames a second
    std::vector<Frame> filtered(const std::vector<Frame>& frames, FrameSize size,
                                const std::string& filters) {
        writeFrames(folder_ / "in.raw", frames);
        const std::string sides = std::to_string(size.width) + 'x' + std::to_string(size.height);
        return framesBy(
            KELADJUST_FFMPEG,
            {"-nostdin", "-y",    "-v",  "error",    "-f",       "rawvideo", "-pix_fmt",
             "bgra",     "-s",    sides, "-r",       "10",       "-i",       (folder_ / "in.raw"),
             "-vf",      filters, "-f",  "rawvideo", "-pix_fmt", "bgra",     written()},
            size);
    }
};

TEST_F(Ffmpeg, SetsSlidersByTheirPlace) {
    const auto frames = noiseFrames(usual, 3);
    const _AdjustParam record = recordWith([](_AdjustParam& changed) {
        changed.temperature = 11500 + (16400 - 11500) / 2;
        changed.tint = -50;
        changed.exposure = 25;
    });
    expectFrames(filtered(frames, usual, "frei0r=keladjust:|0.75|0.25|0.625"),
                 adjusted(frames, usual, record));
}

TEST_F(Ffmpeg, SetsAnythingByText) {
    const auto frames = noiseFrames(usual, 3);
    const _AdjustParam record = recordWith([](_AdjustParam& changed) {
        changed.exposure = 20;
        changed.range[KELADJUST_RANGE_RED].hue = 5;
        changed.distortion = 10;
    });
    expectFrames(filtered(frames, usual, "frei0r=keladjust:exposure 20 red-hue 5 distortion 10"),
                 adjusted(frames, usual, record));
}

TEST_F(Ffmpeg, TakesAPreset) {
    const auto frames = noiseFrames(usual, 2);
    std::ofstream(folder_ / "look.json") << R"({"contrast": 15, "dehaze": 30})";
    const _AdjustParam record = recordWith([](_AdjustParam& changed) {
        changed.contrast = 15;
        changed.dehaze = 30;
    });
    expectFrames(filtered(frames, usual, "frei0r=keladjust:" + (folder_ / "look.json").string()),
                 adjusted(frames, usual, record));
}

const char* const spatial = "frei0r=keladjust:exposure 20 clarity 40 vignette-amount -60";

_AdjustParam spatialRecord() {
    return recordWith([](_AdjustParam& changed) {
        changed.exposure = 20;
        changed.clarity = 40;
        changed.vignetteAmount = -60;
    });
}

TEST_F(Ffmpeg, AdjustsFramesOfAnyHeight) {
    for (const FrameSize size : {FrameSize{64, 47}, {16, 1}, {4112, 3}}) {
        const auto frames = noiseFrames(size, 2);
        expectFrames(filtered(frames, size, spatial), adjusted(frames, size, spatialRecord()));
    }
}

/// The left part of each row of `from`, with opaque black behind it where `to` is wider.
Frame withWidth(const Frame& from, FrameSize size, unsigned to) {
    Frame result;
    for (unsigned y = 0; y < size.height; ++y) {
        for (unsigned x = 0; x < to; ++x) {
            result.push_back(x < size.width ? from[std::size_t{y} * size.width + x] : 0xff000000);
        }
    }
    return result;
}

// This ffmpeg hands over rows of a multiple of 16 pixels without a word of it to the filter: other
// widths are padded by the user, as the page on video says.
TEST_F(Ffmpeg, AdjustsFramesOfAnyWidthThatArePadded) {
    for (const FrameSize size : {FrameSize{61, 47}, {62, 50}, {1, 1}}) {
        const auto frames = noiseFrames(size, 2);
        const FrameSize padded = {(size.width + 15) / 16 * 16, size.height};
        std::vector<Frame> expected;
        for (const Frame& frame : frames) {
            const Frame whole =
                adjusted(withWidth(frame, size, padded.width), padded, spatialRecord());
            expected.push_back(withWidth(whole, padded, size.width));
        }
        expectFrames(filtered(frames, size,
                              "pad=ceil(iw/16)*16:ih," + std::string(spatial) +
                                  ",crop=" + std::to_string(size.width) + ":ih:0:0"),
                     expected);
    }
}

TEST_F(Ffmpeg, HasTwoFiltersInOneGraph) {
    const auto frames = noiseFrames(usual, 3);
    const auto once =
        adjusted(frames, usual, recordWith([](_AdjustParam& changed) { changed.exposure = 30; }));
    expectFrames(
        filtered(frames, usual, "frei0r=keladjust:exposure 30,frei0r=keladjust:clarity 40"),
        adjusted(once, usual, recordWith([](_AdjustParam& changed) { changed.clarity = 40; })));
}

TEST_F(Ffmpeg, IsSwitchedOnAndOff) {
    auto expected = noiseFrames(usual, 6);
    const auto frames = expected;
    const _AdjustParam record = recordWith([](_AdjustParam& changed) { changed.exposure = 30; });
    for (const std::size_t on : {2u, 3u}) expected[on] = adjusted(expected[on], usual, record);
    expectFrames(
        filtered(frames, usual, "frei0r=keladjust:exposure 30:enable='between(t,0.15,0.35)'"),
        expected);
}

TEST_F(Ffmpeg, IsSetAnewByCommands) {
    const auto frames = noiseFrames(usual, 6);
    std::vector<Frame> expected;
    for (std::size_t frame = 0; frame < frames.size(); ++frame) {
        // Frames lie at 0, 0.1, 0.2 ... seconds.
        const float exposure = frame < 2 ? 30.0f : frame < 4 ? -50.0f : 10.0f;
        expected.push_back(adjusted(frames[frame], usual, recordWith([&](_AdjustParam& changed) {
                                        changed.exposure = exposure;
                                    })));
    }
    expectFrames(filtered(frames, usual,
                          "sendcmd=c='0.15 frei0r filter_params |0.5|0.5|0.25; "
                          // The list of commands and the command each take a backslash away.
                          "0.35 frei0r filter_params exposure\\\\ 10',"
                          "frei0r=keladjust:exposure 30"),
                 expected);
}

TEST_F(Ffmpeg, RefusesOneParameterAndTakesTheOthers) {
    const auto frames = noiseFrames(usual, 2);
    expectFrames(
        filtered(frames, usual, "frei0r=keladjust:|nan|0.75|-1|7"),
        adjusted(frames, usual, recordWith([](_AdjustParam& changed) { changed.tint = 50; })));
    for (const char* refused : {"temperature needs", "exposure needs", "brightness needs"}) {
        EXPECT_NE(messages_.find(refused), std::string::npos) << messages_;
    }
}

TEST_F(Ffmpeg, ShowsWhatIsWrongWithAText) {
    const auto frames = noiseFrames(usual, 1);
    expectFrames(filtered(frames, usual, "frei0r=keladjust:exposre 20"), frames);
    EXPECT_NE(messages_.find("unknown setting \"exposre\"; did you mean exposure?"),
              std::string::npos)
        << messages_;
}

}  // namespace
