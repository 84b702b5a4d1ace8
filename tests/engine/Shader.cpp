// The programs of an effect: names, sharing, defaults, parameters of every type; and the HLSL side
// against a language that only takes notes.

#include <OgreHighLevelGpuProgramManager.h>
#include <OgreMaterialManager.h>
#include <OgrePass.h>
#include <OgreResourceGroupManager.h>
#include <OgreTechnique.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "engine/KelOgreShader.h"
#include "engine/Md5.h"
#include "engine/NotedProgram.h"
#include "engine/RunningEngine.h"
#include "host/StagePrograms.h"
#include "shaders/Programs.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::NotedProgram;
using keladjust::test::NotedProgramFactory;
using keladjust::test::RunningEngine;

constexpr const char* everyType =
    "uniform sampler2D Sample; uniform int anInt; uniform float aFloat; uniform vec4 aVector4;"
    "uniform vec3 aVector3; uniform vec2 aVector2; uniform mat4 aMatrix; uniform mat4 aMatrixPoint;"
    "uniform vec3 aFloatPoint; uniform vec3 aDoublePoint; uniform ivec3 anIntPoint;"
    "uniform vec4 aColour; varying vec2 textureCoord;"
    "void main() { gl_FragColor = texture2D(Sample, textureCoord) + aFloat * (aVector4 + aColour +"
    " aMatrix[0] + aMatrixPoint[0] + vec4(aVector3 + aFloatPoint + aDoublePoint, aVector2.x) +"
    " vec4(float(anInt + anIntPoint.x))); }";

class Shader : public RunningEngine {
protected:
    static std::size_t programCount() {
        auto programs = Ogre::HighLevelGpuProgramManager::getSingleton().getResourceIterator();
        std::size_t count = 0;
        for (; programs.hasMoreElements(); programs.moveNext()) ++count;
        return count;
    }
    template <std::size_t count>
    static std::array<float, count> floats(const KelOgreShader& shader, const char* name,
                                           std::int32_t kind = fragmentProgram) {
        std::array<float, count> values{};
        EXPECT_TRUE(shader.readParameter(kind, name, values.data(), count)) << name;
        return values;
    }
};

TEST_F(Shader, NamesProgramsAfterTheirText) {
    KelOgreEffectBase& first = *effectWith(keladjust::lensProgram().c_str());
    KelOgreEffectBase& second = *effectWith(keladjust::lensProgram().c_str());
    EXPECT_EQ(thread->getMaterial(&first), 1);
    std::size_t programs = 0;
    onThread([&] { programs = programCount(); });
    EXPECT_EQ(thread->getMaterial(&second), 1);
    onThread([&] { EXPECT_EQ(programCount(), programs); });
    EXPECT_EQ(first.shader()->fragmentProgramName(),
              keladjust::md5Hex(keladjust::lensProgram().c_str()) + "_FRAG_GLSL");
    EXPECT_EQ(second.shader()->fragmentProgramName(), first.shader()->fragmentProgramName());
    EXPECT_EQ(first.shader()->vertexProgramName(), "defaultVertexProgram");
}

TEST_F(Shader, EffectsThatShareAProgramHaveParametersOfTheirOwn) {
    constexpr const char* gain =
        "uniform sampler2D Sample; uniform float gain; varying vec2 textureCoord;"
        "void main() { gl_FragColor = texture2D(Sample, textureCoord) * gain; }";
    KelOgreEffectBase& dark = *effectWith(gain);
    KelOgreEffectBase& plain = *effectWith(gain);
    dark.setParameter(fragmentProgram, "gain", 0.0f);
    plain.setParameter(fragmentProgram, "gain", 1.0f);
    for (int i = 0; i < 2; ++i) {
        HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
        const auto before = picture.fillRandom(1).bytes();
        render(plain, picture);
        EXPECT_EQ(picture.bytes(), before);
        render(dark, picture);
        EXPECT_EQ(picture.bytes()[2], 0);
    }
}

