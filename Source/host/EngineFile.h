#ifndef KELADJUST_HOST_ENGINEFILE_H
#define KELADJUST_HOST_ENGINEFILE_H

#include "engine/EngineModule.h"

namespace keladjust {

/// The engine module while it is at hand: EngineFileLoaded.cpp loads it from a file, as the library
/// does; EngineFileLinked.cpp takes the one in programs that are linked from its objects.
struct EngineFile {
    EngineModule* module = nullptr;
    void* library = nullptr;
};

/// @return nothing, and why, if there is no engine module that fits this library
EngineFile openEngineFile(EngineReason& reason);
/// Gives it back; its engine has been stopped.
void closeEngineFile(EngineFile& file) noexcept;

}  // namespace keladjust

#endif
