#ifndef KELADJUST_APP_TEXT_NUMBERTEXT_H
#define KELADJUST_APP_TEXT_NUMBERTEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace keladjust::app {

/// The shortest text that reads back as `value`, the same in every locale.
std::string numberText(double value);

/// With that many decimals, the same in every locale.
std::string numberText(double value, int decimals);

/// The number that the whole of `text` spells, in every locale with a decimal point; a leading plus
/// is allowed. Nothing if it spells none.
std::optional<double> numberFromText(std::string_view text);

}  // namespace keladjust::app

#endif