TEST_F(Shader, NamesProgramsFromFilesAfterTheFile) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / "keladjust-shader-test";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "adjust.glsl") << everyType;
    onThread([&] {
        Ogre::ResourceGroupManager::getSingleton().addResourceLocation(
            folder.string(), "FileSystem", Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME);
    });
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    effect->setShaderSource("adjust.glsl", 1, 0);
    EXPECT_EQ(thread->getMaterial(effect), 1) << log.all();
    EXPECT_EQ(effect->shader()->fragmentProgramName(), "adjust_FRAG_GLSL");

    effect->setShaderSource("no-such-program.glsl", 1, 0);
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    render(*effect, picture);
    EXPECT_EQ(picture.bytes(), before);
    std::filesystem::remove_all(folder);
}

TEST_F(Shader, PutsADefaultProgramWhereNoneIsGiven) {
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    effect->setShaderSource(keladjust::shaders::defaultVertexGlsl, 0, 1);
    HostPicture picture(5, 3, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    render(*effect, picture);
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_EQ(effect->shader()->fragmentProgramName(), "defaultFragmentProgram");
    EXPECT_EQ(effect->shader()->vertexProgramName(),
              keladjust::md5Hex(keladjust::shaders::defaultVertexGlsl) + "_VERT_GLSL");
}

TEST_F(Shader, SetsParametersOfEveryType) {
    KelOgreEffectBase& effect = *effectWith(everyType);
    Ogre::Matrix4 matrix = Ogre::Matrix4::IDENTITY;
    matrix[0][3] = 5;
    _Matrix4Point points{};
    for (int i = 0; i < 16; ++i) points.m[i / 4][i % 4] = static_cast<float>(i);
    effect.setParameter(fragmentProgram, "Sample", 0);
    effect.setParameter(fragmentProgram, "anInt", 7);
    effect.setParameter(fragmentProgram, "aFloat", 0.5f);
    effect.setParameter(fragmentProgram, "aVector4", Ogre::Vector4(1, 2, 3, 4));
    effect.setParameter(fragmentProgram, "aVector3", Ogre::Vector3(1, 2, 3));
    effect.setParameter(fragmentProgram, "aVector2", Ogre::Vector2(1, 2));
    effect.setParameter(fragmentProgram, "aMatrix", &matrix);
    effect.setParameter(fragmentProgram, "aMatrixPoint", points);
    effect.setParameter(fragmentProgram, "aFloatPoint", _FloatPoint{1, 2, 3});
    effect.setParameter(fragmentProgram, "aDoublePoint", _DoublePoint{4, 5, 6});
    effect.setParameter(fragmentProgram, "anIntPoint", _IntPoint{7, 8, 9});
    effect.setParameter(fragmentProgram, "aColour", Ogre::ColourValue(0.1f, 0.2f, 0.3f, 0.4f));
    log.clear();
    ASSERT_EQ(thread->getMaterial(&effect), 1);
    EXPECT_FALSE(log.has("no such parameter")) << log.all();

    onThread([&] {
        const KelOgreShader& shader = *effect.shader();
        std::array<std::int32_t, 3> ints{};
        EXPECT_TRUE(shader.readParameter(1, "anInt", ints.data(), 1));
        EXPECT_EQ(ints[0], 7);
        EXPECT_TRUE(shader.readParameter(1, "anIntPoint", ints.data(), 3));
        EXPECT_EQ(ints, (std::array<std::int32_t, 3>{7, 8, 9}));
        EXPECT_EQ(floats<1>(shader, "aFloat")[0], 0.5f);
        EXPECT_EQ((floats<4>(shader, "aVector4")), (std::array<float, 4>{1, 2, 3, 4}));
        EXPECT_EQ((floats<3>(shader, "aVector3")), (std::array<float, 3>{1, 2, 3}));
        EXPECT_EQ((floats<2>(shader, "aVector2")), (std::array<float, 2>{1, 2}));
        EXPECT_EQ((floats<3>(shader, "aFloatPoint")), (std::array<float, 3>{1, 2, 3}));
        EXPECT_EQ((floats<3>(shader, "aDoublePoint")), (std::array<float, 3>{4, 5, 6}));
        EXPECT_EQ((floats<4>(shader, "aColour")), (std::array<float, 4>{0.1f, 0.2f, 0.3f, 0.4f}));
        EXPECT_EQ((floats<16>(shader, "aMatrixPoint"))[4], 4.0f);
        EXPECT_EQ((floats<16>(shader, "aMatrix"))[3], 5.0f);

        float untouched = 9;
        EXPECT_FALSE(shader.readParameter(1, "aFloat", &untouched, 2));
        EXPECT_FALSE(shader.readParameter(1, "noSuch", &untouched, 1));
        EXPECT_EQ(untouched, 9);
    });
}

TEST_F(Shader, KeepsTheLastValueOfAParameterAndTheKindsApart) {
    constexpr const char* vertex =
        "attribute vec4 vertex; attribute vec2 uv0; uniform mat4 _worldViewProj;"
        "uniform float shared; varying vec2 textureCoord;"
        "void main() { gl_Position = _worldViewProj * vertex; textureCoord = uv0 * shared; }";
    constexpr const char* fragment =
        "uniform sampler2D Sample; uniform float shared; varying vec2 textureCoord;"
        "void main() { gl_FragColor = texture2D(Sample, textureCoord) * shared; }";
    KelOgreEffectBase& effect = *effectWith(fragment);
    effect.setShaderSource(vertex, 0, 1);
    effect.setParameter(fragmentProgram, "shared", 1.0f);
    effect.setParameter(vertexProgram, "shared", 3.0f);
    effect.setParameter(fragmentProgram, "shared", 2.0f);
    ASSERT_EQ(thread->getMaterial(&effect), 1) << log.all();
    onThread([&] {
        EXPECT_EQ(floats<1>(*effect.shader(), "shared", fragmentProgram)[0], 2.0f);
        EXPECT_EQ(floats<1>(*effect.shader(), "shared", vertexProgram)[0], 3.0f);
    });
}

TEST_F(Shader, NotesParametersThatDoNotFitAndLeavesThem) {
    KelOgreEffectBase& effect = *effectWith(everyType);
    effect.setParameter(fragmentProgram, "noSuch", 1.0f);
    effect.setParameter(fragmentProgram, "anInt", 1.0f);
    effect.setParameter(fragmentProgram, "aFloat", 1);
    effect.setParameter(fragmentProgram, "aVector2", Ogre::Vector4(1, 2, 3, 4));
    effect.setParameter(fragmentProgram, "aVector4", _IntPoint{1, 2, 3});
    effect.setParameter(fragmentProgram, nullptr, 1.0f);
    EXPECT_EQ(thread->getMaterial(&effect), 1);
    EXPECT_EQ(log.count("no such parameter"), 5);
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(render(effect, picture), 1);  // aFloat is still 0
    EXPECT_EQ(picture.bytes(), before);
}

TEST_F(Shader, AsksForAProgramBeforeItsParameters) {
    onThread([] {
        KelOgreShader shader(0);
        shader.setParameter(1, "gain", 1.0f);
        shader.setParameter(0, "gain", 1.0f);
        shader.setShaderProgram(nullptr, 1, 1);
        EXPECT_EQ(shader.fragmentProgramName(), "");
    });
    EXPECT_EQ(log.countExact("You don't create fragment program. Please call setShaderProgram "
                             "function to load."),
              1);
    EXPECT_EQ(
        log.countExact(
            "You don't create vertex program. Please call setShaderProgram function to load."),
        1);
}

TEST_F(Shader, CopiesTheParametersOfAnother) {
    onThread([] {
        KelOgreShader source(0);
        KelOgreShader target(0);
        source.setShaderProgram(
            "uniform float a; uniform float b; void main() {"
            " gl_FragColor = vec4(a + b); }",
            1, 1);
        target.setShaderProgram(
            "uniform float b; uniform float c; void main() {"
            " gl_FragColor = vec4(b + c); }",
            1, 1);
        source.setParameter(1, "a", 1.0f);
        source.setParameter(1, "b", 2.0f);
        target.setParameter(1, "c", 3.0f);
        target.copyParameters(source);
        EXPECT_EQ(floats<1>(target, "b")[0], 2.0f);
        EXPECT_EQ(floats<1>(target, "c")[0], 3.0f);
    });
}

class HlslShader : public Shader {
protected:
    void SetUp() override {
        Shader::SetUp();
        onThread(
            [this] { Ogre::HighLevelGpuProgramManager::getSingleton().addFactory(&factory_); });
    }
    void TearDown() override {
        onThread([this] {
            Ogre::HighLevelGpuProgramManager::getSingleton().removeAll();
            Ogre::HighLevelGpuProgramManager::getSingleton().removeFactory(&factory_);
        });
        Shader::TearDown();
    }
    static NotedProgram* programCalled(const std::string& name) {
        return dynamic_cast<NotedProgram*>(
            Ogre::HighLevelGpuProgramManager::getSingleton()
                .getByName(name, Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME)
                .get());
    }

private:
    NotedProgramFactory factory_;
};

TEST_F(HlslShader, DefaultsHaveTheirTargetsAndEntryPoints) {
    onThread([] {
        KelOgreShader shader(1);
        shader.initialiseDxShaderProgram();
        const NotedProgram* vertex = programCalled("defaultVertexProgram_HLSL");
        const NotedProgram* fragment = programCalled("defaultFragmentProgram_HLSL");
        ASSERT_NE(vertex, nullptr);
        ASSERT_NE(fragment, nullptr);
        EXPECT_EQ(vertex->target, "vs_1_1");
        EXPECT_EQ(vertex->entryPoint, "vs_main");
        EXPECT_EQ(vertex->getSource(), keladjust::shaders::defaultVertexHlsl);
        EXPECT_EQ(fragment->target, "ps_2_0");
        EXPECT_EQ(fragment->entryPoint, "ps_main");
        EXPECT_EQ(fragment->getSource(), keladjust::shaders::defaultFragmentHlsl);
    });
}

TEST_F(HlslShader, BindsMatrixAndViewportByItself) {
    onThread([] {
        KelOgreShader shader(1);
        shader.setShaderProgram("some program", 0, 1);
        const std::string name = keladjust::md5Hex("some program") + "_VERT_HLSL";
        EXPECT_EQ(shader.vertexProgramName(), name);
        NotedProgram* program = programCalled(name);
        ASSERT_NE(program, nullptr);
        std::map<std::size_t, Ogre::GpuProgramParameters::AutoConstantType> bound;
        for (const auto& entry : program->getDefaultParameters()->getAutoConstants()) {
            bound[entry.physicalIndex] = entry.paramType;
        }
        EXPECT_EQ(bound[0], Ogre::GpuProgramParameters::ACT_WORLDVIEWPROJ_MATRIX);
        EXPECT_EQ(bound[16], Ogre::GpuProgramParameters::ACT_VIEWPORT_SIZE);
    });
}

TEST_F(HlslShader, SaysWhatIsMissing) {
    onThread([] {
        KelOgreShader shader(1);
        shader.setShaderProgram("a vertex program", 0, 1);
        shader.setShaderProgram("a fragment program", 1, 1);
        EXPECT_EQ(shader.fragmentProgramName(),
                  keladjust::md5Hex("a fragment program") + "_FRAG_HLSL");
        shader.initialiseDxShaderProgram();
        shader.setDxShaderProgramTarget(1, nullptr);
        shader.setDxShaderProgramEntryPoint(1, nullptr);
        shader.setDxShaderProgramTarget(1, "ps_3_0");
        shader.setDxShaderProgramEntryPoint(1, "main");
        EXPECT_EQ(programCalled(shader.fragmentProgramName())->target, "ps_3_0");
        EXPECT_EQ(programCalled(shader.fragmentProgramName())->entryPoint, "main");
    });
    EXPECT_EQ(log.count("vertex program entry point is NULL! in "
                        "KelOgreShader::initialiseDxShaderProgram at KelOgreShader"),
              1);
    EXPECT_EQ(log.count("fragment program entry point is NULL! in "
                        "KelOgreShader::initialiseDxShaderProgram at KelOgreShader"),
              1);
    EXPECT_EQ(log.count("program target is NULL! in KelOgreShader::setDxShaderProgramTarget at "
                        "KelOgreShader"),
              1);
    EXPECT_EQ(log.count("program entry point is NULL! in "
                        "KelOgreShader::setDxShaderProgramEntryPoint at KelOgreShader"),
              1);
}

}  // namespace
