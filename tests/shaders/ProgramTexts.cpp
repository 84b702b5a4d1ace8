// The texts that the engine compiles: valid GLSL 1.10, the level of every driver, and with exactly
// the settings that the adjustment pipeline knows by name.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "host/StagePrograms.h"
#include "shaders/Programs.h"
#include "support/EveryStage.h"

namespace {

namespace fs = std::filesystem;
namespace shaders = keladjust::shaders;

/// Type by name.
using Declarations = std::map<std::string, std::string>;

struct Checked {
    int status;
    std::string report;
};

// What the reference compiler says about a text; without a version line it takes it as 1.10.
Checked check(const std::string& stage, const std::string& text) {
    const fs::path folder =
        fs::temp_directory_path() / ("keladjust-text-" + std::to_string(std::random_device()()));
    fs::create_directory(folder);
    std::ofstream(folder / ("program." + stage)) << text;
    const std::string command = "glslangValidator -d -q -l \"" +
                                (folder / ("program." + stage)).string() + "\" > \"" +
                                (folder / "report").string() + "\"";
    const int status = std::system(command.c_str());
    std::ifstream report(folder / "report");
    Checked checked{status, {std::istreambuf_iterator<char>(report), {}}};
    report.close();
    fs::remove_all(folder);
    return checked;
}

// The settings that reach the output, as the compiler found them: lines "name: offset -1, type
// 1406,
// ...".
Declarations liveSettings(const std::string& report) {
    const std::map<std::string, std::string> types{
        {"1404,", "int"}, {"1406,", "float"}, {"8b5e,", "sampler2D"}};
    std::istringstream section(report.substr(0, report.find("Uniform block reflection")));
    Declarations found;
    std::string name, previous;
    for (std::string word; section >> word; previous = word) {
        if (word == "offset") name = previous.substr(0, previous.find(':'));
        if (previous == "type") found[name] = types.at(word);
    }
    return found;
}

// The settings as they stand in the text, which is where the engine looks for them.
Declarations declaredSettings(const std::string& text) {
    std::istringstream words(text);
    Declarations found;
    for (std::string word, type, name; words >> word;) {
        if (word != "uniform") continue;
        words >> type >> name;
        found[name.substr(0, name.find(';'))] = type;
    }
    return found;
}

void expectProgram(const std::string& text, const Declarations& settings) {
    const Checked checked = check("frag", text);
    EXPECT_EQ(checked.status, 0) << "(Debian package glslang-tools needed) " << checked.report;
    EXPECT_EQ(liveSettings(checked.report), settings);
    EXPECT_EQ(declaredSettings(text), settings);
    EXPECT_EQ(text.find('#'), std::string::npos) << "a version line or another directive";
}

Declarations floats(std::initializer_list<const char*> names) {
    Declarations declarations;
    for (const char* name : names) declarations[name] = "float";
    return declarations;
}

Declarations operator+(Declarations a, const Declarations& b) {
    a.insert(b.begin(), b.end());
    return a;
}

const Declarations picture{{"Sample", "sampler2D"}};
const Declarations size{{"imageWidth", "int"}, {"imageHeight", "int"}};
Declarations later() {
    Declarations declarations;
    for (const std::string& name : keladjust::test::laterUniforms(keladjust::Program::tone)) {
        declarations[name] = "float";
    }
    return declarations;
}

const Declarations adjustment = Declarations{{"temperature", "int"}} +
                                floats({"tint", "exposure", "brightness", "contrast", "vib", "sat",
                                        "highLight", "shadow", "whiteLevel", "blackLevel"}) +
                                later();
const Declarations vignette = floats({"amount", "feather", "highlights", "size", "roundness"});

Declarations ranges() {
    Declarations declarations;
    for (const char* range :
         {"Red", "Orange", "Yellow", "Green", "Magenta", "Purple", "Blue", "Aqua"}) {
        for (const char* field :
             {"_degreeMinVal", "_degreeMaxVal", "_hueVal", "_satVal", "_brightnessVal"}) {
            declarations[std::string(range) + field] = "float";
        }
    }
    return declarations;
}

TEST(ProgramTexts, AdjustmentHasItsSettings) {
    expectProgram(keladjust::adjustProgram(), picture + adjustment);
}

TEST(ProgramTexts, RangeHasItsSettings) {
    expectProgram(keladjust::rangeProgram(),
                  picture + size + floats({"sharpeness", "exposure"}) + ranges() + vignette);
}

TEST(ProgramTexts, LensHasItsSettings) {
    expectProgram(keladjust::lensProgram(), picture + size + floats({"distortion", "fringing"}));
}

TEST(ProgramTexts, CombinedHasTheSettingsOfBothButSharpening) {
    expectProgram(
        keladjust::combinedDeclarations() + keladjust::combinedMain(),
        picture + size + adjustment + ranges() + vignette + floats({"vignette_exposure"}));
}

TEST(ProgramTexts, CombinedIsCutBeforeItsMain) {
    EXPECT_EQ(keladjust::combinedDeclarations().find("main"), std::string::npos);
    EXPECT_EQ(keladjust::combinedMain().rfind("void main()", 0), 0u);
}

// Programs are known by these texts outside this library, blank for blank.
TEST(ProgramTexts, DefaultsAreFixed) {
    EXPECT_STREQ(shaders::defaultVertexGlsl,
                 "attribute vec4 vertex; attribute vec2 uv0; uniform mat4 _worldViewProj; varying "
                 "vec2 textureCoord; void main() { gl_Position = _worldViewProj * vertex; "
                 "textureCoord = uv0; }");
    EXPECT_STREQ(shaders::defaultFragmentGlsl,
                 "uniform sampler2D Sample; varying vec2 textureCoord; void main() { gl_FragColor "
                 "= texture2D(Sample, textureCoord); }");
    EXPECT_STREQ(
        shaders::defaultVertexHlsl,
        "struct VS_OUTPUT { float4 pos: POSITION; float2 texCoord0: TEXCOORD0; float2 fragCoord: "
        "TEXCOORD1; }; float4x4 _worldViewProj; float4 viewport_size; VS_OUTPUT vs_main(float4 "
        "Pos: POSITION, float3 normal: NORMAL, float2 texCoord0: TEXCOORD0) { VS_OUTPUT Out = "
        "(VS_OUTPUT)0; Out.pos = mul(_worldViewProj, Pos); Out.texCoord0 = texCoord0; "
        "Out.fragCoord.x = (Out.pos.x/Out.pos.w + 1.0) * viewport_size.x / 2.0; Out.fragCoord.y = "
        "(1.0 - Out.pos.y/Out.pos.w) * viewport_size.y / 2.0; return Out; }");
    EXPECT_STREQ(shaders::defaultFragmentHlsl,
                 "struct VS_OUTPUT { float4 pos: POSITION; float2 texCoord0: TEXCOORD0; float2 "
                 "fragCoord: TEXCOORD1; }; sampler Sample: register(s0); float4 ps_main(VS_OUTPUT "
                 "vsInput): COLOR { return tex2D(Sample, vsInput.texCoord0); }");
}

TEST(ProgramTexts, DefaultsCompile) {
    EXPECT_EQ(check("vert", shaders::defaultVertexGlsl).status, 0);
    const Checked fragment = check("frag", shaders::defaultFragmentGlsl);
    EXPECT_EQ(fragment.status, 0) << fragment.report;
    EXPECT_EQ(liveSettings(fragment.report), picture);
}

}  // namespace
