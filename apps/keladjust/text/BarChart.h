#ifndef KELADJUST_APP_TEXT_BARCHART_H
#define KELADJUST_APP_TEXT_BARCHART_H

#include <span>
#include <string>

namespace keladjust::app {

struct Bar {
    std::string name;
    double value;       ///< 0 or more; the longest bar has the largest
    std::string label;  ///< what stands at the bar's end
};

/// Horizontal bars under a title, as the text of an SVG file. Texts may hold any bytes: what XML
/// cannot hold is replaced.
std::string barChart(const std::string& title, std::span<const Bar> bars);

}  // namespace keladjust::app

#endif
