#include <windows.h>

#include <stdexcept>

#include "support/HostName.h"

namespace keladjust::test {

std::string hostName(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    std::string name(4 * wide.size(), '\0');  // letters have up to four bytes
    BOOL lost = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(),
                                         static_cast<int>(wide.size()), name.data(),
                                         static_cast<int>(name.size()), nullptr, &lost);
    if (size == 0 || lost) throw std::runtime_error("the code page lacks a letter of this name");
    name.resize(static_cast<std::size_t>(size));
    return name;
}

}  // namespace keladjust::test
