#ifndef KELADJUST_APP_PICTURES_ADJUSTER_H
#define KELADJUST_APP_PICTURES_ADJUSTER_H

#include <keladjust/keladjust.h>

#include <memory>
#include <mutex>
#include <string>

#include "pictures/Engine.h"
#include "pictures/Photo.h"

namespace keladjust::app {

/// Which of the library's two paths pictures may take.
enum class GpuUse {
    never,
    /// Where there is a graphics card; a picture that cannot be rendered takes the CPU path.
    whenPossible,
    always  ///< such a picture is a failure
};

/// How a picture was adjusted.
struct Adjustment {
    bool onGpuPath = false;
    std::string obstacle;  ///< why not on the GPU path, if it might have been
};

/// The library's pipeline, for use from many threads: one picture is adjusted at a time, with all
/// of the library's own threads, while others are read and written. The library has one engine, so
/// there is one of these at a time.
class Adjuster {
public:
    /// Starts the engine if it may be used.
    ///
    /// @throws Failure if it does not come up and has to
    explicit Adjuster(GpuUse use);

    /// @throws Failure if the picture has to be rendered and cannot be; it is as it was then
    Adjustment adjust(Photo& photo, const _AdjustParam& record);

private:
    void startEngine();
    void refuseIfGpuMust(const std::string& obstacle) const;

    GpuUse use_;
    std::mutex oneAtATime_;
    /// There only while adjustments take the GPU path: without it the library takes the other.
    std::unique_ptr<Engine> engine_;
    std::string obstacle_;  ///< why there is no engine
};

}  // namespace keladjust::app

#endif
