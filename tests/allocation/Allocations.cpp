#include "allocation/Allocations.h"

#include <atomic>
#include <cerrno>

// The C library's own, under the names that stay its own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

// Constants at load time: memory is allocated before anything else happens.
constinit std::atomic<std::ptrdiff_t> live{0};
constinit std::atomic<bool> armed{false};
constinit std::atomic<bool> onceOnly{false};
constinit std::atomic<bool> hasStruck{false};
constinit std::atomic<std::ptrdiff_t> left{0};

/// True if this allocation is to fail.
bool fails() {
    if (!armed) return false;
    const std::ptrdiff_t before = left--;
    if (before > 0 || (before < 0 && onceOnly)) return false;
    hasStruck = true;
    errno = ENOMEM;
    return true;
}

void* counted(void* memory) {
    if (memory != nullptr) ++live;
    return memory;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
    return fails() ? nullptr : counted(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : counted(__libc_calloc(count, size));
}
void* realloc(void* memory, std::size_t size) {
    if (fails()) return nullptr;
    void* const moved = __libc_realloc(memory, size);
    if (memory == nullptr) return counted(moved);
    if (moved == nullptr && size == 0) --live;
    return moved;
}
void* memalign(std::size_t alignment, std::size_t size) {
    return fails() ? nullptr : counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    void* const found = memalign(alignment, size);
    if (found == nullptr) return ENOMEM;
    *memory = found;
    return 0;
}
void free(void* memory) {
    if (memory == nullptr) return;
    --live;
    __libc_free(memory);
}

}  // extern "C"

namespace keladjust::test {

std::ptrdiff_t liveAllocations() {
    return live;
}

AllocationFault::AllocationFault(std::size_t allowed, Shortage shortage) {
    left = static_cast<std::ptrdiff_t>(allowed);
    onceOnly = shortage == Shortage::once;
    hasStruck = false;
    armed = true;
}

AllocationFault::~AllocationFault() {
    armed = false;
}

bool AllocationFault::struck() {
    return hasStruck;
}

}  // namespace keladjust::test
