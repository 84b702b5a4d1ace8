#ifndef KELADJUST_ENGINE_PLATFORM_OPENGL_H
#define KELADJUST_ENGINE_PLATFORM_OPENGL_H

// The headers of OpenGL, which need those of the system before them under Windows.
#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#include <GL/gl.h>
#include <GL/glext.h>

#endif
