#ifndef KELADJUST_APP_PICTURES_ADJUSTER_H
#define KELADJUST_APP_PICTURES_ADJUSTER_H

#include <keladjust/keladjust.h>

#include <cstdint>
#include <exception>
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

/// An adjustment that came to no end because it was to stop. Nothing is wrong.
class Cancelled : public std::exception {};

/// The library's pipeline, for use from many threads: one picture is adjusted at a time, with all
/// of the library's own threads, while others are read and written. The library has one engine, so
/// there is one of these at a time.
class Adjuster {
public:
    /// Starts the engine if it may be used.
    ///
    /// @param threads for one picture; 0: one per core
    /// @param stop    asked time and again, on the thread that adjusts; may be null
    /// @throws Failure if the engine does not come up and has to
    explicit Adjuster(GpuUse use, int threads = 0, bool (*stop)() = nullptr);

    /// Whether a picture may be adjusted some rows at a time beside other work: it becomes the
    /// same, since nothing of the record looks beyond a pixel, no engine may be used, and there may
    /// be more than one thread.
    bool takesRows(const Photo& photo, const _AdjustParam& record) const;

    /// Some rows of a picture that takesRows(), from any thread, whoever else is adjusting.
    ///
    /// @throws Cancelled if it was to stop
    void adjustRows(Photo& photo, std::uint32_t firstRow, std::uint32_t rows,
                    const _AdjustParam& record);

    /// @throws Failure   if the picture has to be rendered and cannot be; it is as it was then
    /// @throws Cancelled if it was to stop; the picture is of no use then
    Adjustment adjust(Photo& photo, const _AdjustParam& record);

private:
    KeladjustRun runOn(KeladjustPath path);
    void startEngine();
    std::string obstacle() const;
    [[noreturn]] static void refuse(const std::string& obstacle);

    GpuUse use_;
    int threads_;
    bool (*stop_)();
    std::mutex oneAtATime_;
    /// There only while adjustments may take the GPU path.
    std::unique_ptr<Engine> engine_;
    std::string obstacle_;  ///< why there is no engine
};

}  // namespace keladjust::app

#endif
