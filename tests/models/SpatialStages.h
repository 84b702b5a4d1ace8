#ifndef KELADJUST_TESTS_MODELS_SPATIALSTAGES_H
#define KELADJUST_TESTS_MODELS_SPATIALSTAGES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "arithmetic/Angle.h"
#include "models/RawPixels.h"
#include "models/Scalars.h"
#include "models/StackBlur.h"

/// The stages that look at neighbours, at positions or at the whole picture, each done the plainest
/// way. All change the image in place.
namespace keladjust::test {

inline std::vector<std::uint8_t> pixelsOf(const CxImage& image) {
    return {image.pBits, image.pBits + image.size};
}

/// `blurred` is the library's own blur on a copy or the model's; both passes.
inline void blurImageModel(CxImage& image, int radius) {
    const int bytes = static_cast<int>(image.bpp / 8);
    if (bytes != 1 && bytes != 3 && bytes != 4) return;
    blurModel(image.pBits, static_cast<int>(image.width), static_cast<int>(image.height), bytes,
              radius);
}

inline void clarityModel(CxImage& image, float setting) {
    if (setting == 0) return;
    const std::vector<std::uint8_t> sharp = pixelsOf(image);
    const double strength = std::fabs(static_cast<double>(setting));
    if (strength > 2 && strength < 254) {
        blurImageModel(image, setting > 0 ? static_cast<int>(setting * 0.5f) : 2);
    }
    const float factor = setting / 200.0f;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        for (std::size_t c = 0; c < channels; ++c) {
            const float s = sharp[static_cast<std::size_t>(pixel - image.pBits) + c];
            const float b = pixel[c];
            pixel[c] = static_cast<std::uint8_t>(clampByte((s - b) * factor + s));
        }
    });
}

inline std::vector<std::uint8_t> meanModel(const std::vector<std::uint8_t>& map, int width,
                                           int height) {
    std::vector<std::uint8_t> means(map.size());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            unsigned sum = 0;
            unsigned count = 0;
            for (int v = std::max(y - 7, 0); v <= std::min(y + 7, height - 1); ++v) {
                for (int u = std::max(x - 7, 0); u <= std::min(x + 7, width - 1); ++u) {
                    sum += map[static_cast<std::size_t>(v * width + u)];
                    ++count;
                }
            }
            means[static_cast<std::size_t>(y * width + x)] = static_cast<std::uint8_t>(sum / count);
        }
    }
    return means;
}

inline void dehazeModel(CxImage& image, float setting) {
    if (setting == 0) return;
    if (!(setting > 0)) {
        const float t = setting / 100.0f;
        mapRawPixels(image, [&](int in) {
            return clampByte((static_cast<float>(in) - t * 255.0f) / (1.0f - t));
        });
        return;
    }
    std::vector<std::uint8_t> minimum;
    int brightest = 0;
    unsigned long long sum = 0;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        if (channels == 0) return;
        minimum.push_back(*std::min_element(pixel, pixel + channels));
        brightest = std::max<int>(brightest, *std::max_element(pixel, pixel + channels));
        sum += minimum.back();
    });
    if (minimum.empty()) return;
    const std::vector<std::uint8_t> mean =
        meanModel(minimum, static_cast<int>(image.width), static_cast<int>(image.height));
    const float m = static_cast<float>(sum / minimum.size());
    float k = m * (setting / 100.0f * 1.6f) / 255.0f;
    if (k > 0.9f) k = 0.9f;
    const float light =
        static_cast<float>(*std::max_element(mean.begin(), mean.end()) + brightest) * 0.5f;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t i, std::size_t channels) {
        const int veil = std::min<int>(minimum[i], clampByte(static_cast<float>(mean[i]) * k));
        for (std::size_t c = 0; c < channels; ++c) {
            pixel[c] = static_cast<std::uint8_t>(clampByte(
                static_cast<float>(pixel[c] - veil) / (1.0f - static_cast<float>(veil) / light)));
        }
    });
}

