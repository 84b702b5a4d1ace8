#ifndef KELADJUST_BENCH_PEERS_OPENCVCOLOURS_H
#define KELADJUST_BENCH_PEERS_OPENCVCOLOURS_H

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

/// What several per-pixel settings at once take with OpenCV.
namespace keladjust::bench {

/// One function for all channels: curves that keep 255 where it is leave alpha alone.
template <class Function>
cv::Mat table(Function f) {
    cv::Mat all(1, 256, CV_8U);
    for (int i = 0; i < 256; ++i) all.at<std::uint8_t>(i) = cv::saturate_cast<std::uint8_t>(f(i));
    return all;
}

/// A factor for each of blue, green and red.
inline cv::Mat table(double blue, double green, double red) {
    cv::Mat all;
    const auto times = [](double factor) { return table([=](int v) { return v * factor; }); };
    cv::merge(std::vector<cv::Mat>{times(blue), times(green), times(red), times(1)}, all);
    return all;
}

inline cv::Mat power(double gamma) {
    return table([gamma](int v) { return 255 * std::pow(v / 255.0, gamma); });
}

/// Nine of the eleven global settings, a call each, the fastest that OpenCV has for it: exposure,
/// brightness and contrast by a factor and an offset; temperature, tint, highlights, shadows,
/// whites and blacks by tables.
struct NineSettings {
    void operator()(cv::Mat picture) const {
        cv::LUT(picture, temperature, picture);
        cv::LUT(picture, tint, picture);
        picture.convertTo(picture, -1, 1.09);
        picture.convertTo(picture, -1, 1.1);
        picture.convertTo(picture, -1, 1.2, -25);
        for (const cv::Mat& curve : tones) cv::LUT(picture, curve, picture);
    }
    cv::Mat temperature = table(1.1, 1, 0.9);
    cv::Mat tint = table(1.05, 0.95, 1.05);
    std::array<cv::Mat, 4> tones = {
        power(1.1), power(0.9), table([](int v) { return v + 20 * std::pow(v / 255.0, 4); }),
        table([](int v) { return v - 15 * std::pow(1 - v / 255.0, 4); })};
};

/// And a trip through HSV each for vibrance and saturation.
struct ElevenSettings {
    void operator()(cv::Mat picture) {
        nine(picture);
        for (const cv::Mat* const change : {&vibrance, &saturation}) {
            cv::cvtColor(picture, hsv, cv::COLOR_BGR2HSV);
            cv::split(hsv, planes);
            cv::LUT(planes[1], *change, planes[1]);
            cv::merge(planes, 3, hsv);
            cv::cvtColor(hsv, picture, cv::COLOR_HSV2BGR, 4);
        }
    }
    NineSettings nine{};
    cv::Mat vibrance = table([](int s) { return s + 0.4 * s * (1 - s / 255.0); });
    cv::Mat saturation = table([](int s) { return s * 1.2; });
    cv::Mat hsv{}, planes[3]{};
};

/// Tables in their place, as if a table could do what those two do.
struct ElevenTables {
    void operator()(cv::Mat picture) const {
        nine(picture);
        for (int i = 0; i < 2; ++i) cv::LUT(picture, nine.tones[0], picture);
    }
    NineSettings nine{};
};

/// What a preview needs: the eleven settings, three colour ranges in one trip through HLS, and a
/// vignette whose mask is kept.
struct Preview {
    void operator()(cv::Mat picture) {
        eleven(picture);
        cv::cvtColor(picture, hls, cv::COLOR_BGR2HLS);
        cv::split(hls, planes);
        for (int c = 1; c < 3; ++c) {  // lightness and saturation by a factor that hues have
            cv::LUT(planes[0], c == 1 ? lightnessOfHue : saturationOfHue, factor);
            cv::multiply(planes[c], factor, planes[c], 1.0 / 128);
        }
        cv::LUT(planes[0], hueOfHue, planes[0]);
        cv::merge(planes, 3, hls);
        cv::cvtColor(hls, picture, cv::COLOR_HLS2BGR, 4);
        if (mask.size() != picture.size()) fillMask(picture.size());
        cv::multiply(picture, mask, picture, 1.0 / 255);
    }
    void fillMask(cv::Size size) {
        mask.create(size, CV_8UC4);
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const double r = std::hypot(2.0 * x / size.width - 1, 2.0 * y / size.height - 1);
                const auto m = cv::saturate_cast<std::uint8_t>(255 * std::min(1.0, 1.7 - r));
                mask.at<cv::Vec4b>(y, x) = {m, m, m, 255};
            }
        }
    }
    ElevenSettings eleven{};
    cv::Mat hueOfHue = table([](int h) { return h < 90 ? h + 5 : h; });
    cv::Mat lightnessOfHue = table([](int h) { return h < 90 ? 118 : 128; });
    cv::Mat saturationOfHue = table([](int h) { return h < 90 ? 154 : 128; });
    cv::Mat hls{}, planes[3]{}, factor{}, mask{};
};

}  // namespace keladjust::bench

#endif
