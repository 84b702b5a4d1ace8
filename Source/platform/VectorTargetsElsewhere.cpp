#include <hwy/targets.h>

#include "platform/VectorTargets.h"

namespace keladjust::platform {

// Every processor of the kind has what the library is built for there, which is nothing that its
// compiler is not allowed anyway.
std::int64_t detectVectorTargets() {
    return HWY_TARGETS;
}

}  // namespace keladjust::platform
