#ifndef KELADJUST_PLATFORM_SHAREDLIBRARY_H
#define KELADJUST_PLATFORM_SHAREDLIBRARY_H

#include <filesystem>
#include <string>
#include <vector>

namespace keladjust::platform {

/// Where a library named `fileName` is looked for that belongs to this one: in the folder that this
/// one lies in. Some systems also know it by a name with its version, if that is not null, and look
/// it up.
std::vector<std::filesystem::path> placesBesideThisLibrary(const char* fileName,
                                                           const char* versionedName);

/// Loads a library, and what it needs from the folder that it lies in.
/// @return null, and why, if that cannot be done
void* loadSharedLibrary(const std::filesystem::path& file, std::string& reason);
/// The library's function of that name; null if it has none.
void (*functionOf(void* library, const char* name))();
void unloadSharedLibrary(void* library) noexcept;

}  // namespace keladjust::platform

#endif
