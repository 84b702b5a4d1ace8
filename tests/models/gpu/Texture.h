#ifndef KELADJUST_TESTS_MODELS_GPU_TEXTURE_H
#define KELADJUST_TESTS_MODELS_GPU_TEXTURE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

#include "models/Scalars.h"

namespace keladjust::test::gpu {

/// Texels of four bytes, red first, as fragment programs see them: nearest texel, edges repeated.
class Texture {
public:
    Texture(std::vector<std::uint8_t> rgba, int width, int height)
        : rgba_(std::move(rgba)), width_(width), height_(height) {}

    int width() const { return width_; }
    int height() const { return height_; }
    const std::vector<std::uint8_t>& bytes() const { return rgba_; }

    /// Red, green, blue, alpha.
    std::array<float, 4> texel(int x, int y) const {
        const std::uint8_t* const p = rgba_.data() + offset(x, y);
        const auto unit = [](std::uint8_t byte) { return static_cast<float>(byte) / 255.0f; };
        return {unit(p[0]), unit(p[1]), unit(p[2]), unit(p[3])};
    }
    Floats at(int x, int y) const {
        const auto [red, green, blue, alpha] = texel(x, y);
        return {red, green, blue};
    }

    /// The picture that `program(x, y)` writes, its three or four channels rounded to the nearest
    /// level; without a fourth, alpha stays.
    template <class Program>
    Texture rendered(Program program) const {
        Texture out = *this;
        const auto rows = [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                for (int x = 0; x < width_; ++x) {
                    const auto colour = program(x, y);
                    std::uint8_t* const texel = out.rgba_.data() + offset(x, y);
                    for (std::size_t c = 0; c < colour.size(); ++c) {
                        texel[c] = static_cast<std::uint8_t>(clampUnit(colour[c]) * 255.0f + 0.5f);
                    }
                }
            }
        };
        std::thread otherHalf(rows, height_ / 2, height_);
        rows(0, height_ / 2);
        otherHalf.join();
        return out;
    }

private:
    std::size_t offset(int x, int y) const {
        const auto column = static_cast<std::size_t>(std::clamp(x, 0, width_ - 1));
        const auto row = static_cast<std::size_t>(std::clamp(y, 0, height_ - 1));
        return (row * static_cast<std::size_t>(width_) + column) * 4;
    }

    std::vector<std::uint8_t> rgba_;
    int width_;
    int height_;
};

}  // namespace keladjust::test::gpu

#endif
