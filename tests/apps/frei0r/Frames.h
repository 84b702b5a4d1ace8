#ifndef KELADJUST_TESTS_FRAMES_H
#define KELADJUST_TESTS_FRAMES_H

#include <keladjust/keladjust.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace keladjust::test {

/// A frame's pixels: blue, green, red, alpha.
using Frame = std::vector<std::uint32_t>;

struct FrameSize {
    unsigned width;
    unsigned height;
};

/// Opaque pixels without any pattern, others for every seed.
Frame noiseFrame(FrameSize size, unsigned seed);
std::vector<Frame> noiseFrames(FrameSize size, unsigned count);

/// The record that leaves pictures alone, changed by `change`.
_AdjustParam recordWith(const std::function<void(_AdjustParam&)>& change);

/// The library's own result.
Frame adjusted(Frame frame, FrameSize size, const _AdjustParam& record);
std::vector<Frame> adjusted(std::vector<Frame> frames, FrameSize size, const _AdjustParam& record);

/// Frames as raw video, one after the other.
void writeFrames(const std::filesystem::path& path, const std::vector<Frame>& frames);
std::vector<Frame> readFrames(const std::filesystem::path& path, FrameSize size);

/// Fails for the first frame that is not as expected.
void expectFrames(const std::vector<Frame>& actual, const std::vector<Frame>& expected);

}  // namespace keladjust::test

#endif
