#include <filesystem>
#include <string>
#include <string_view>

#include "host/EngineFile.h"
#include "host/EngineFileName.h"
#include "platform/SharedLibrary.h"
#include "platform/Version.h"

namespace keladjust {

namespace {

// Null, and why, if what the library holds is not an engine module of this version.
EngineModule* moduleIn(void* library, std::string& reason) {
    const auto entryOf = reinterpret_cast<EngineModuleFunction>(
        platform::functionOf(library, engineModuleFunctionName));
    if (entryOf == nullptr) {
        reason = std::string(engineFileName) + " is not the engine module";
        return nullptr;
    }
    const EngineModuleEntry* const entry = entryOf();
    if (std::string_view(entry->version) != versionText) {
        reason = std::string(engineFileName) + " is of version " + entry->version +
                 ", the library of " + versionText;
        return nullptr;
    }
    return entry->module;
}

}  // namespace

EngineFile openEngineFile(EngineReason& reason) {
    std::string why = std::string(engineFileName) + " is missing";
    for (const std::filesystem::path& place :
         platform::placesBesideThisLibrary(engineFileName, versionedEngineFileName)) {
        void* const library = platform::loadSharedLibrary(place, why);
        if (library == nullptr) continue;
        EngineModule* const module = moduleIn(library, why);
        if (module != nullptr) return {module, library};
        platform::unloadSharedLibrary(library);
    }
    reason.set(why);
    return {};
}

void closeEngineFile(EngineFile& file) noexcept {
    if (file.library != nullptr) platform::unloadSharedLibrary(file.library);
    file = {};
}

}  // namespace keladjust
