// What a whole look takes with OpenCV, one call after another.

#include <opencv2/core.hpp>

#include "peers/OpenCv.h"
#include "peers/OpenCvColours.h"
#include "peers/OpenCvDetail.h"
#include "support/Rows.h"

namespace {

using namespace keladjust::bench;

struct Look {
    void operator()(cv::Mat picture) {
        colours(picture);
        clarity(picture);
        sharpen(clarity.out);
        dehaze(sharpen.out);
    }
    Preview colours{};
    Clarity clarity{};
    Sharpen sharpen{};
    Dehaze dehaze{};
};

const bool added = addRows("OpenCV", {{"look", onMat(Look{}), true}});

}  // namespace
