#ifndef KELADJUST_APP_TEXT_NEARESTNAME_H
#define KELADJUST_APP_TEXT_NEARESTNAME_H

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace keladjust::app {

/// The name that needs the fewest inserted, deleted or replaced letters to become `wrong`; nothing
/// if even that one is too far off to be what was meant.
std::optional<std::string> nearestName(std::string_view wrong, std::span<const std::string> names);

/// "; did you mean X?" for messages, empty if no name is near.
std::string suggestion(std::string_view wrong, std::span<const std::string> names);

}  // namespace keladjust::app

#endif
