#include "frei0r/Frames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>

#include "settings/Record.h"

namespace keladjust::test {

namespace {

constexpr std::uint32_t opaque = 0xff000000;

std::size_t pixelsIn(FrameSize size) {
    return std::size_t{size.width} * size.height;
}

}  // namespace

Frame noiseFrame(FrameSize size, unsigned seed) {
    std::mt19937 numbers(seed);
    Frame frame(pixelsIn(size));
    for (std::uint32_t& pixel : frame) pixel = static_cast<std::uint32_t>(numbers()) | opaque;
    return frame;
}

std::vector<Frame> noiseFrames(FrameSize size, unsigned count) {
    std::vector<Frame> frames;
    for (unsigned seed = 0; seed < count; ++seed) frames.push_back(noiseFrame(size, seed));
    return frames;
}

_AdjustParam recordWith(const std::function<void(_AdjustParam&)>& change) {
    _AdjustParam record = app::usualRecord();
    change(record);
    return record;
}

Frame adjusted(Frame frame, FrameSize size, const _AdjustParam& record) {
    auto* bits = reinterpret_cast<unsigned char*>(frame.data());
    const std::unique_ptr<CxImage, decltype(&releaseCxImage)> image(
        createCxImage(&bits, size.width, size.height, 32, IMAGE_FORMAT_BGRA), &releaseCxImage);
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = KELADJUST_CPU;
    EXPECT_EQ(keladjustRun(image.get(), &record, sizeof record, &run), KELADJUST_DONE);
    return frame;
}

std::vector<Frame> adjusted(std::vector<Frame> frames, FrameSize size, const _AdjustParam& record) {
    for (Frame& frame : frames) frame = adjusted(std::move(frame), size, record);
    return frames;
}

void writeFrames(const std::filesystem::path& path, const std::vector<Frame>& frames) {
    std::ofstream file(path, std::ios::binary);
    for (const Frame& frame : frames) {
        file.write(reinterpret_cast<const char*>(frame.data()),
                   static_cast<std::streamsize>(frame.size() * sizeof frame[0]));
    }
}

std::vector<Frame> readFrames(const std::filesystem::path& path, FrameSize size) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
    const std::size_t frameBytes = pixelsIn(size) * sizeof(std::uint32_t);
    EXPECT_EQ(bytes.size() % frameBytes, 0u);
    std::vector<Frame> frames;
    for (std::size_t at = 0; at + frameBytes <= bytes.size(); at += frameBytes) {
        Frame frame(pixelsIn(size));
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), frameBytes,
                    reinterpret_cast<char*>(frame.data()));
        frames.push_back(std::move(frame));
    }
    return frames;
}

void expectFrames(const std::vector<Frame>& actual, const std::vector<Frame>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        const auto [found, wanted] = std::ranges::mismatch(actual[index], expected[index]);
        const bool same = found == actual[index].end() && wanted == expected[index].end();
        ASSERT_TRUE(same) << "frame " << index << " differs from pixel "
                          << (found - actual[index].begin());
    }
}

}  // namespace keladjust::test
