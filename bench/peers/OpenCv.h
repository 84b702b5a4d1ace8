#ifndef KELADJUST_BENCH_PEERS_OPENCV_H
#define KELADJUST_BENCH_PEERS_OPENCV_H

#include <keladjust/CxImage.h>
#include <opencv2/core.hpp>

#include "support/Rows.h"

namespace keladjust::bench {

/// The picture's own pixels.
inline cv::Mat matOf(CxImage& image) {
    return {static_cast<int>(image.GetHeight()), static_cast<int>(image.GetWidth()), CV_8UC4,
            image.GetBits(), image.GetEffWidth()};
}

/// `effect(mat)` on the picture, with buffers of its own.
template <class Effect>
auto onMat(Effect effect) {
    return [effect](CxImage&) {
        return Work{[effect](CxImage& image) mutable { effect(matOf(image)); }};
    };
}

}  // namespace keladjust::bench

#endif
