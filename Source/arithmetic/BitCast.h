#ifndef KELADJUST_ARITHMETIC_BITCAST_H
#define KELADJUST_ARITHMETIC_BITCAST_H

#include <type_traits>

namespace keladjust {

/// std::bit_cast<To>(value), which the standard library of compilers for WebAssembly may not have
/// yet, though the compilers have what it is made of.
template <class To, class From>
constexpr To bitCast(const From& value) noexcept {
    static_assert(sizeof(To) == sizeof(From) && std::is_trivially_copyable_v<To> &&
                  std::is_trivially_copyable_v<From>);
    return __builtin_bit_cast(To, value);
}

}  // namespace keladjust

#endif
