#include "platform/FileName.h"

namespace keladjust::platform {

std::size_t fileNameBegin(const std::string& path) {
    return path.rfind('/') + 1;
}

}  // namespace keladjust::platform
