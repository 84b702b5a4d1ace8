#ifndef KELADJUST_BENCH_PEERS_OPENCVDETAIL_H
#define KELADJUST_BENCH_PEERS_OPENCVDETAIL_H

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>

/// Clarity, sharpening and removal of haze from OpenCV's building blocks. They leave the picture as
/// it is and keep their result and buffers for the next run.
namespace keladjust::bench {

constexpr int edges = cv::BORDER_REPLICATE;

/// The kernel of a Stack Blur of radius 50.
struct TwoMeans {
    void operator()(const cv::Mat& in) {
        cv::blur(in, once, {51, 51}, {-1, -1}, edges);
        cv::blur(once, out, {51, 51}, {-1, -1}, edges);
    }
    cv::Mat once{};
    cv::Mat out{};
};

struct Clarity {
    void operator()(const cv::Mat& in) {
        blurred(in);
        cv::addWeighted(in, 1.5, blurred.out, -0.5, 0, out);
    }
    TwoMeans blurred{};
    cv::Mat out{};
};

struct Sharpen {
    void operator()(const cv::Mat& in) {
        constexpr float k = 80.0f / 255.0f;
        const cv::Matx33f kernel(0, -k, 0, -k, 1 + 4 * k, -k, 0, -k, 0);
        cv::filter2D(in, out, -1, kernel, {-1, -1}, 0, edges);
    }
    cv::Mat out{};
};

struct Dehaze {
    void operator()(const cv::Mat& in) {
        cv::split(in, planes);
        cv::min(planes[0], planes[1], minimum);
        cv::min(minimum, planes[2], minimum);
        cv::blur(minimum, mean, {15, 15}, {-1, -1}, edges);

        double brightest = 0;
        for (int c = 0; c < 3; ++c) brightest = std::max(brightest, largest(planes[c]));
        const double light = (largest(mean) + brightest) / 2;
        const double k = std::min(cv::mean(minimum)[0] * 0.8 / 255, 0.9);

        mean.convertTo(veil, CV_8U, k);
        cv::min(minimum, veil, veil);
        cv::subtract(light, veil, kept);
        for (int c = 0; c < 3; ++c) {
            cv::subtract(planes[c], veil, planes[c]);
            cv::divide(planes[c], kept, planes[c], light);
        }
        cv::merge(planes, 4, out);
    }
    static double largest(const cv::Mat& plane) {
        double value = 0;
        cv::minMaxLoc(plane, nullptr, &value);
        return value;
    }
    cv::Mat planes[4]{};
    cv::Mat minimum{}, mean{}, veil{}, kept{};
    cv::Mat out{};
};

}  // namespace keladjust::bench

#endif
