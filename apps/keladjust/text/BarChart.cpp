#include "text/BarChart.h"

#include <algorithm>

#include "text/NumberText.h"
#include "text/XmlText.h"

namespace keladjust::app {

namespace {

// In pixels of the drawing.
constexpr double margin = 16;
constexpr double titleHeight = 40;
constexpr double rowHeight = 24;
constexpr double barHeight = 16;
constexpr double namesWidth = 220;
constexpr double longestBar = 420;
constexpr double labelsWidth = 100;
constexpr double width = margin + namesWidth + longestBar + labelsWidth + margin;

std::string attribute(const char* name, double value) {
    return std::string(" ") + name + "=\"" + numberText(value, 1) + '"';
}

std::string text(double x, double y, const char* style, const std::string& content) {
    return "<text" + attribute("x", x) + attribute("y", y) + style + '>' + xmlText(content) +
           "</text>\n";
}

std::string row(const Bar& bar, double largest, double top) {
    constexpr double names = margin + namesWidth;
    constexpr double gap = 6;
    constexpr double baseline = 13;
    const double length = largest > 0 ? longestBar * bar.value / largest : 0;
    return text(names - gap, top + baseline, " text-anchor=\"end\"", bar.name) + "<rect" +
           attribute("x", names) + attribute("y", top) + attribute("width", length) +
           attribute("height", barHeight) + " fill=\"#3b75af\"/>\n" +
           text(names + length + gap, top + baseline, "", bar.label);
}

}  // namespace

std::string barChart(const std::string& title, std::span<const Bar> bars) {
    double largest = 0;
    for (const Bar& bar : bars) largest = std::max(largest, bar.value);
    const double height = titleHeight + rowHeight * static_cast<double>(bars.size()) + margin;

    std::string svg =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\"" +
        attribute("width", width) + attribute("height", height) +
        " font-family=\"sans-serif\" font-size=\"13\">\n<title>" + xmlText(title) +
        "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n" +
        text(margin, margin + rowHeight / 2, " font-weight=\"bold\"", title);
    double top = titleHeight;
    for (const Bar& bar : bars) {
        svg += row(bar, largest, top);
        top += rowHeight;
    }
    return svg + "</svg>\n";
}

}  // namespace keladjust::app
