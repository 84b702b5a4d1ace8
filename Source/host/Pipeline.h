#ifndef KELADJUST_HOST_PIPELINE_H
#define KELADJUST_HOST_PIPELINE_H

#include <keladjust/CxImage.h>

namespace keladjust {

/// Runs every stage on the CPU in its fixed order and returns `image`. Neighbouring per-pixel
/// stages share one pass over the picture; the result is that of the stages called one by one.
CxImage* runCpuPipeline(CxImage* image, const _AdjustParam& parameters) noexcept;

}  // namespace keladjust

#endif
