#include "allocation/Allocations.h"

#include <link.h>
#include <unwind.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>

// The C library's own, under the names that stay its own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

using keladjust::test::Requester;
using keladjust::test::Shortage;
using Address = std::uintptr_t;

// Constants at load time throughout: memory is allocated before anything else happens.

/// Where code lies: the program's own, and that of the libraries whose callers count instead.
struct Code {
    Address begin = 0;
    Address end = 0;
    bool contains(Address address) const { return address >= begin && address < end; }
};
constinit Code programCode;
constinit Code ogreCode;
constinit std::array<Code, 4> passedOnCode;
constinit std::atomic<bool> codeIsKnown{false};

int noteCode(dl_phdr_info* module, std::size_t, void* count) {
    Code code;
    for (int i = 0; i < module->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = module->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0) continue;
        code = {module->dlpi_addr + segment.p_vaddr,
                module->dlpi_addr + segment.p_vaddr + segment.p_memsz};
    }
    if (module->dlpi_name[0] == '\0') programCode = code;
    if (std::strstr(module->dlpi_name, "/libOgreMain.so") != nullptr) ogreCode = code;
    for (const char* name : {"/libstdc++.so", "/libc.so", "/libgcc_s.so", "/ld-linux"}) {
        if (std::strstr(module->dlpi_name, name) == nullptr) continue;
        passedOnCode[(*static_cast<std::size_t*>(count))++] = code;
    }
    return 0;
}

// From before main() on, but not from the first allocation.
const bool codeIsNoted = [] {
    std::size_t count = 0;
    dl_iterate_phdr(noteCode, &count);
    return codeIsKnown = true;
}();

bool passesOn(Address address) {
    for (const Code& code : passedOnCode) {
        if (code.contains(address)) return true;
    }
    return false;
}

/// Looks for the code that a string's or a stream's memory is for.
struct Search {
    Address caller;
    bool callerSeen = false;
    Address found = 0;
};

_Unwind_Reason_Code lookAtFrame(_Unwind_Context* context, void* given) {
    auto& search = *static_cast<Search*>(given);
    const Address address = _Unwind_GetIP(context);
    if (!search.callerSeen) {
        search.callerSeen = address == search.caller;
        return _URC_NO_REASON;
    }
    if (passesOn(address)) return _URC_NO_REASON;
    search.found = address;
    return _URC_END_OF_STACK;
}

/// Who it is that asks, through the C and C++ libraries or not.
Requester requesterOf(Address caller) {
    if (!codeIsKnown) return Requester::anyone;
    Address address = caller;
    if (passesOn(caller)) {
        Search search{caller};
        _Unwind_Backtrace(lookAtFrame, &search);
        address = search.found;
    }
    if (programCode.contains(address)) return Requester::program;
    return ogreCode.contains(address) ? Requester::programOrOgre : Requester::anyone;
}

/// The program's own allocations.
class Pointers {
public:
    void add(const void* pointer) {
        const Lock lock(*this);
        const void** place = placeOf(pointer);
        *place = pointer;
        ++count_;
    }
    void remove(const void* pointer) {
        if (count_ == 0) return;
        const Lock lock(*this);
        const void** place = placeOf(pointer);
        if (*place == nullptr) return;
        *place = nullptr;
        --count_;
        // What was put behind it for want of its place moves up.
        for (place = next(place); *place != nullptr; place = next(place)) {
            const void* const moved = std::exchange(*place, nullptr);
            *placeOf(moved) = moved;
        }
    }
    std::ptrdiff_t count() const { return count_; }

private:
    class Lock {
    public:
        explicit Lock(Pointers& pointers) : pointers_(pointers) {
            while (pointers_.locked_.test_and_set()) pointers_.locked_.wait(true);
        }
        ~Lock() {
            pointers_.locked_.clear();
            pointers_.locked_.notify_one();
        }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        Pointers& pointers_;
    };

    const void** placeOf(const void* pointer) {
        const auto spread = reinterpret_cast<Address>(pointer) / 16 * 0x9E3779B97F4A7C15u;
        const void** place = &places_[(spread >> 32) % places_.size()];
        while (*place != nullptr && *place != pointer) place = next(place);
        return place;
    }
    const void** next(const void** place) {
        return place == &places_.back() ? places_.data() : place + 1;
    }

