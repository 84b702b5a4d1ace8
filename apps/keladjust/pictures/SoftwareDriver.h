#ifndef KELADJUST_APP_PICTURES_SOFTWAREDRIVER_H
#define KELADJUST_APP_PICTURES_SOFTWAREDRIVER_H

#include <string_view>

namespace keladjust::app {

/// Whether a graphics driver of that name, as OpenGL tells it, has the CPU do its work. The
/// library's own CPU path is faster than such a one.
bool rendersOnCpu(std::string_view driver);

}  // namespace keladjust::app

#endif
