#include "platform/ModuleReference.h"

namespace keladjust::platform {

// The code is part of the program itself.
ModuleReference::ModuleReference() = default;
ModuleReference::~ModuleReference() = default;

}  // namespace keladjust::platform
