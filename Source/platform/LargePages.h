#ifndef KELADJUST_PLATFORM_LARGEPAGES_H
#define KELADJUST_PLATFORM_LARGEPAGES_H

#include <cstddef>
#include <memory>

#include "platform/UnsetArray.h"

namespace keladjust::platform {

/// Asks the system to back memory that has not been touched yet with pages of some megabytes, where
/// it has such. A page that is touched for the first time costs its fault, which takes longer than
/// most stages spend on the pixels in it.
void preferLargePages(void* memory, std::size_t bytes) noexcept;

/// Working storage of a size that grows with the picture.
template <class Element>
std::unique_ptr<Element[]> makeLargeArray(std::size_t count) {
    auto elements = makeUnsetArray<Element>(count);
    preferLargePages(elements.get(), count * sizeof(Element));
    return elements;
}

}  // namespace keladjust::platform

#endif
