#ifndef KELADJUST_PLATFORM_VECTORTARGETS_H
#define KELADJUST_PLATFORM_VECTORTARGETS_H

#include <cstdint>

namespace keladjust::platform {

/// The instruction sets that this processor has and the system lets it use, as Highway's bits. A
/// file of its own for each processor implements it.
std::int64_t detectVectorTargets();

}  // namespace keladjust::platform

#endif
