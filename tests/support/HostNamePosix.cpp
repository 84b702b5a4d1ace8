#include "support/HostName.h"

namespace keladjust::test {

std::string hostName(const std::filesystem::path& path) {
    return path.native();
}

}  // namespace keladjust::test
