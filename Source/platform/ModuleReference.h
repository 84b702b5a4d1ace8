#ifndef KELADJUST_PLATFORM_MODULEREFERENCE_H
#define KELADJUST_PLATFORM_MODULEREFERENCE_H

namespace keladjust::platform {

/// Keeps the library loaded while it lives: a thread of the library's own must never find its code
/// gone because the host has unloaded it. Ended from a call of the host's, which holds a reference,
/// too.
class ModuleReference {
public:
    ModuleReference();
    ~ModuleReference();
    ModuleReference(const ModuleReference&) = delete;
    ModuleReference& operator=(const ModuleReference&) = delete;

private:
    [[maybe_unused]] void* module_ =
        nullptr;  ///< null where the code is part of the program itself
};

}  // namespace keladjust::platform

#endif
