#ifndef KELADJUST_APP_MANUAL_MANUALPAGE_H
#define KELADJUST_APP_MANUAL_MANUALPAGE_H

#include <string>

#include "manual/Commands.h"

namespace keladjust::app {

/// "keladjust", "keladjust-lut": the name of a command's page.
std::string manualName(const Command& command);

/// The manual page of a command, in the language of mdoc(7).
///
/// @param date as its heading has it, such as "March 1, 2024"
std::string manualPage(const Command& command, const std::string& date);

}  // namespace keladjust::app

#endif
