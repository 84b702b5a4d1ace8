#ifndef KELADJUST_APP_CODECS_BLOCKS_XMPTEXT_H
#define KELADJUST_APP_CODECS_BLOCKS_XMPTEXT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace keladjust::app {

/// Puts `value` in place of the property's number wherever it stands, as an attribute or as an
/// element. All else in the packet stays as it is.
void replaceXmpNumber(std::string& xmp, std::string_view property, std::uint32_t value);

/// Takes the element out with all that is in it.
void removeXmpElement(std::string& xmp, std::string_view element);

}  // namespace keladjust::app

#endif