inline void grainModel(CxImage& image, float amount, float size) {
    if (amount == 0 || size == 0) return;
    std::uint32_t state = 0;
    const auto draw = [&] {
        state = state * 214013 + 2531011;
        return static_cast<int>(state >> 16 & 0x7FFF);
    };
    const float s = size / 100.0f * (amount / 100.0f);
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        draw();
        int sum = 0;
        for (int i = 0; i < 4; ++i) sum += draw();
        const float z = static_cast<float>(sum * 5.28596089837e-5 - 3.46410161514);
        const float n = z * s * 127.0f;
        for (std::size_t c = 0; c < channels; ++c) {
            pixel[c] = static_cast<std::uint8_t>(clampByte(static_cast<float>(pixel[c]) + n));
        }
    });
}

inline void diffuseModel(CxImage& image, float setting) {
    if (setting == 0) return;
    const float angle = 1.5707964f - setting * 3.1415927f / 1440.0f;
    const float gain = std::fabs(static_cast<float>(cosineOf(static_cast<double>(angle)))) + 1.0f;
    mapRawPixels(image, [&](int c) { return clampByte(static_cast<float>(c) * gain); });
    if (setting > 0) blurImageModel(image, 1);
}

/// At 8, 24 and 32 bits.
inline void sharpenModel(CxImage& image, float setting) {
    if (setting == 0 || image.height < 3) return;
    const std::vector<std::uint8_t> source = pixelsOf(image);
    const std::ptrdiff_t step = image.bytesPerPixel;
    const auto width = static_cast<std::ptrdiff_t>(image.width);
    const auto height = static_cast<std::ptrdiff_t>(image.height);
    const float k = setting / 255.0f;
    const auto at = [&](std::ptrdiff_t x, std::ptrdiff_t y, std::ptrdiff_t c) -> int {
        // Left of a row lies the end of the row above.
        if (x < 0)
            return source[static_cast<std::size_t>((y - 1) * image.effWidth + (width + x) * step +
                                                   c)];
        return source[static_cast<std::size_t>(y * image.effWidth + x * step + c)];
    };
    for (std::ptrdiff_t y = 1; y < height - 1; ++y) {
        for (std::ptrdiff_t x = 1; x < width - 1; ++x) {
            for (std::ptrdiff_t c = 0; c < std::min<std::ptrdiff_t>(3, step); ++c) {
                const int centre = at(x - 1, y, c);
                const int d = 4 * centre - at(x - 2, y, c) - at(x, y, c) - at(x - 1, y - 1, c) -
                              at(x - 1, y + 1, c);
                image.pBits[y * image.effWidth + x * step + c] = static_cast<std::uint8_t>(
                    clampByte(static_cast<float>(d) * k + static_cast<float>(centre)));
            }
        }
    }
}

struct VignetteSettings {
    float amount, feather, highlights, size, roundness, exposure;
};

inline float vignetteMaskModel(int x, int y, int width, int height, const VignetteSettings& s) {
    const float cx = static_cast<float>(width / 2);
    const float cy = static_cast<float>(height / 2);
    const float sz = s.size / 100.0f;
    float a = cx * 0.2f * (sz * 4.0f + 1.0f);
    float b = cy * 0.2f * (sz * 4.0f + 1.0f);
    const float diff = std::fabs(a - b) * (s.roundness / 100.0f);
    if (diff >= 0 && a > b) {
        a -= diff;
    } else if (diff >= 0 && a < b) {
        b -= diff;
    }
    const float band = std::max(a, b) * 0.5f * (s.feather / 100.0f) + 3.0f;
    const float ea = a + band;
    const float eb = b + band;
    const float dx = std::fabs(static_cast<float>(x) - cx);
    const float dy = std::fabs(static_cast<float>(y) - cy);
    if ((dx / a) * (dx / a) + (dy / b) * (dy / b) - 1.0f <= 0) return 1;
    if ((dx / ea) * (dx / ea) + (dy / eb) * (dy / eb) - 1.0f >= 0) return 0;
    const float slope = dy / (dx + 0.000001f);
    const float q = slope * slope;
    const float xx = 1.0f / (q / (eb * eb) + 1.0f / (ea * ea));
    const float r = std::sqrt(xx * q + xx);
    const float e = std::sqrt(dx * dx + dy * dy);
    const float angle = (band - (r - e)) * 3.1415927f / band;
    return (static_cast<float>(std::cos(static_cast<double>(angle))) + 1.0f) * 0.5f;
}

