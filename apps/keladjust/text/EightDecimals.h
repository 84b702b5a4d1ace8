#ifndef KELADJUST_APP_TEXT_EIGHTDECIMALS_H
#define KELADJUST_APP_TEXT_EIGHTDECIMALS_H

#include <string>

namespace keladjust::app {

/// Appends the number with eight decimals: its exact value, rounded half to even. Infinity is
/// `inf`.
void appendEightDecimals(std::string& text, float value);

}  // namespace keladjust::app

#endif
