#ifndef KELADJUST_HOST_GPUPIPELINE_H
#define KELADJUST_HOST_GPUPIPELINE_H

#include <keladjust/CxImage.h>

#include <string>

#include "host/GpuEngine.h"

namespace keladjust {

/// Renders the colour and tone stages with two effects, runs the spatial stages on the CPU and
/// returns `image`. A render that the engine refuses leaves the pixels as they were; what follows
/// still runs.
/// @param reason may be null; set to why the first render that failed did, empty if none
CxImage* runGpuPipeline(CxImage* image, const _AdjustParam& parameters, const GpuEngine& engine,
                        std::string* reason) noexcept;

}  // namespace keladjust

#endif