inline void vignetteModel(CxImage& image, const VignetteSettings& s) {
    if (s.amount == 0 && s.exposure == 0) return;
    const float am = s.amount / 100.0f;
    const float ex = static_cast<float>(std::pow(2.0, static_cast<double>(s.exposure / 100.0f)));
    const float hi = std::fabs(am) * (s.highlights / 100.0f * 2.0f - 1.0f);
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const float m = vignetteMaskModel(x, y, static_cast<int>(image.width),
                                              static_cast<int>(image.height), s);
            _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
            Floats c{static_cast<float>(p.red), static_cast<float>(p.green),
                     static_cast<float>(p.blue)};
            const float rest = (1.0f - (2.0f * m - 1.0f)) * 0.5f;
            for (float& v : c) v = (am + 1.0f) * v * rest + m * ex * v;
            if (m < 1) {
                const float l =
                    (1.0f - m) * (1.0f - m) * hi * (1.0f - (c[0] + c[1] + c[2]) / 3.0f / 255.0f);
                for (float& v : c) v = 255.0f - (255.0f - l * v) * (255.0f - v) / 255.0f;
            }
            p.red = static_cast<std::uint8_t>(clampByte(c[0]));
            p.green = static_cast<std::uint8_t>(clampByte(c[1]));
            p.blue = static_cast<std::uint8_t>(clampByte(c[2]));
            image.SetPixelColor(x, y, p);
        }
    }
}

/// What 16 bits keep of a coordinate, truncated.
inline int shortOf(float value) {
    if (value != value) return 0;
    const auto whole =
        static_cast<long long>(std::clamp(static_cast<double>(value), -2147483648.0, 2147483647.0));
    return static_cast<std::int16_t>(static_cast<std::uint64_t>(whole) & 0xFFFF);
}

inline void distortionModel(CxImage& image, float setting) {
    if (setting == 0) return;
    const std::vector<std::uint8_t> source = pixelsOf(image);
    const float d = setting / 100.0f;
    const auto W = static_cast<float>(image.width);
    const auto H = static_cast<float>(image.height);
    const auto cx = static_cast<float>(image.width / 2);
    const auto cy = static_cast<float>(image.height / 2);
    const float R = std::sqrt(cy * cy + cx * cx);
    const float nW = d < 0 ? W : R;
    const float nH = d < 0 ? H : R;
    const float scale = d < 0 ? 1.0f : 1.0f / (d + 1.0f);
    const long long step = image.bpp / 8;
    for (long long i = 0; i < static_cast<long long>(image.width) * image.height; ++i) {
        const float ny = (static_cast<float>(i / image.width) - cy) / nH;
        const float nx = (static_cast<float>(i % image.width) - cx) / nW;
        const float len = std::sqrt(ny * ny + nx * nx);
        const float ux = len == 0 ? 0 : nx / len;
        const float uy = len == 0 ? 0 : ny / len;
        const float p = d > 0 ? len * len * len : len * len * len * len * len * len;
        const float nd = (p * d + len) * scale;
        const long long sx = shortOf(nd * ux * nW + cx);
        const long long sy = shortOf(nd * uy * nH + cy);
        for (long long c = 0; c < step; ++c) {
            const long long at = sy * step * image.width + sx + c;
            if (at >= 0 && at < static_cast<long long>(source.size())) {
                image.pBits[i * step + c] = source[static_cast<std::size_t>(at)];
            }
        }
    }
}

