#include <windows.h>

#include "platform/FileName.h"

namespace keladjust::platform {

std::size_t fileNameBegin(const std::string& path) {
    const char* const text = path.c_str();
    const char* name = text;
    // The second byte of a letter of two may look like a separator.
    for (const char* letter = text; *letter != '\0'; letter = CharNextA(letter)) {
        if (*letter == '\\' || *letter == '/' || *letter == ':') name = letter + 1;
    }
    return static_cast<std::size_t>(name - text);
}

}  // namespace keladjust::platform
