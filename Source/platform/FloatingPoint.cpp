#include "platform/FloatingPoint.h"

namespace keladjust::platform {

DefaultFloatingPoint::DefaultFloatingPoint() noexcept : savedControl_(floatingPointControl()) {
    std::fegetenv(&saved_);
    std::fesetenv(FE_DFL_ENV);
    setFloatingPointControl(defaultFloatingPointControl);
}

DefaultFloatingPoint::~DefaultFloatingPoint() {
    std::fesetenv(&saved_);
    setFloatingPointControl(savedControl_);
}

}  // namespace keladjust::platform
