#ifndef KELADJUST_APP_PLATFORM_PROGRAMFOLDER_H
#define KELADJUST_APP_PLATFORM_PROGRAMFOLDER_H

#include <filesystem>

namespace keladjust::app::platform {

/// The folder that the running program lies in; empty if the system does not tell.
std::filesystem::path programFolder();

}  // namespace keladjust::app::platform

#endif
