#ifndef KELADJUST_APP_TEXT_CUBETEXT_H
#define KELADJUST_APP_TEXT_CUBETEXT_H

#include <string>

namespace keladjust::app {

inline constexpr int cubeSize = 32;

/// A cube file with red varying fastest, as most programs expect, from a table in the layout of
/// getLut3dData().
std::string cubeRedFastest(const float* table);

}  // namespace keladjust::app

#endif
