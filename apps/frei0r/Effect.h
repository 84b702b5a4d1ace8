#ifndef KELADJUST_FREI0R_EFFECT_H
#define KELADJUST_FREI0R_EFFECT_H

#include <keladjust/keladjust.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "settings/Settings.h"

namespace keladjust::frei0r {

/// One instance of the filter: a size, sliders, a text, and the record they make. Nothing is shared
/// with other instances, so that each may have a thread of its own.
class Effect {
public:
    Effect(unsigned int width, unsigned int height);

    /// A share outside 0..1, or none at all (NaN), is told on standard error and changes nothing.
    void setShare(std::size_t slider, double share);
    double share(std::size_t slider) const;

    /// What the text names is set as it says, whatever the sliders say. A text that cannot be
    /// understood is told on standard error and changes nothing.
    void setText(const std::string& text);
    const std::string& text() const { return text_; }

    /// Adjusts a frame of packed pixels: blue, green, red, alpha.
    void adjust(const std::uint32_t* from, std::uint32_t* to) const;

private:
    void makeRecord();

    unsigned int width_;
    unsigned int height_;
    std::vector<double> shares_;  // parallel to sliders()
    std::vector<bool> refused_;   // whether the last share was; a host sets it for every frame
    std::string text_;
    std::string lastTried_;
    app::Settings fromText_;
    _AdjustParam record_{};
};

}  // namespace keladjust::frei0r

#endif
