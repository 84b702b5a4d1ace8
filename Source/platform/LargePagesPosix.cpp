#include <sys/mman.h>

#include <memory>

#include "platform/LargePages.h"

namespace keladjust::platform {

void preferLargePages(void* memory, std::size_t bytes) noexcept {
    constexpr std::size_t largePage = std::size_t{1} << 21;
    // Those that lie in the memory as a whole. Where the system refuses, pages are as small as
    // ever.
    if (std::align(largePage, largePage, memory, bytes) != nullptr) {
#if defined(MADV_HUGEPAGE)
        madvise(memory, bytes / largePage * largePage, MADV_HUGEPAGE);
#endif
    }
}

}  // namespace keladjust::platform
