#include "pictures/Comparison.h"

#include "pictures/Collage.h"

namespace keladjust::app {

Photo sideBySide(const Photo& before, const Photo& after) {
    Photo sheet = whiteSheet(std::uint64_t{before.width()} + comparisonGap + after.width(),
                             before.height(), before.layout());
    sheet.hasAlpha = before.hasAlpha;
    paste(before, sheet, 0, 0);
    paste(after, sheet, before.width() + comparisonGap, 0);
    return sheet;
}

}  // namespace keladjust::app
