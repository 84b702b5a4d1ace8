#ifndef KELADJUST_FREI0R_PARAMETERS_H
#define KELADJUST_FREI0R_PARAMETERS_H

#include <keladjust/keladjust.h>

#include <span>
#include <string>

namespace keladjust::frei0r {

/// One of the sliders that the filter shows. Hosts know parameters from 0 to 1 only.
struct Slider {
    const KeladjustSetting* setting;
    std::string explanation;

    /// What a host's 0..1 means: 0.5 leaves pictures alone, and the ends are those of the useful
    /// range, on either side in proportion.
    double value(double share) const;
};

/// A slider's share at rest.
constexpr double atRest = 0.5;

/// In the order of the record, which is that of the parameters. Never changes.
std::span<const Slider> sliders();

}  // namespace keladjust::frei0r

#endif
