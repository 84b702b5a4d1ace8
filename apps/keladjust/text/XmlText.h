#ifndef KELADJUST_APP_TEXT_XMLTEXT_H
#define KELADJUST_APP_TEXT_XMLTEXT_H

#include <string>
#include <string_view>

namespace keladjust::app {

/// UTF-8 text as it stands between tags or quotes in XML 1.0. Control characters, and bytes that
/// are not UTF-8, become the replacement character.
std::string xmlText(std::string_view text);

}  // namespace keladjust::app

#endif
