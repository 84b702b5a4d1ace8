#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <cstdint>

#include "support/Holdings.h"

namespace keladjust::test {

namespace {

// Handles are multiples of four. The system's own count would do, but Wine does not keep one.
long openHandles() {
    constexpr std::uintptr_t beyondAll = 1 << 15;
    long count = 0;
    for (std::uintptr_t value = 4; value < beyondAll; value += 4) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE) ++count;
    }
    return count;
}

long regionsInUse() {
    long count = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* place = nullptr; VirtualQuery(place, &region, sizeof region) != 0;
         place = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        if (region.State != MEM_FREE) ++count;
    }
    return count;
}

}  // namespace

Holdings holdingsNow() {
    Holdings held;
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    held.residentKilobytes = static_cast<long>(memory.WorkingSetSize / 1024);

    held.handles = openHandles();
    held.mappings = regionsInUse();

    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(snapshot, &thread); more != FALSE;
         more = Thread32Next(snapshot, &thread)) {
        if (thread.th32OwnerProcessID == GetCurrentProcessId()) ++held.threads;
    }
    CloseHandle(snapshot);
    return held;
}

}  // namespace keladjust::test
