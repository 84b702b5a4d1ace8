#include "platform/ProgramFolder.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>

namespace keladjust::app::platform {

std::filesystem::path programFolder() {
    constexpr DWORD longestPath = 32768;
    std::wstring name(longestPath, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), longestPath));
    return std::filesystem::path(name).parent_path();
}

}  // namespace keladjust::app::platform
