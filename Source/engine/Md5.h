#ifndef KELADJUST_ENGINE_MD5_H
#define KELADJUST_ENGINE_MD5_H

#include <string>
#include <string_view>

namespace keladjust {

/// The MD5 digest (RFC 1321) in 32 lowercase hexadecimal digits. It names programs after their
/// text; nothing rests on it being hard to forge.
std::string md5Hex(std::string_view text);

}  // namespace keladjust

#endif
