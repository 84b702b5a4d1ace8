#ifndef KELADJUST_SHADERS_PROGRAMS_H
#define KELADJUST_SHADERS_PROGRAMS_H

/// Texts of which the engine's programs are made, each zero-terminated; the build embeds the files
/// of this folder. GLSL texts are of level 1.10 and carry no version line. Fragment programs read
/// the picture through the sampler "Sample" at "textureCoord"; their other settings are plain
/// slider values, named as they are declared.
namespace keladjust::shaders {

/// What the programs of the stages share: the picture's sampler, its size, functions of colours,
/// and their main functions.
extern const char* const pictureText;
extern const char* const pictureSizeText;
extern const char* const colourText;
extern const char* const adjustMain;
extern const char* const rangeMain;
extern const char* const combinedExposure;
extern const char* const combinedMain;

/// What stands in for the half that an effect does not bring: the vertex programs pass the texture
/// coordinate on, the fragment programs copy the picture.
extern const char* const defaultVertexGlsl;
extern const char* const defaultFragmentGlsl;
extern const char* const defaultVertexHlsl;
extern const char* const defaultFragmentHlsl;

}  // namespace keladjust::shaders

#endif
