#ifndef KELADJUST_APP_PICTURES_CONTACTSHEET_H
#define KELADJUST_APP_PICTURES_CONTACTSHEET_H

#include <vector>

#include "pictures/Adjuster.h"
#include "pictures/Photo.h"
#include "settings/Record.h"

namespace keladjust::app {

inline constexpr std::uint32_t sheetColumns = 3;
inline constexpr std::uint32_t sheetRows = 3;
inline constexpr std::uint32_t sheetCell = 480;  ///< longest side of a copy, in pixels
inline constexpr std::uint32_t sheetMargin = 8;  ///< around every copy, and below its label

inline constexpr std::uint32_t sheetLabelWidth = 72;  ///< room for "191.25" below narrow copies

/// The values of the sheet, evenly spaced over the setting's useful range.
std::vector<double> sheetValues(const KeladjustSetting& setting);

/// Small copies of `photo`, adjusted by `record` but for `setting`, which goes through
/// sheetValues() from left to right and from top to bottom. The value stands below each copy.
Photo contactSheet(const Photo& photo, const KeladjustSetting& setting, const _AdjustParam& record,
                   Adjuster& adjuster);

}  // namespace keladjust::app

#endif
