// The vignette as one would write it in plain C++: constants and what a row has in common are taken
// out of the loop, the rest stays as the formula has it. On one core, and on every core.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

#include "support/Rows.h"

namespace {

constexpr float amount = -0.5f, feather = 0.5f, highlights = 0.7f, size = 0.5f, exposure = 0.2f;

class PlainVignette {
public:
    explicit PlainVignette(CxImage& image)
        : image_(image),
          centreX_(static_cast<float>(image.GetWidth() / 2)),
          centreY_(static_cast<float>(image.GetHeight() / 2)),
          innerX_(centreX_ * 0.2f * (size * 4 + 1)),
          innerY_(centreY_ * 0.2f * (size * 4 + 1)),
          band_(std::max(innerX_, innerY_) * 0.5f * feather + 3),
          outerX_(innerX_ + band_),
          outerY_(innerY_ + band_),
          exposed_(std::pow(2.0f, exposure)) {}

    void rows(unsigned begin, unsigned end) {
        for (unsigned y = begin; y < end; ++y) {
            std::uint8_t* p = image_.GetBits() + std::size_t{image_.GetEffWidth()} * y;
            const float dy = std::fabs(static_cast<float>(y) - centreY_);
            for (unsigned x = 0; x < image_.GetWidth(); ++x, p += 4) {
                shade(p, mask(std::fabs(static_cast<float>(x) - centreX_), dy));
            }
        }
    }

private:
    float mask(float dx, float dy) const {
        const float inside = (dx / innerX_) * (dx / innerX_) + (dy / innerY_) * (dy / innerY_);
        if (inside <= 1) return 1;
        const float outside = (dx / outerX_) * (dx / outerX_) + (dy / outerY_) * (dy / outerY_);
        if (outside >= 1) return 0;
        const float slope = dy / (dx + 0.000001f);
        const float q = slope * slope;
        const float xx = 1 / (q / (outerY_ * outerY_) + 1 / (outerX_ * outerX_));
        const float border = std::sqrt(xx * q + xx);
        const float distance = std::sqrt(dx * dx + dy * dy);
        return (std::cos((band_ - (border - distance)) * 3.1415927f / band_) + 1) * 0.5f;
    }

    void shade(std::uint8_t* p, float m) const {
        const float rest = (1 - (2 * m - 1)) * 0.5f;
        float c[3];
        for (int i = 0; i < 3; ++i) {
            const float v = p[i];
            c[i] = (amount + 1) * v * rest + m * exposed_ * v;
        }
        if (m < 1) {
            const float grey = (c[0] + c[1] + c[2]) / 3 / 255;
            const float lift = (1 - m) * (1 - m) * protection_ * (1 - grey);
            for (float& v : c) v = 255 - (255 - lift * v) * (255 - v) / 255;
        }
        for (int i = 0; i < 3; ++i) p[i] = static_cast<std::uint8_t>(std::clamp(c[i], 0.f, 255.f));
    }

    CxImage& image_;
    float centreX_, centreY_;
    float innerX_, innerY_;
    float band_;
    float outerX_, outerY_;
    float exposed_;
    float protection_ = std::fabs(amount) * (highlights * 2 - 1);
};

void onOneCore(CxImage& image) {
    PlainVignette(image).rows(0, image.GetHeight());
}

void onEveryCore(CxImage& image) {
    PlainVignette vignette(image);
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const unsigned height = image.GetHeight();
    std::vector<std::jthread> workers;
    for (unsigned i = 1; i < cores; ++i) {
        workers.emplace_back([&vignette, from = height * i / cores, to = height * (i + 1) / cores] {
            vignette.rows(from, to);
        });
    }
    vignette.rows(0, height / cores);
}

using keladjust::bench::addRows;
using keladjust::bench::plainly;

const bool added = addRows("plain C++", {{"vignette", plainly(onOneCore)}}) &&
                   addRows("plain C++ on every core", {{"vignette", plainly(onEveryCore)}});

}  // namespace
