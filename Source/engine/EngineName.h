#ifndef KELADJUST_ENGINE_ENGINENAME_H
#define KELADJUST_ENGINE_ENGINENAME_H

#include <cstdint>
#include <string>

namespace keladjust {

/// What an object of the library's is called in the engine: a prefix and a serial number, which is
/// signed in names.
inline std::string engineName(const char* prefix, std::uint32_t number) {
    return prefix + std::to_string(static_cast<std::int32_t>(number));
}

}  // namespace keladjust

#endif
