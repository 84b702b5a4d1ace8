#include "BarChart.h"

#include "NumberText.h"
#include "XmlText.h"

#include <algorithm>

namespace keladjust::app {
namespace {

// In pixels of the drawing.
constexpr double MARGIN = 16;
constexpr double TITLE_HEIGHT = 40;
constexpr double ROW_HEIGHT = 24;
constexpr double BAR_HEIGHT = 16;
constexpr double NAMES_WIDTH = 220;
constexpr double LONGEST_BAR = 420;
constexpr double LABELS_WIDTH = 100;
constexpr double WIDTH = MARGIN + NAMES_WIDTH + LONGEST_BAR + LABELS_WIDTH + MARGIN;

std::string attribute(const char* name, double value) {
    return std::string(" ") + name + "=\"" + numberText(value, 1) + '"';
}

std::string text(double x, double y, const char* style, const std::string& content) {
    return "<text" + attribute("x", x) + attribute("y", y) + style + '>' + xmlText(content) +
           "</text>\n";
}

std::string row(const Bar& bar, double largest, double top) {
    constexpr double names = MARGIN + NAMES_WIDTH;
    constexpr double gap = 6;
    constexpr double baseline = 13;
    const double length = largest > 0 ? LONGEST_BAR * bar.value / largest : 0;
    return text(names - gap, top + baseline, " text-anchor=\"end\"", bar.name) + "<rect" +
           attribute("x", names) + attribute("y", top) + attribute("width", length) +
           attribute("height", BAR_HEIGHT) + " fill=\"#3b75af\"/>\n" +
           text(names + length + gap, top + baseline, "", bar.label);
}

}  // namespace

std::string barChart(const std::string& title, std::span<const Bar> bars) {
    double largest = 0;
    for (const Bar& bar : bars) largest = std::max(largest, bar.value);
    const double height = TITLE_HEIGHT + ROW_HEIGHT * static_cast<double>(bars.size()) + MARGIN;

    std::string svg =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\"" +
        attribute("width", WIDTH) + attribute("height", height) +
        " font-family=\"sans-serif\" font-size=\"13\">\n<title>" + xmlText(title) +
        "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n" +
        text(MARGIN, MARGIN + ROW_HEIGHT / 2, " font-weight=\"bold\"", title);
    double top = TITLE_HEIGHT;
    for (const Bar& bar : bars) {
        svg += row(bar, largest, top);
        top += ROW_HEIGHT;
    }
    return svg + "</svg>\n";
}

}  // namespace keladjust::app
