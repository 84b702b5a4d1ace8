#include "text/CubeText.h"

#include <cmath>
#include <cstddef>
#include <string_view>

#include "text/EightDecimals.h"

namespace keladjust::app {

namespace {

void append(std::string& text, float value, char end) {
    if (std::isnan(value)) value = std::fabs(value);  // never with a sign
    appendEightDecimals(text, value);
    text += end;
}

/// The library's own files have remarks and empty lines; what most programs read has neither.
std::string header(int size, CubeOrder order) {
    const std::string sizeLine = "LUT_3D_SIZE " + std::to_string(size) + '\n';
    const std::string domain =
        "DOMAIN_MIN 0.0 0.0 0.0\n"
        "DOMAIN_MAX 1.0 1.0 1.0\n";
    if (order == CubeOrder::redFastest) return sizeLine + domain;
    return "#LUT size\n" + sizeLine + "\n#data domain\n" + domain + "\n#LUT data points\n";
}

/// The library's own files hold what is left of a value that was kept on a scale of 255.
float kept(float value, CubeOrder order) {
    return order == CubeOrder::blueFastest ? value * 255.0f / 255.0f : value;
}

}  // namespace

std::string cubeText(std::span<const float> points, int size, CubeOrder order) {
    constexpr std::size_t usualLine = 3 * std::string_view("0.00000000 ").size();
    std::string text = header(size, order);
    text.reserve(text.size() + points.size() / 3 * usualLine);
    for (std::size_t index = 0; index + 2 < points.size(); index += 3) {
        append(text, kept(points[index], order), ' ');
        append(text, kept(points[index + 1], order), ' ');
        append(text, kept(points[index + 2], order), '\n');
    }
    return text;
}

}  // namespace keladjust::app
