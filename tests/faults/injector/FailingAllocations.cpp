// Loaded before the C library, whose allocators it stands in for: the ones of C++ call them.

#include <cerrno>
#include <cstddef>

#include "Arming.h"

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

}  // extern "C"

namespace {

using namespace keladjust::faults;

bool refused() {
    if (nextEffect(Call::allocate) != Effect::error) return false;
    errno = ENOMEM;
    return true;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
    return refused() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    return refused() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    return refused() ? nullptr : __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return refused() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** place, std::size_t alignment, std::size_t size) {
    void* const memory = memalign(alignment, size);
    if (memory == nullptr) return ENOMEM;
    *place = memory;
    return 0;
}

}  // extern "C"
