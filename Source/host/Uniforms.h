#ifndef KELADJUST_HOST_UNIFORMS_H
#define KELADJUST_HOST_UNIFORMS_H

#include <keladjust/keladjust.h>

#include <cstdint>
#include <vector>

#include "filters/Stage.h"

/// What the catalogue of stages says about the engine's programs.
namespace keladjust {

/// A setting under the name that a program has for it.
template <class Number>
struct Uniform {
    const char* name;
    Number value;
};

/// The uniforms of a program, in the order of the record.
std::vector<Uniform<std::int32_t>> integerUniforms(Program program, const _AdjustParam& record);
std::vector<Uniform<float>> floatUniforms(Program program, const _AdjustParam& record);

/// True if a stage that the program takes over asks for it. Sharpening, which runs on the CPU as
/// well, and settings that only shape do not.
bool startsProgram(Program program, const _AdjustParam& record);

}  // namespace keladjust

#endif
