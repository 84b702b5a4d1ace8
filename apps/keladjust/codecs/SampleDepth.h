#ifndef KELADJUST_APP_CODECS_SAMPLEDEPTH_H
#define KELADJUST_APP_CODECS_SAMPLEDEPTH_H

#include <cstdint>

namespace keladjust::app {

/// The nearest of 256 levels to one of 65536.
constexpr unsigned char eightBits(std::uint16_t deep) {
    return static_cast<unsigned char>((deep * 255u + 32767u) / 65535u);
}

}  // namespace keladjust::app

#endif
