#ifndef KELADJUST_APP_TEXT_PATHTEXT_H
#define KELADJUST_APP_TEXT_PATHTEXT_H

#include <filesystem>
#include <string>

namespace keladjust::app {

/// The path that an argument names. Arguments are UTF-8 on every system; where paths are bytes, any
/// other bytes pass through unchanged.
std::filesystem::path pathFromText(const std::string& text);

/// The text that names `path` in messages: the way back.
std::string textOf(const std::filesystem::path& path);

/// The extension in lower case, without its dot.
std::string extensionOf(const std::filesystem::path& path);

}  // namespace keladjust::app

#endif
