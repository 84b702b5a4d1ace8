#ifndef KELADJUST_HOST_STAGEPROGRAMS_H
#define KELADJUST_HOST_STAGEPROGRAMS_H

#include <string>

/// The engine's programs of the stages, put together from the catalogue and the stages' own texts.
/// They are GLSL of level 1.10 without a version line, read the picture through the sampler
/// "Sample" at "textureCoord", and take slider values as they are.
namespace keladjust {

/// The stages of the tone wing.
std::string adjustProgram();
/// Sharpening, the colour ranges and the vignette.
std::string rangeProgram();
/// Lens distortion and colour fringing.
std::string lensProgram();
/// Both of the first two in one pass, without sharpening, in two pieces that follow one another.
std::string combinedDeclarations();
std::string combinedMain();

}  // namespace keladjust

#endif
