#ifndef KELADJUST_TESTS_MODELS_TEMPERATURE_BLACKBODY_H
#define KELADJUST_TESTS_MODELS_TEMPERATURE_BLACKBODY_H

#include <algorithm>
#include <cmath>

/// The colour of a glowing body.
namespace keladjust::test {

struct BlackBody {
    double rgb[3];
};

inline BlackBody blackBody(double kelvin) {
    const double x = std::min(std::max(kelvin, 1000.0), 40000.0) / 100;
    const auto clamp = [](double v) { return std::min(std::max(v, 0.0), 1.0); };
    return {{x <= 66 ? 1 : clamp(1.292936186062745 * std::pow(x - 60, -0.1332047592)),
             clamp(x <= 66 ? 0.3900815787690196 * std::log(x) - 0.6318414437886275
                           : 1.1298908608952942 * std::pow(x - 60, -0.0755148492)),
             x >= 66   ? 1
             : x <= 19 ? 0
                       : clamp(0.543206789110196 * std::log(x - 10) - 1.19625408914)}};
}

}  // namespace keladjust::test

#endif
