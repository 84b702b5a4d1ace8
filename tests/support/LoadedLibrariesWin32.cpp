#include <windows.h>
#include <psapi.h>

#include "support/LoadedLibraries.h"

namespace keladjust::test {

std::vector<std::string> loadedLibraries() {
    std::vector<HMODULE> modules(1024);
    DWORD bytes = 0;
    const HANDLE process = GetCurrentProcess();
    if (!EnumProcessModules(process, modules.data(),
                            static_cast<DWORD>(modules.size() * sizeof(HMODULE)), &bytes)) {
        return {};
    }
    modules.resize(bytes / sizeof(HMODULE));
    std::vector<std::string> files;
    for (const HMODULE module : modules) {
        char path[1024];
        if (GetModuleFileNameA(module, path, sizeof path) != 0) files.emplace_back(path);
    }
    return files;
}

}  // namespace keladjust::test
