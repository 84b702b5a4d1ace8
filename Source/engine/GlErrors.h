#ifndef KELADJUST_ENGINE_GLERRORS_H
#define KELADJUST_ENGINE_GLERRORS_H

namespace keladjust {

/// Takes all pending errors of OpenGL and tells whether memory ran out among them. Errors that
/// others have left behind are not ours.
bool ranOutOfMemory();

}  // namespace keladjust

#endif
