// The filter in melt, and so in what is built on MLT: Kdenlive and Shotcut.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "frei0r/FilterInPrograms.h"
#include "frei0r/Frames.h"
#include "support/Program.h"

namespace {

using namespace keladjust::test;

class Melt : public FilterInPrograms {
protected:
    /// @param filters the command line between what is read and what is written
    std::vector<Frame> filtered(const std::vector<Frame>& frames, FrameSize size,
                                const std::vector<std::string>& filters,
                                const std::string& consumerOption = "real_time=0") {
        writeFrames(folder_ / "in.raw", frames);
        const std::string sides = std::to_string(size.width) + 'x' + std::to_string(size.height);
        const Outcome coded = runProgram(
            KELADJUST_FFMPEG,
            {"-nostdin", "-y", "-v", "error", "-f", "rawvideo", "-pix_fmt", "bgra", "-s", sides,
             "-r", "10", "-i", (folder_ / "in.raw"), "-c:v", "ffv1", (folder_ / "in.mkv")});
        EXPECT_EQ(coded.code, 0) << coded.errors;
        std::ofstream(folder_ / "profile")
            << "description=noise\nframe_rate_num=10\nframe_rate_den=1\nwidth=" << size.width
            << "\nheight=" << size.height
            << "\nprogressive=1\nsample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num="
            << size.width << "\ndisplay_aspect_den=" << size.height << "\ncolorspace=709\n";

        std::vector<std::string> arguments = {"-silent", "-profile", folder_ / "profile",
                                              "avformat:" + (folder_ / "in.mkv").string()};
        arguments.insert(arguments.end(), filters.begin(), filters.end());
        for (const std::string& argument :
             {std::string("-consumer"), "avformat:" + written().string(), std::string("f=rawvideo"),
              std::string("vcodec=rawvideo"), std::string("pix_fmt=bgra"), consumerOption}) {
            arguments.push_back(argument);
        }
        return framesAfter(runMelt(std::move(arguments)), size);
    }

private:
    /// melt 7.12 marks its writer as running when it has started the writer's thread already. On a
    /// busy machine the thread may find before that that it is not to run: the file stays empty,
    /// with any filter or none, and if the thread has ended by then, melt waits for it without end.
    /// That comes to one run in ten at worst, and is no answer: it is asked again.
    Outcome runMelt(std::vector<std::string> arguments) const {
        constexpr int turns = 6;
        constexpr const char* patience = "90";  // seconds
        constexpr int outOfPatience = 124;
        arguments.insert(arguments.begin(), {patience, KELADJUST_MELT});
        Outcome outcome;
        for (int turn = 0; turn < turns; ++turn) {
            std::ofstream(written(), std::ios::trunc);
            outcome = runProgram(KELADJUST_TIMEOUT, arguments);
            const bool neverRan = std::filesystem::is_empty(written());
            if (outcome.code != outOfPatience && !(outcome.code == 0 && neverRan)) break;
        }
        return outcome;
    }
};

TEST_F(Melt, SetsSlidersAndTextByName) {
    const auto frames = noiseFrames(usual, 3);
    expectFrames(filtered(frames, usual,
                          {"-filter", "frei0r.keladjust", "exposure=0.75", "vignette-amount=0.25",
                           "settings=red-hue 5 clarity 30"}),
                 adjusted(frames, usual, recordWith([](_AdjustParam& changed) {
                              changed.exposure = 50;
                              changed.vignetteAmount = -50;
                              changed.range[KELADJUST_RANGE_RED].hue = 5;
                              changed.clarity = 30;
                          })));
}

TEST_F(Melt, FollowsKeyframes) {
    const auto frames = noiseFrames(usual, 9);
    std::vector<Frame> expected;
    for (std::size_t frame = 0; frame < frames.size(); ++frame) {
        // From 0.25 at the first frame to 0.75 at the ninth: -50 to 50 in steps of 12.5.
        const float exposure = -50 + 12.5f * static_cast<float>(frame);
        expected.push_back(adjusted(frames[frame], usual, recordWith([&](_AdjustParam& changed) {
                                        changed.exposure = exposure;
                                    })));
    }
    expectFrames(filtered(frames, usual, {"-filter", "frei0r.keladjust", "exposure=0=0.25;8=0.75"}),
                 expected);
}

// Kdenlive and Shotcut render so: two threads, each with frames and an instance of its own.
TEST_F(Melt, AdjustsFramesInSeveralThreads) {
    const auto frames = noiseFrames(usual, 40);
    expectFrames(
        filtered(frames, usual,
                 {"-filter", "frei0r.keladjust", "exposure=0.75", "settings=clarity 30", "-filter",
                  "frei0r.keladjust", "settings=vignette-amount -50"},
                 "real_time=-2"),
        adjusted(adjusted(frames, usual, recordWith([](_AdjustParam& changed) {
                              changed.exposure = 50;
                              changed.clarity = 30;
                          })),
                 usual, recordWith([](_AdjustParam& changed) { changed.vignetteAmount = -50; })));
}

TEST_F(Melt, AdjustsFramesOfOddSizes) {
    for (const FrameSize size : {FrameSize{61, 47}, {62, 50}}) {
        const auto frames = noiseFrames(size, 2);
        expectFrames(filtered(frames, size,
                              {"-filter", "frei0r.keladjust", "exposure=0.75",
                               "settings=clarity 40 dehaze 20"}),
                     adjusted(frames, size, recordWith([](_AdjustParam& changed) {
                                  changed.exposure = 50;
                                  changed.clarity = 40;
                                  changed.dehaze = 20;
                              })));
    }
}

TEST_F(Melt, RefusesOneParameterAndTakesTheOthers) {
    const auto frames = noiseFrames(usual, 3);
    expectFrames(
        filtered(frames, usual,
                 {"-filter", "frei0r.keladjust", "exposure=nan", "contrast=7", "tint=0.75"}),
        adjusted(frames, usual, recordWith([](_AdjustParam& changed) { changed.tint = 50; })));
}

}  // namespace
