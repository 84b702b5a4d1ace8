#ifndef KELADJUST_HOST_GPUPIPELINE_H
#define KELADJUST_HOST_GPUPIPELINE_H

#include <keladjust/CxImage.h>

#include "host/GpuEngine.h"

namespace keladjust {

/// Renders the colour and tone stages with two effects, runs the spatial stages on the CPU and
/// returns `image`. A render that the engine refuses leaves the pixels as they were; what follows
/// still runs, unless the caller wants to know.
///
/// @param reason if given, the first refused render is the end, and this says why; empty otherwise
CxImage* runGpuPipeline(CxImage* image, const _AdjustParam& parameters, const GpuEngine& engine,
                        EngineReason* reason = nullptr) noexcept;

}  // namespace keladjust

#endif
