// Stages that see the whole picture, from OpenCV's building blocks. They leave
// the picture as it is and keep their result and buffers for the next run.

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

#include "peers/OpenCv.h"
#include "peers/OpenCvDetail.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::Clarity;
using keladjust::bench::Dehaze;
using keladjust::bench::edges;
using keladjust::bench::onMat;
using keladjust::bench::Sharpen;
using keladjust::bench::TwoMeans;

constexpr float lens = 20;

/// The kernel of a Stack Blur of radius 1.
struct SmallGaussian {
    void operator()(const cv::Mat& in) { cv::GaussianBlur(in, out, {3, 3}, 0, 0, edges); }
    cv::Mat out{};
};

struct LargeGaussian {
    void operator()(const cv::Mat& in) { cv::GaussianBlur(in, out, {101, 101}, 0, 0, edges); }
    cv::Mat out{};
};

struct Mean15 {
    void operator()(const cv::Mat& in) {
        cv::blur(cv::Mat(in.rows, in.cols, CV_8UC1, in.data), out, {15, 15}, {-1, -1}, edges);
    }
    cv::Mat out{};
};

struct Diffuse {
    void operator()(const cv::Mat& in) {
        in.convertTo(brighter, -1, 1 + std::sin(50 * CV_PI / 1440));
        blurred(brighter);
    }
    cv::Mat brighter{};
    SmallGaussian blurred{};
};

/// Fills a map with the places that lie `factor(squared distance)` times as far from the centre.
/// Distances along x and y count in units of `unit`.
template <class Factor>
void fillLensMap(cv::Mat& map, cv::Size size, cv::Point2f unit, Factor factor) {
    map.create(size, CV_16SC2);
    const auto centreX = static_cast<float>(size.width / 2);
    const auto centreY = static_cast<float>(size.height / 2);
    cv::parallel_for_({0, size.height}, [&](const cv::Range& band) {
        for (int y = band.start; y < band.end; ++y) {
            const float dy = static_cast<float>(y) - centreY;
            auto* const row = map.ptr<cv::Vec2s>(y);
            for (int x = 0; x < size.width; ++x) {
                const float dx = static_cast<float>(x) - centreX;
                const float nx = dx / unit.x;
                const float ny = dy / unit.y;
                const float f = factor(nx * nx + ny * ny);
                row[x] = {static_cast<short>(dx * f + centreX),
                          static_cast<short>(dy * f + centreY)};
            }
        }
    });
}

void fetch(const cv::Mat& in, cv::Mat& out, const cv::Mat& map) {
    cv::remap(in, out, map, cv::noArray(), cv::INTER_NEAREST, edges);
}

struct Distortion {
    void operator()(const cv::Mat& in) {
        if (!keepsMap || map.empty()) {
            constexpr float d = lens / 100;
            const float radius =
                std::hypot(static_cast<float>(in.cols / 2), static_cast<float>(in.rows / 2));
            fillLensMap(map, in.size(), {radius, radius},
                        [](float square) { return (square * d + 1) / (d + 1); });
        }
        fetch(in, out, map);
    }
    bool keepsMap;
    cv::Mat map{};
    cv::Mat out{};
};

struct Fringing {
    void operator()(const cv::Mat& in) {
        const bool fills = !keepsMaps || maps[0].empty();
        cv::split(in, planes);
        for (int c = 0; c < 3; ++c) {
            if (fills) fill(maps[c], in.size(), static_cast<float>(c - 1));
            fetch(planes[c], moved[c], maps[c]);
        }
        moved[3] = planes[3];
        cv::merge(moved, 4, out);
    }
    /// @param side -1 blue, 0 green, 1 red
    static void fill(cv::Mat& map, cv::Size size, float side) {
        constexpr float f = lens / 100;
        const float scale = (1 + f * 0.03f) * (1 + side * f * 0.03f);
        fillLensMap(map, size, {static_cast<float>(size.width), static_cast<float>(size.height)},
                    [scale](float square) {
                        const float eighth = square * square * square * square;
                        return (eighth * std::sqrt(square) * f + 1) * scale;
                    });
    }
    bool keepsMaps;
    cv::Mat maps[3]{};
    cv::Mat planes[4]{};
    cv::Mat moved[4]{};
    cv::Mat out{};
};

struct Grain {
    void operator()(const cv::Mat& in) {
        noise.create(in.size(), CV_16SC1);
        cv::randn(noise, 0, 0.3 * 0.5 * 127);
        if (none.size() != in.size()) none = cv::Mat::zeros(in.size(), CV_16SC1);
        cv::merge(std::vector<cv::Mat>{noise, noise, noise, none}, grey);
        cv::add(in, grey, out, cv::noArray(), CV_8U);
    }
    cv::Mat noise{}, none{}, grey{};
    cv::Mat out{};
};

const bool added = addRows("OpenCV",
                           {
                               {"blur, radius 1", onMat(SmallGaussian{})},
                               {"clarity", onMat(Clarity{})},
                               {"sharpen", onMat(Sharpen{})},
                               {"dehaze", onMat(Dehaze{})},
                               {"15 x 15 mean", onMat(Mean15{})},
                               {"diffuse", onMat(Diffuse{})},
                               {"distortion, map kept", onMat(Distortion{true})},
                               {"distortion, new map", onMat(Distortion{false})},
                               {"fringing, maps kept", onMat(Fringing{true})},
                               {"fringing, new maps", onMat(Fringing{false})},
                               {"grain", onMat(Grain{})},
                           }) &&
                   addRows("OpenCV blur twice", {{"blur, radius 50", onMat(TwoMeans{})}}) &&
                   addRows("OpenCV Gaussian", {{"blur, radius 50", onMat(LargeGaussian{})}});

}  // namespace
