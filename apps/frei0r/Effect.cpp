#include "Effect.h"

#include <cstring>
#include <iostream>
#include <memory>

#include "Parameters.h"
#include "settings/SettingsText.h"
#include "text/Failure.h"
#include "text/NumberText.h"

namespace keladjust::frei0r {

namespace {

/// The interface has no way to tell a host. Its log is where its users look.
void tell(const std::string& message) {
    std::cerr << "keladjust: " + message + '\n';
}

}  // namespace

Effect::Effect(unsigned int width, unsigned int height)
    : width_(width),
      height_(height),
      shares_(sliders().size(), atRest),
      refused_(sliders().size(), false) {
    makeRecord();
}

void Effect::setShare(std::size_t slider, double share) {
    const bool refused = !(share >= 0 && share <= 1);
    if (refused && !refused_[slider]) {
        tell(std::string(sliders()[slider].setting->name) + " needs a number from 0 to 1, not " +
             app::numberText(share) + "; it stays at " + app::numberText(shares_[slider]));
    }
    refused_[slider] = refused;
    if (refused || share == shares_[slider]) return;
    shares_[slider] = share;
    makeRecord();
}

double Effect::share(std::size_t slider) const {
    return shares_[slider];
}

void Effect::setText(const std::string& text) {
    // Hosts that know keyframes set it before every frame.
    if (text == lastTried_) return;
    lastTried_ = text;
    try {
        fromText_ = app::settingsFromText(text);
    } catch (const app::Failure& failure) {
        tell(failure.what());
        return;
    }
    text_ = text;
    makeRecord();
}

void Effect::adjust(const std::uint32_t* from, std::uint32_t* to) const {
    std::memcpy(to, from, std::size_t{4} * width_ * height_);
    auto* bits = reinterpret_cast<unsigned char*>(to);
    const std::unique_ptr<CxImage, decltype(&releaseCxImage)> image(
        createCxImage(&bits, width_, height_, 32, IMAGE_FORMAT_BGRA), &releaseCxImage);
    // Never the GPU: a frame has the same bytes wherever it is adjusted.
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = KELADJUST_CPU;
    keladjustRun(image.get(), &record_, sizeof record_, &run);
}

void Effect::makeRecord() {
    app::Settings settings;
    for (std::size_t index = 0; index < shares_.size(); ++index) {
        const Slider& slider = sliders()[index];
        settings.set(*slider.setting, slider.value(shares_[index]));
    }
    settings.apply(fromText_);
    record_ = settings.record();
}

}  // namespace keladjust::frei0r
