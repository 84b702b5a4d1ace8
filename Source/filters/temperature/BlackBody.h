#ifndef KELADJUST_FILTERS_TEMPERATURE_BLACKBODY_H
#define KELADJUST_FILTERS_TEMPERATURE_BLACKBODY_H

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace keladjust {

/// The colour of a black body, after T. Helland, "How to Convert Temperature (K) to RGB" (2012),
/// with refitted coefficients. The scale is 0..1, in double so that C libraries agree on the
/// narrowed results.
struct BlackBody {
    explicit BlackBody(std::int64_t kelvin) {
        const double x = std::clamp(static_cast<double>(kelvin), 1000.0, 40000.0) / 100.0;
        red = x <= 66.0 ? 1.0 : unit(1.292936186062745 * std::pow(x - 60.0, -0.1332047592));
        green = unit(x <= 66.0 ? 0.3900815787690196 * std::log(x) - 0.6318414437886275
                               : 1.1298908608952942 * std::pow(x - 60.0, -0.0755148492));
        if (x >= 66.0) {
            blue = 1.0;
        } else if (x <= 19.0) {
            blue = 0.0;
        } else {
            blue = unit(0.543206789110196 * std::log(x - 10.0) - 1.19625408914);
        }
    }

    static double unit(double value) { return std::clamp(value, 0.0, 1.0); }
    static std::uint8_t toByte(double value) { return static_cast<std::uint8_t>(value * 255.0); }

    double red;
    double green;
    double blue;
};

}  // namespace keladjust

#endif
