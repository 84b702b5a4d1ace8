#ifndef KELADJUST_HOST_PIPELINE_H
#define KELADJUST_HOST_PIPELINE_H

#include <keladjust/CxImage.h>

namespace keladjust {

/// Runs every stage on the CPU in its fixed order and returns `image`. Neighbouring per-pixel
/// stages share one pass over the picture; the result is that of the stages called one by one.
CxImage* runCpuPipeline(CxImage* image, const _AdjustParam& parameters) noexcept;

/// True if no stage runs.
bool leavesPicturesAlone(const _AdjustParam& parameters) noexcept;

/// True if a picture's rows can as well go through the pipeline a few at a time: every stage
/// changes each pixel by itself, wherever it is, and none is the faster for what it remembers of
/// others. The stages then need no memory that grows with the picture. False also if memory is
/// short.
bool rowsStandAlone(CxImage& image, const _AdjustParam& parameters) noexcept;

/// The last part of it, which the GPU path shares: the stages that look at more than one pixel.
void runSpatialStages(CxImage& image, const _AdjustParam& parameters);

}  // namespace keladjust

#endif
