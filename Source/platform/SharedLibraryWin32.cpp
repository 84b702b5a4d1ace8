#include <windows.h>

#include "platform/SharedLibrary.h"

namespace keladjust::platform {

namespace {

const char addressInThisLibrary = 0;

std::filesystem::path folderOfThisLibrary() {
    HMODULE module = nullptr;
    if (!GetModuleHandleExA(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            &addressInThisLibrary, &module)) {
        return {};
    }
    constexpr std::size_t longestPath = 1 << 15;
    for (std::wstring path(MAX_PATH, L'\0'); path.size() <= longestPath;
         path.resize(path.size() * 2)) {
        const DWORD length =
            GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) break;
        if (length == path.size()) continue;  // cut off
        path.resize(length);
        return std::filesystem::path(path).parent_path();
    }
    return {};
}

}  // namespace

// There and nowhere else: the system's own search would come past folders that anyone may write to.
std::vector<std::filesystem::path> placesBesideThisLibrary(const char* fileName, const char*) {
    const std::filesystem::path folder = folderOfThisLibrary();
    if (folder.empty()) return {};
    return {folder / fileName};
}

void* loadSharedLibrary(const std::filesystem::path& file, std::string& reason) {
    const HMODULE library = LoadLibraryExW(
        file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr) {
        reason =
            file.filename().string() + " cannot be loaded, error " + std::to_string(GetLastError());
    }
    return library;
}

void (*functionOf(void* library, const char* name))() {
    return reinterpret_cast<void (*)()>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void unloadSharedLibrary(void* library) noexcept {
    FreeLibrary(static_cast<HMODULE>(library));
}

}  // namespace keladjust::platform
