// Automatic white balance with OpenCV's module xphoto.

#include <opencv2/xphoto.hpp>

#include "peers/OpenCv.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::onMat;

struct WhiteBalance {
    void operator()(const cv::Mat& in) const { balance->balanceWhite(in, out); }
    cv::Ptr<cv::xphoto::SimpleWB> balance = cv::xphoto::createSimpleWB();
    mutable cv::Mat out{};
};

const bool added = addRows("OpenCV", {{"white balance", onMat(WhiteBalance{})}});

}  // namespace
