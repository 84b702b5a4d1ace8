#include <dlfcn.h>
#if !defined(__APPLE__)
#include <link.h>
#endif

#include <array>
#include <climits>

#include "platform/SharedLibrary.h"

namespace keladjust::platform {

namespace {

const char addressInThisLibrary = 0;

// Empty if this code is part of a program. The loader keeps the folder as it was when it loaded the
// library, whatever folder is the current one now.
std::filesystem::path folderOfThisLibrary() {
    Dl_info info{};
    if (dladdr(&addressInThisLibrary, &info) == 0) return {};
#if defined(__APPLE__)
    return std::filesystem::path(info.dli_fname).parent_path();  // in full
#else
    void* const library = dlopen(info.dli_fname, RTLD_NOLOAD | RTLD_LAZY);
    if (library == nullptr) return {};
    std::array<char, PATH_MAX> folder{};
    const bool known = dlinfo(library, RTLD_DI_ORIGIN, folder.data()) == 0;
    dlclose(library);
    return known ? folder.data() : std::filesystem::path();
#endif
}

}  // namespace

std::vector<std::filesystem::path> placesBesideThisLibrary(const char* fileName,
                                                           const char* versionedName) {
    std::vector<std::filesystem::path> places;
    const std::filesystem::path folder = folderOfThisLibrary();
    for (const char* const name : {versionedName, fileName}) {
        std::error_code unreadable;
        if (name != nullptr && !folder.empty() &&
            std::filesystem::exists(folder / name, unreadable)) {
            places.push_back(folder / name);
        }
    }
    // Without a folder: wherever the system has its libraries.
    if (places.empty() && versionedName != nullptr) places.emplace_back(versionedName);
    return places;
}

void* loadSharedLibrary(const std::filesystem::path& file, std::string& reason) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library != nullptr) return library;
    const std::string failure = dlerror();
    // What is looked up and complained of by its own name was not found.
    const bool isMissing = !file.has_parent_path() && failure.starts_with(file.string() + ':');
    if (!isMissing) reason = failure;
    return nullptr;
}

void (*functionOf(void* library, const char* name))() {
    return reinterpret_cast<void (*)()>(dlsym(library, name));
}

void unloadSharedLibrary(void* library) noexcept {
    dlclose(library);
}

}  // namespace keladjust::platform
