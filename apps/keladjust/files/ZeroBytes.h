#ifndef KELADJUST_APP_FILES_ZEROBYTES_H
#define KELADJUST_APP_FILES_ZEROBYTES_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace keladjust::app {

/// Memory that is zero because the system gives it so: no pass over all of it comes before who
/// writes what is to be in it.
template <class Element>
struct ZeroAllocator : std::allocator<Element> {
    Element* allocate(std::size_t count) {
        void* const memory = std::calloc(count, sizeof(Element));
        if (memory == nullptr) throw std::bad_alloc();
        return static_cast<Element*>(memory);
    }
    void deallocate(Element* elements, std::size_t) { std::free(elements); }

    /// Elements without a value stay zero.
    template <class Other>
    void construct(Other*) {}
    template <class Other, class... Values>
    void construct(Other* place, Values&&... values) {
        ::new (static_cast<void*>(place)) Other(static_cast<Values&&>(values)...);
    }
};

/// Zeros, as many as it is made with.
using ZeroBytes = std::vector<unsigned char, ZeroAllocator<unsigned char>>;

}  // namespace keladjust::app

#endif
