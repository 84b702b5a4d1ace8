#include "platform/ProgramFolder.h"

namespace keladjust::app::platform {

std::filesystem::path programFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace keladjust::app::platform
