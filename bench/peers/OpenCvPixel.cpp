// Per-pixel stages with OpenCV, in place where OpenCV can. Round trips through HSV and HLS are
// shown bare, without the change that a stage would make between there and back.

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "peers/OpenCv.h"
#include "peers/OpenCvColours.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::ElevenSettings;
using keladjust::bench::ElevenTables;
using keladjust::bench::onMat;
using keladjust::bench::Preview;

struct Scale {
    void operator()(cv::Mat picture) const { picture.convertTo(picture, -1, factor, offset); }
    double factor;
    double offset;
};

struct RoundTrip {
    void operator()(cv::Mat picture) {
        cv::cvtColor(picture, converted, there);
        cv::cvtColor(converted, picture, back, 4);
    }
    cv::ColorConversionCodes there;
    cv::ColorConversionCodes back;
    cv::Mat converted{};
};

/// Of three channels, for which OpenCV has a faster way than for four; taking alpha away beforehand
/// and putting it back are not counted.
struct Rotation {
    void operator()(const cv::Mat& in) {
        if (colours.empty()) cv::cvtColor(in, colours, cv::COLOR_BGRA2BGR);
        const cv::Matx33f matrix(0.91f, 0.33f, -0.24f,  //
                                 -0.24f, 0.91f, 0.33f,  //
                                 0.33f, -0.24f, 0.91f);
        cv::transform(colours, out, matrix);
    }
    cv::Mat colours{};
    cv::Mat out{};
};

const RoundTrip throughHsv{cv::COLOR_BGR2HSV, cv::COLOR_HSV2BGR};
const RoundTrip throughHls{cv::COLOR_BGR2HLS, cv::COLOR_HLS2BGR};

const bool added = addRows("OpenCV", {{"exposure", onMat(Scale{1.09, 0})},
                                      {"brightness", onMat(Scale{1.1, 0})},
                                      {"contrast", onMat(Scale{1.09, -12})},
                                      {"saturation", onMat(throughHsv)},
                                      {"colour range, one slider", onMat(throughHls)},
                                      {"colour range, three sliders", onMat(throughHls)},
                                      {"hue", onMat(Rotation{})},
                                      {"eleven settings", onMat(ElevenSettings{}), true},
                                      {"preview", onMat(Preview{}), true}}) &&
                   addRows("OpenCV tables alone", {{"eleven settings", onMat(ElevenTables{})}});

}  // namespace
