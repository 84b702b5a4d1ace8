#include "ContactSheet.h"

#include "Collage.h"
#include "DigitFont.h"
#include "Downscale.h"
#include "NumberText.h"

#include <algorithm>
#include <cmath>

namespace keladjust::app {

std::vector<double> sheetValues(const Field& field) {
    constexpr int count = SHEET_COLUMNS * SHEET_ROWS;
    std::vector<double> values;
    for (int step = 0; step < count; ++step) {
        const double value = field.minimum + (field.maximum - field.minimum) * step / (count - 1);
        // Two decimals tell neighbours apart in every range, and fit below a copy.
        values.push_back(field.whole ? std::round(value) : std::round(value * 100) / 100);
    }
    return values;
}

Photo contactSheet(const Photo& photo, const Field& field, const _AdjustParam& record,
                   Adjuster& adjuster) {
    const Photo small = downscaled(photo, SHEET_CELL);
    const std::uint32_t cellWidth = std::max(small.width(), SHEET_LABEL_WIDTH) + 2 * SHEET_MARGIN;
    const std::uint32_t cellHeight = small.height() + LABEL_HEIGHT + 3 * SHEET_MARGIN;
    Photo sheet = whiteSheet(SHEET_COLUMNS * cellWidth, SHEET_ROWS * cellHeight, small.layout());
    sheet.hasAlpha = small.hasAlpha;

    std::uint32_t index = 0;
    for (const double value : sheetValues(field)) {
        const std::uint32_t left = index % SHEET_COLUMNS * cellWidth + SHEET_MARGIN;
        const std::uint32_t top = index / SHEET_COLUMNS * cellHeight + SHEET_MARGIN;
        _AdjustParam step = record;
        field.write(step, value);
        Photo copy = small;
        adjuster.adjust(copy, step);
        paste(copy, sheet, left, top);
        drawNumber(sheet, numberText(value), left, top + small.height() + SHEET_MARGIN);
        ++index;
    }
    return sheet;
}

}  // namespace keladjust::app
