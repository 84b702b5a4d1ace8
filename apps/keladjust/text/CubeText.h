#ifndef KELADJUST_APP_TEXT_CUBETEXT_H
#define KELADJUST_APP_TEXT_CUBETEXT_H

#include <span>
#include <string>

namespace keladjust::app {

/// Which channel varies fastest from colour to colour.
enum class CubeOrder { blueFastest, redFastest };

/// A cube file of a colour table.
///
/// @param size   colours along each axis
/// @param points the colours in that order, three numbers each
std::string cubeText(std::span<const float> points, int size, CubeOrder order);

}  // namespace keladjust::app

#endif
