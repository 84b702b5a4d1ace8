#include "host/StagePrograms.h"

#include <initializer_list>

#include "filters/Stages.h"
#include "filters/lens/LensProgram.h"
#include "filters/sharpen/SharpenProgram.h"
#include "shaders/Programs.h"

namespace keladjust {

namespace {

// Each text with the end of its last line.
std::string joined(std::initializer_list<std::string> texts) {
    std::string all;
    for (const std::string& text : texts) all += text + "\n";
    return all;
}

// The texts of a wing's stages, each once.
std::string textsOf(Wing wing) {
    std::string texts;
    const char* last = nullptr;
    for (const Stage& stage : stages) {
        if (stage.wing != wing || stage.forms.program == last) continue;
        last = stage.forms.program;
        texts += last;
    }
    return texts;
}

std::string numberText(const Setting& setting) {
    const std::string whole = std::to_string(static_cast<int>(setting.identity));
    return setting.isInteger ? whole : whole + ".0";
}

// The stages of one setting in their order: stage "Tint" is the function withTint(). One at its
// identity value is left out, so that it costs nothing and changes no bit.
std::string tones() {
    std::string calls;
    for (const Stage& stage : stages) {
        if (stage.wing != Wing::tone) continue;
        const Setting& setting = stage.settingRows[0];
        calls += std::string("    if (") + setting.uniform.c_str() + " != " + numberText(setting) +
                 ") colour = with" + setting.label.c_str() + "(colour);\n";
    }
    return textsOf(Wing::tone) + "\nvec3 adjusted(vec3 colour) {\n" + calls +
           "    return colour;\n}\n";
}

// Bands of hues, each with uniforms of its own.
std::string ranges() {
    std::string uniforms;
    std::string calls;
    for (const Stage& stage : stages) {
        if (stage.wing != Wing::range) continue;
        std::string arguments = "colour";
        for (const Setting& setting : stage.settings()) {
            uniforms += std::string("uniform float ") + setting.uniform.c_str() + ";\n";
            arguments += std::string(", ") + setting.uniform.c_str();
        }
        calls += "    colour = withRange(" + arguments + ");\n";
    }
    return uniforms + textsOf(Wing::range) + "\nvec3 withRanges(vec3 colour) {\n" + calls +
           "    return colour;\n}\n";
}

}  // namespace

std::string adjustProgram() {
    return joined({shaders::pictureText, shaders::colourText, tones(), shaders::adjustMain});
}

std::string rangeProgram() {
    return joined({shaders::pictureText, shaders::pictureSizeText, shaders::colourText,
                   sharpenProgram, ranges(), textsOf(Wing::vignette), shaders::rangeMain});
}

std::string lensProgram() {
    return joined({shaders::pictureText, lensUniforms, shaders::pictureSizeText, lensFunctions});
}

std::string combinedDeclarations() {
    return joined({shaders::pictureText, shaders::colourText, tones(), shaders::pictureSizeText,
                   ranges(), textsOf(Wing::vignette), shaders::combinedExposure});
}

std::string combinedMain() {
    return shaders::combinedMain;
}

}  // namespace keladjust
