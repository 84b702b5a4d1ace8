#ifndef KELADJUST_APP_ADJUSTER_H
#define KELADJUST_APP_ADJUSTER_H

#include "Photo.h"

#include <keladjust/keladjust.h>

#include <mutex>

namespace keladjust::app {

/// The library's pipeline, for use from many threads: one picture is adjusted at a time, with all
/// of the library's own threads, while others are read and written.
class Adjuster {
public:
    void adjust(Photo& photo, const _AdjustParam& record);

private:
    std::mutex oneAtATime_;
};

}  // namespace keladjust::app

#endif