    std::array<const void*, 1 << 17> places_{};
    std::atomic<std::ptrdiff_t> count_{0};
    std::atomic_flag locked_;
};

constinit Pointers programPointers;
constinit std::atomic<std::ptrdiff_t> live{0};
constinit std::atomic<bool> armed{false};
constinit std::atomic<Shortage> shortageNow{Shortage::once};
constinit std::atomic<Requester> requesterNow{Requester::anyone};
constinit std::atomic<bool> hasStruck{false};
constinit std::atomic<std::ptrdiff_t> left{0};

bool isMeant(Requester requester) {
    switch (requesterNow) {
        case Requester::anyone:
            return true;
        case Requester::program:
            return requester == Requester::program;
        case Requester::programOrOgre:
            return requester != Requester::anyone;
    }
    return false;
}

/// True if this allocation is to fail.
bool fails(Requester requester) {
    if (!armed || !isMeant(requester)) return false;
    const std::ptrdiff_t before = left--;
    if (before > 0 || (before < 0 && shortageNow == Shortage::once)) return false;
    hasStruck = true;
    errno = ENOMEM;
    return true;
}

template <class Allocate>
void* allocated(Address caller, Allocate allocate) {
    const Requester requester = requesterOf(caller);
    if (fails(requester)) return nullptr;
    void* const memory = allocate();
    if (memory == nullptr) return nullptr;
    ++live;
    if (requester == Requester::program) programPointers.add(memory);
    return memory;
}

void forget(const void* memory) {
    --live;
    programPointers.remove(memory);
}

void* allocatedForNew(Address caller, std::size_t size) {
    return allocated(caller, [size] { return __libc_malloc(size != 0 ? size : 1); });
}

void* thrownIfNull(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

// A macro, because it is the function that is called whose caller is asked for.
#define CALLER reinterpret_cast<Address>(__builtin_return_address(0))

extern "C" {

void* malloc(std::size_t size) {
    return allocated(CALLER, [size] { return __libc_malloc(size); });
}
void* calloc(std::size_t count, std::size_t size) {
    return allocated(CALLER, [=] { return __libc_calloc(count, size); });
}
void* memalign(std::size_t alignment, std::size_t size) {
    return allocated(CALLER, [=] { return __libc_memalign(alignment, size); });
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return allocated(CALLER, [=] { return __libc_memalign(alignment, size); });
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    void* const found = allocated(CALLER, [=] { return __libc_memalign(alignment, size); });
    if (found == nullptr) return ENOMEM;
    *memory = found;
    return 0;
}
void free(void* memory) {
    if (memory == nullptr) return;
    forget(memory);
    __libc_free(memory);
}
void* realloc(void* memory, std::size_t size) {
    const Address caller = CALLER;
    if (memory == nullptr) return allocated(caller, [size] { return __libc_malloc(size); });
    if (size == 0) {
        free(memory);
        return nullptr;
    }
    const Requester requester = requesterOf(caller);
    if (fails(requester)) return nullptr;
    void* const moved = __libc_realloc(memory, size);
    if (moved == nullptr) return nullptr;
    programPointers.remove(memory);
    if (requester == Requester::program) programPointers.add(moved);
    return moved;
}

}  // extern "C"

// These, too, so that it is known for whom without a look at the stack.
void* operator new(std::size_t size) {
    return thrownIfNull(allocatedForNew(CALLER, size));
}
void* operator new[](std::size_t size) {
    return thrownIfNull(allocatedForNew(CALLER, size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocatedForNew(CALLER, size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocatedForNew(CALLER, size);
}
void operator delete(void* memory) noexcept {
    free(memory);
}
void operator delete[](void* memory) noexcept {
    free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    free(memory);
}

namespace keladjust::test {

std::ptrdiff_t liveAllocations(Requester requester) {
    return requester == Requester::anyone ? live.load() : programPointers.count();
}

AllocationFault::AllocationFault(std::size_t allowed, Shortage shortage, Requester requester) {
    left = static_cast<std::ptrdiff_t>(allowed);
    shortageNow = shortage;
    requesterNow = requester;
    hasStruck = false;
    armed = true;
}

AllocationFault::~AllocationFault() {
    armed = false;
}

Struck AllocationFault::struck() {
    return {hasStruck, hasStruck && shortageNow == Shortage::once};
}

}  // namespace keladjust::test