inline void fringingModel(CxImage& image, float setting) {
    if (setting == 0) return;
    CxImage source;
    source.Copy(&image);
    const float f = setting / 100.0f;
    const float off = f * 0.03f;
    const float scale = 1.0f + off;
    const auto W = static_cast<float>(image.width);
    const auto H = static_cast<float>(image.height);
    const auto cx = static_cast<float>(image.width / 2);
    const auto cy = static_cast<float>(image.height / 2);
    const float v = f > 0 ? 2.0f : 1.0f;
    const auto place = [](float value, float last) {
        if (!(value >= 0)) value = 0;
        return shortOf(value >= last ? last : value);
    };
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const float ny = (static_cast<float>(y) - cy) / H;
            const float nx = (static_cast<float>(x) - cx) / W;
            const float len = std::sqrt(ny * ny + nx * nx);
            const float ux = len == 0 ? 0 : nx / len;
            const float uy = len == 0 ? 0 : ny / len;
            const float len10 = len * len * len * len * len * len * len * len * len * len;
            const float nd = (len10 * f + len) * scale;
            const auto blue =
                source.GetPixelColor(place((1.0f - off) * ux * nd * W + cx, W - v),
                                     place((1.0f - off) * uy * nd * H + cy, H - v), true);
            const auto green = source.GetPixelColor(place(ux * nd * W + cx, W - v),
                                                    place(uy * nd * H + cy, H - v), true);
            const auto red =
                source.GetPixelColor(place((1.0f + off) * ux * nd * W + cx, W - v),
                                     place((1.0f + off) * uy * nd * H + cy, H - v), true);
            image.SetPixelColor(x, y, {blue.blue, green.green, red.red, green.alpha});
        }
    }
}

inline void whiteBalanceModel(CxImage& image, float amount) {
    if (amount == 0) return;
    const auto forEachPixel = [&](auto body) {
        for (int y = 0; y < static_cast<int>(image.height); ++y) {
            for (int x = 0; x < static_cast<int>(image.width); ++x) {
                _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
                body(p);
                image.SetPixelColor(x, y, p);
            }
        }
    };
    const std::vector<std::uint8_t> original = pixelsOf(image);
    const auto restore = [&] { std::copy(original.begin(), original.end(), image.pBits); };
    int histogram[768] = {};
    forEachPixel([&](_tagMyRGBQUAD& p) { ++histogram[p.blue + p.green + p.red]; });
    restore();  // reading and writing 16 bits changes them
    const float wanted = static_cast<float>(image.width * image.height) * (amount / 500.0f);
    int threshold = 767;
    float counted = 0;
    for (; threshold >= 0; --threshold) {
        counted += static_cast<float>(histogram[threshold]);
        if (counted > wanted) break;
    }
    threshold = std::max(threshold, 0);
    long long total[3] = {};
    long long count = 0;
    forEachPixel([&](_tagMyRGBQUAD& p) {
        if (p.blue + p.green + p.red <= threshold) return;
        total[0] += p.red;
        total[1] += p.green;
        total[2] += p.blue;
        ++count;
    });
    restore();
    const auto balanced = [&](int channel, long long sum) {
        const long long average = sum == 0 ? 0 : sum / count;
        const long long value = average != 0 ? channel * 255 / average : channel;
        return static_cast<std::uint8_t>(std::min<long long>(value, 255));
    };
    forEachPixel([&](_tagMyRGBQUAD& p) {
        p.red = balanced(p.red, total[0]);
        p.green = balanced(p.green, total[1]);
        p.blue = balanced(p.blue, total[2]);
    });
}

}  // namespace keladjust::test

#endif
