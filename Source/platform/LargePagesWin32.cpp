#include "platform/LargePages.h"

namespace keladjust::platform {

// Windows gives large pages only to programs with the privilege to lock memory.
void preferLargePages(void*, std::size_t) noexcept {}

}  // namespace keladjust::platform
