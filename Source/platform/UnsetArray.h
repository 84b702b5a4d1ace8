#ifndef KELADJUST_PLATFORM_UNSETARRAY_H
#define KELADJUST_PLATFORM_UNSETARRAY_H

#include <cstddef>
#include <memory>

namespace keladjust::platform {

/// std::make_unique_for_overwrite<Element[]>(count), which the standard library of compilers for
/// WebAssembly may not have yet.
template <class Element>
std::unique_ptr<Element[]> makeUnsetArray(std::size_t count) {
    return std::unique_ptr<Element[]>(new Element[count]);
}

}  // namespace keladjust::platform

#endif
