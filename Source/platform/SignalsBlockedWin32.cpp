#include "platform/SignalsBlocked.h"

namespace keladjust::platform {

SignalsBlocked::SignalsBlocked() noexcept = default;
SignalsBlocked::~SignalsBlocked() = default;

}  // namespace keladjust::platform
