#include "text/PathText.h"

namespace keladjust::app {

std::filesystem::path pathFromText(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string textOf(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

std::string extensionOf(const std::filesystem::path& path) {
    std::string extension = textOf(path.extension());
    if (!extension.empty()) extension.erase(0, 1);
    // By hand, because the C library's version depends on the locale.
    for (char& letter : extension) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return extension;
}

}  // namespace keladjust::app
