#include "pictures/ContactSheet.h"

#include <algorithm>
#include <cmath>

#include "pictures/Collage.h"
#include "pictures/DigitFont.h"
#include "pictures/Downscale.h"
#include "text/NumberText.h"

namespace keladjust::app {

std::vector<double> sheetValues(const KeladjustSetting& setting) {
    constexpr int count = sheetColumns * sheetRows;
    const double lowest = static_cast<double>(setting.lowest);
    const double highest = static_cast<double>(setting.highest);
    std::vector<double> values;
    for (int step = 0; step < count; ++step) {
        const double value = lowest + (highest - lowest) * step / (count - 1);
        // Two decimals tell neighbours apart in every range, and fit below a copy.
        values.push_back(setting.isInteger != 0 ? std::round(value)
                                                : std::round(value * 100) / 100);
    }
    return values;
}

Photo contactSheet(const Photo& photo, const KeladjustSetting& setting, const _AdjustParam& record,
                   Adjuster& adjuster) {
    const Photo small = downscaled(photo, sheetCell);
    const std::uint32_t cellWidth = std::max(small.width(), sheetLabelWidth) + 2 * sheetMargin;
    const std::uint32_t cellHeight = small.height() + labelHeight + 3 * sheetMargin;
    Photo sheet = whiteSheet(sheetColumns * cellWidth, sheetRows * cellHeight, small.layout());
    sheet.hasAlpha = small.hasAlpha;

    std::uint32_t index = 0;
    for (const double value : sheetValues(setting)) {
        const std::uint32_t left = index % sheetColumns * cellWidth + sheetMargin;
        const std::uint32_t top = index / sheetColumns * cellHeight + sheetMargin;
        _AdjustParam step = record;
        setValue(step, setting, value);
        Photo copy = small;
        adjuster.adjust(copy, step);
        paste(copy, sheet, left, top);
        drawNumber(sheet, numberText(value), left, top + small.height() + sheetMargin);
        ++index;
    }
    return sheet;
}

}  // namespace keladjust::app
