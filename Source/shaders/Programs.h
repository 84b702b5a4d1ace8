#ifndef KELADJUST_SHADERS_PROGRAMS_H
#define KELADJUST_SHADERS_PROGRAMS_H

/// Texts of the programs that the engine compiles at start, each zero-terminated; the build joins
/// them from the files of this folder. GLSL texts are of level 1.10 and carry no version line.
/// Fragment programs read the picture through the sampler "Sample" at "textureCoord"; their other
/// settings are plain slider values, named as they are declared.
namespace keladjust::shaders {

/// The eleven stages that look at one pixel's colour alone.
extern const char* const adjustProgram;
/// Sharpening, the eight colour ranges and the vignette.
extern const char* const rangeProgram;
/// Lens distortion and colour fringing.
extern const char* const lensProgram;
/// Both of the first two in one pass, without sharpening, in two pieces that follow one another.
extern const char* const combinedDeclarations;
extern const char* const combinedMain;

/// What stands in for the half that an effect does not bring: the vertex programs pass the texture
/// coordinate on, the fragment programs copy the picture.
extern const char* const defaultVertexGlsl;
extern const char* const defaultFragmentGlsl;
extern const char* const defaultVertexHlsl;
extern const char* const defaultFragmentHlsl;

}  // namespace keladjust::shaders

#endif
