#include <mach-o/dyld.h>

#include <cstdint>
#include <string>

#include "platform/ProgramFolder.h"

namespace keladjust::app::platform {

std::filesystem::path programFolder() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
    std::error_code error;
    return std::filesystem::canonical(path.c_str(), error).parent_path();
}

}  // namespace keladjust::app::platform
