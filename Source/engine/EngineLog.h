#ifndef KELADJUST_ENGINE_ENGINELOG_H
#define KELADJUST_ENGINE_ENGINELOG_H

#include <string>
#include <string_view>

namespace keladjust {

/// Writes a line of the engine's normal level into its log; dropped while there is no log, or no
/// memory for the line.
void logMessage(std::string_view message) noexcept;

/// Writes down the exception that is being handled, after what was being done.
void logCurrentException(const char* occasion) noexcept;

/// What the exception that is being handled says of itself, without where it comes from.
std::string currentExceptionText() noexcept;

}  // namespace keladjust

#endif
