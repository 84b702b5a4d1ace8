#ifndef KELADJUST_FILTERS_STAGE_H
#define KELADJUST_FILTERS_STAGE_H

#include <keladjust/CxImage.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

#include "walks/ColourKernel.h"
#include "walks/Picture.h"
#include "walks/PixelKernel.h"

/// What a row of the catalogue of stages says, and the functions that rows are written with.
namespace keladjust {

/// The four-byte slots of a record of settings. The first one holds an integer.
inline constexpr int slotCount = KELADJUST_SLOT_COUNT;

template <class Number>
Number readSlot(const _AdjustParam& record, int slot) {
    static_assert(sizeof(Number) == 4);
    Number value;
    std::memcpy(&value, reinterpret_cast<const char*>(&record) + 4 * slot, sizeof value);
    return value;
}

/// A short text that is known when the library is compiled and may be put together from others.
class Text {
public:
    constexpr Text() = default;
    constexpr Text(const char* text) : Text(Text(), text) {}

    constexpr const char* c_str() const { return characters_.data(); }
    constexpr bool empty() const { return characters_[0] == '\0'; }

    friend constexpr Text operator+(const Text& begin, const char* end) { return {begin, end}; }

private:
    constexpr Text(const Text& begin, const char* end) : characters_(begin.characters_) {
        std::size_t at = 0;
        while (characters_[at] != '\0') ++at;
        for (; *end != '\0'; ++at, ++end) characters_.at(at) = *end;
        characters_.at(at) = '\0';  // a text that is too long does not compile
    }

    std::array<char, 64> characters_{};
};

/// One slot of the record.
struct Setting {
    Text name;   ///< in kebab-case, as options and presets spell it
    Text label;  ///< in title case, as sliders do
    Text help;   ///< one line
    float lowest;
    float highest;
    float identity = 0.0f;
    float usual = 0.0f;       ///< what a front end starts from
    Text uniform = {};        ///< its name in the program; empty if it has none
    bool shapesOnly = false;  ///< says how the other settings act and does nothing by itself
    bool isInteger = false;
};

/// The slots of one stage in a record.
class StageSlots {
public:
    StageSlots(const _AdjustParam& record, int first) : record_(record), first_(first) {}

    template <class Number>
    Number get(std::size_t place) const {
        using Stored = std::conditional_t<std::is_integral_v<Number>, std::int32_t, float>;
        return readSlot<Stored>(record_, first_ + static_cast<int>(place));
    }

private:
    const _AdjustParam& record_;
    int first_;
};

/// The parts of the pipeline, in their order.
enum class Wing { tone, range, vignette, spatial };

/// The engine's program that has a stage's settings as uniforms.
enum class Program { none, tone, range };

/// How the picture form of a stage finds its pixels.
enum class Addressing {
    pixels,   ///< by row and column
    rawWalk,  ///< along the buffer, ignoring the padding of rows
};

/// What a stage runs as.
struct StageForms {
    CxImage* (*picture)(CxImage*, const StageSlots&);
    /// Null if the stage sees more than one pixel at a time. With a kernel it can share a pass over
    /// the picture with its neighbours.
    std::unique_ptr<PixelKernel> (*pixels)(const Picture&, const StageSlots&) = nullptr;
    /// Null if the stage has no part in colour tables.
    std::unique_ptr<ColourKernel> (*colours)(const StageSlots&) = nullptr;
    /// Its text in the engine's program; null if it runs on the CPU alone.
    const char* program = nullptr;
};

/// A row of the catalogue.
struct Stage {
    static constexpr std::size_t mostSettings = 6;

    Text name;
    const char* group;  ///< heading of its settings
    Wing wing;
    Program program;
    StageForms forms;
    int firstSlot;  ///< its settings stand in consecutive slots
    std::size_t settingCount;
    std::array<Setting, mostSettings> settingRows;
    unsigned effort = 1;  ///< roughly how many nanoseconds a pixel takes
    Addressing addressing = Addressing::pixels;

    constexpr std::span<const Setting> settings() const {
        return {settingRows.data(), settingCount};
    }
    StageSlots slots(const _AdjustParam& record) const { return {record, firstSlot}; }

    /// True if a setting that does something by itself is not its identity value; NaN never is.
    bool isActive(const _AdjustParam& record) const {
        for (std::size_t i = 0; i < settingCount; ++i) {
            const Setting& setting = settingRows[i];
            if (setting.shapesOnly) continue;
            const int slot = firstSlot + static_cast<int>(i);
            const float value = setting.isInteger
                                    ? static_cast<float>(readSlot<std::int32_t>(record, slot))
                                    : readSlot<float>(record, slot);
            if (value != setting.identity) return true;
        }
        return false;
    }

    CxImage* run(CxImage* image, const _AdjustParam& record) const {
        return forms.picture(image, slots(record));
    }
};

/// @name Forms of a stage from its functions
/// @{

/// The numbers that `form` takes after the picture come from the slots `places`, in its order.
template <auto form, std::size_t... places>
struct FormWithPlaces;

template <class... Numbers, CxImage* (*form)(CxImage*, Numbers...), std::size_t... places>
struct FormWithPlaces<form, places...> {
    static_assert(sizeof...(Numbers) == sizeof...(places));

    static CxImage* picture(CxImage* image, const StageSlots& slots) {
        return form(image, slots.get<Numbers>(places)...);
    }

    template <class Kernel>
    static std::unique_ptr<PixelKernel> pixels(const Picture& picture, const StageSlots& slots) {
        if constexpr (std::is_constructible_v<Kernel, unsigned, unsigned, Numbers...>) {
            return std::make_unique<Kernel>(static_cast<unsigned>(picture.width),
                                            static_cast<unsigned>(picture.height),
                                            slots.get<Numbers>(places)...);
        } else {
            return std::make_unique<Kernel>(slots.get<Numbers>(places)...);
        }
    }

    template <class Kernel>
    static std::unique_ptr<ColourKernel> colours(const StageSlots& slots) {
        return std::make_unique<Kernel>(slots.get<Numbers>(places)...);
    }
};

/// Of a stage that sees the whole picture.
template <auto form, std::size_t... places>
constexpr StageForms spatialForms() {
    return {FormWithPlaces<form, places...>::picture};
}

/// Of a stage whose kernel is made from what `form` takes, after the picture's size if it asks for
/// that; with a colour form if the kernel has one.
template <auto form, class Kernel, std::size_t... places>
constexpr StageForms kernelForms() {
    using Form = FormWithPlaces<form, places...>;
    StageForms forms{Form::picture, Form::template pixels<Kernel>};
    if constexpr (std::is_base_of_v<ColourKernel, Kernel>) {
        forms.colours = Form::template colours<Kernel>;
    }
    forms.program = Kernel::program;
    return forms;
}

/// @}

}  // namespace keladjust

#endif
