#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include "support/Holdings.h"

namespace keladjust::test {

Holdings holdingsNow() {
    Holdings held;
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    held.residentKilobytes = static_cast<long>(memory.WorkingSetSize / 1024);

    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    held.handles = static_cast<long>(handles);

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
