// The order of virtual operations and fields in the engine's classes, which hosts built against
// them rely on.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "engine/EffectFactory.h"
#include "engine/EffectRecords.h"
#include "engine/KelOgreBase.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgrePicturePlane.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/KelOgreShader.h"
#include "engine/MyCSingleLock.h"
#include "engine/ReadBack.h"

namespace {

// Read as GCC and Clang lay classes out, for Windows, too: there a pointer to a member tells where
// the member lies.

using EffectFactory = DYN_CLASS::CFactory<KelOgreEffectBase>;
using Places = std::vector<std::ptrdiff_t>;

/// The entry of a virtual operation in the table of its class.
/// @throws std::invalid_argument if the operation is not virtual
template <class Method>
std::ptrdiff_t entryOf(Method method) {
    struct {
        std::ptrdiff_t function;
        std::ptrdiff_t adjustment;
    } pointer{};
    static_assert(sizeof pointer == sizeof method);
    std::memcpy(&pointer, &method, sizeof pointer);
#if defined(__aarch64__) || defined(__arm__)
    // Instructions may lie anywhere there, so the mark of virtual operations is with the other
    // half.
    const bool isVirtual = pointer.adjustment % 2 != 0;
    const std::ptrdiff_t offset = pointer.function;
#else
    const bool isVirtual = pointer.function % 2 != 0;
    const std::ptrdiff_t offset = pointer.function - 1;
#endif
    if (!isVirtual) throw std::invalid_argument("not a virtual operation");
    return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
}

/// The position of an operation that follows the destructor, which is one operation but takes two
/// entries: one ends the object, the other frees it, too.
template <class Method>
std::ptrdiff_t positionOf(Method method) {
    return entryOf(method) - 1;
}

/// The positions of several operations.
template <class... Methods>
Places positionsOf(Methods... methods) {
    return {positionOf(methods)...};
}

/// `count` positions, one after another.
Places positionsFrom(std::ptrdiff_t first, std::size_t count) {
    Places positions(count);
    for (std::size_t i = 0; i < count; ++i) positions[i] = first + static_cast<std::ptrdiff_t>(i);
    return positions;
}

/// A class with one operation more: its position is the number of those before it.
template <class Base>
class WithOneMore : public Base {
public:
    virtual void oneMore() {}
};
template <class Base>
std::ptrdiff_t operationCount() {
    return positionOf(&WithOneMore<Base>::oneMore);
}

TEST(VirtualPositions, OfTheRenderThread) {
    EXPECT_EQ(operationCount<KelOgreRenderThread>(), 1);
}

TEST(VirtualPositions, OfTheLock) {
    EXPECT_EQ(operationCount<MyCSingleLock>(), 1);
}

TEST(VirtualPositions, OfTheEngine) {
    EXPECT_EQ(positionsOf(&KelOgreBase::setup, &KelOgreBase::teardown, &KelOgreBase::idle),
              positionsFrom(1, 3));
    EXPECT_EQ(operationCount<KelOgreBase>(), 4);
}

TEST(VirtualPositions, OfTheEffectBase) {
    EXPECT_EQ(
        positionsOf(&KelEffectBase::setRenderSize, &KelEffectBase::process,
                    &KelEffectBase::readResult, &KelEffectBase::input, &KelEffectBase::removeInput,
                    &KelEffectBase::setInputTexture, &KelEffectBase::setInputImage,
                    &KelEffectBase::setInputImages, &KelEffectBase::destroyBase,
                    &KelEffectBase::isStopped, &KelEffectBase::getMaterial,
                    &KelEffectBase::setShaderParameters, &KelEffectBase::setFlip,
                    &KelEffectBase::flips, &KelEffectBase::inputCount, &KelEffectBase::resizeOutput,
                    &KelEffectBase::setInputImageFile, &KelEffectBase::flipVertical),
        positionsFrom(1, 18));
    EXPECT_EQ(operationCount<KelEffectBase>(), 19);
}

/// Defines the three operations that the base leaves open, and each two of them.
template <class Base>
class WithProcess : public Base {
    void process(unsigned char*, unsigned char*, std::uint32_t) override {}
};
template <class Base>
class WithReadResult : public Base {
    void readResult(_ImageParam*, unsigned char*, std::uint32_t) override {}
};
template <class Base>
class WithMaterial : public Base {
    Ogre::MaterialPtr getMaterial() override { return nullptr; }
};
static_assert(!std::is_abstract_v<WithProcess<WithReadResult<WithMaterial<KelEffectBase>>>>);
static_assert(std::is_abstract_v<WithReadResult<WithMaterial<KelEffectBase>>>);
static_assert(std::is_abstract_v<WithProcess<WithMaterial<KelEffectBase>>>);
static_assert(std::is_abstract_v<WithProcess<WithReadResult<KelEffectBase>>>);

template <class Value>
using Setter = void (KelOgreEffectBase::*)(std::int32_t, const char*, Value);
template <class Value>
std::ptrdiff_t positionOfSetter() {
    return positionOf(Setter<Value>(&KelOgreEffectBase::setParameter));
}

TEST(VirtualPositions, OfTheEffect) {
    using Effect = KelOgreEffectBase;
    // What overrides stands where the base has it.
    EXPECT_EQ(positionsOf(&Effect::process, &Effect::readResult, &Effect::getMaterial,
                          &Effect::setShaderParameters),
              (Places{2, 3, 11, 12}));
    EXPECT_EQ(positionsOf(&Effect::setReadBackMode, &Effect::destroySelf, &Effect::setShaderSource,
                          &Effect::setShaderTarget, &Effect::setShaderEntryPoint),
              positionsFrom(19, 5));
    EXPECT_EQ(
        (Places{positionOfSetter<const Ogre::ColourValue&>(), positionOfSetter<const _IntPoint&>(),
                positionOfSetter<const _DoublePoint&>(), positionOfSetter<const _FloatPoint&>(),
                positionOfSetter<const _Matrix4Point&>(), positionOfSetter<const Ogre::Matrix4*>(),
                positionOfSetter<const Ogre::Vector2&>(), positionOfSetter<const Ogre::Vector3&>(),
                positionOfSetter<const Ogre::Vector4&>(), positionOfSetter<float>(),
                positionOfSetter<std::int32_t>()}),
        positionsFrom(24, 11));
    EXPECT_EQ(
        positionsOf(&Effect::createSceneNodes, &Effect::buildPrograms, &Effect::applyParameters,
                    &Effect::hasMaterial, &Effect::getPixels, &Effect::destroyScene,
                    &Effect::createCamera, &Effect::createRenderTexture,
                    &Effect::destroyRenderTexture, &Effect::renderTextureCreated,
                    &Effect::resetViewports, &Effect::viewportsReset, &Effect::frameBegins,
                    &Effect::windowClosed, &Effect::renderOneFrame),
        positionsFrom(35, 15));
    // What the second base declares first is entered in the first table, too, behind all else.
    EXPECT_EQ(positionsOf(&Effect::frameStarted, &Effect::frameRenderingQueued),
              positionsFrom(50, 2));
    EXPECT_EQ(operationCount<Effect>(), 52);
}

TEST(VirtualPositions, OfTheEffectAsAFrameListener) {
    const KelOgreEffectBase effect;
    EXPECT_EQ(static_cast<const void*>(static_cast<const KelEffectBase*>(&effect)), &effect);
    EXPECT_GT(static_cast<const void*>(static_cast<const Ogre::FrameListener*>(&effect)),
              static_cast<const void*>(&effect));
    // Its destructor comes last.
    constexpr std::ptrdiff_t destructorFirst = 1;
    EXPECT_EQ(
        positionsOf(&Ogre::FrameListener::frameStarted, &Ogre::FrameListener::frameRenderingQueued,
                    &Ogre::FrameListener::frameEnded),
        positionsFrom(0 - destructorFirst, 3));
    static_assert(std::is_same_v<decltype(&KelOgreEffectBase::frameEnded),
                                 decltype(&Ogre::FrameListener::frameEnded)>,
                  "the end of a frame is the engine's own");
}

TEST(VirtualPositions, OfThePicturePlane) {
    using Plane = KelOgrePicturePlane;
    EXPECT_EQ(positionsOf(&Plane::number, &Plane::name, &Plane::materialName, &Plane::rectangleName,
                          &Plane::material, &Plane::textureName, &Plane::texture,
                          &Plane::textureCount, &Plane::width, &Plane::height, &Plane::resize,
                          &Plane::pixelBufferSwitch, &Plane::setPixelBufferSwitch,
                          &Plane::rectangle, &Plane::attachTo, &Plane::detach),
              positionsFrom(1, 16));
    EXPECT_EQ(operationCount<Plane>(), 17);
    EXPECT_THROW(positionOf(&Plane::setPictruePlaneImage), std::invalid_argument);
    EXPECT_THROW(positionOf(&Plane::setTexture), std::invalid_argument);
}

template <class Value>
std::ptrdiff_t positionOfConstant() {
    using Constant = void (KelOgreShader::*)(std::int32_t, const std::string&, Value);
    return positionOf(Constant(&KelOgreShader::setParameter));
}

TEST(VirtualPositions, OfTheShader) {
    using Shader = KelOgreShader;
    EXPECT_EQ(positionsOf(&Shader::setShaderProgram, &Shader::setDxShaderProgramTarget,
                          &Shader::setDxShaderProgramEntryPoint, &Shader::initialiseDxShaderProgram,
                          &Shader::createMaterial),
              positionsFrom(1, 5));
    EXPECT_EQ(
        (Places{
            positionOfConstant<std::int32_t>(), positionOfConstant<float>(),
            positionOfConstant<const Ogre::Vector4&>(), positionOfConstant<const Ogre::Vector3&>(),
            positionOfConstant<const Ogre::Vector2&>(), positionOfConstant<const Ogre::Matrix4*>(),
            positionOfConstant<const _Matrix4Point&>(), positionOfConstant<const _FloatPoint&>(),
            positionOfConstant<const _DoublePoint&>(), positionOfConstant<const _IntPoint&>(),
            positionOfConstant<const Ogre::ColourValue&>()}),
        positionsFrom(6, 11));
    EXPECT_EQ(positionsOf(&Shader::copyParameters, &Shader::createVertexProgram,
                          &Shader::createFragmentProgram, &Shader::readParameter),
              positionsFrom(17, 4));
    EXPECT_EQ(operationCount<Shader>(), 21);
}

TEST(VirtualPositions, OfTheFactories) {
    // Their destructor comes last.
    EXPECT_EQ(entryOf(&DYN_CLASS::CAbstractFactory::create), 0);
    EXPECT_EQ(entryOf(&EffectFactory::create), 0);
    EXPECT_EQ(operationCount<DYN_CLASS::CAbstractFactory>(), 2);
    EXPECT_EQ(operationCount<EffectFactory>(), 2);
    static_assert(std::is_base_of_v<DYN_CLASS::CAbstractFactory, EffectFactory>);
    EXPECT_EQ(operationCount<DYN_CLASS::CFactoryManager>(), 1);
}

/// Gives the offsets of fields, private ones included: what instantiates a template explicitly may
/// name them.
template <class Tag, auto... fields>
struct Fields {
    friend Places offsetsOf(Tag) { return {std::bit_cast<std::ptrdiff_t>(fields)...}; }
};
template <class Class>
struct Of {};
/// What an effect keeps of a program; the class is private.
struct OfProgramText {};

Places offsetsOf(Of<KelOgreRenderThread>);
template struct Fields<Of<KelOgreRenderThread>, &KelOgreRenderThread::requestLock_,
                       &KelOgreRenderThread::firstPath_, &KelOgreRenderThread::secondPath_,
                       &KelOgreRenderThread::logPath_, &KelOgreRenderThread::renderSystemKind_>;

Places offsetsOf(Of<MyCSingleLock>);
template struct Fields<Of<MyCSingleLock>, &MyCSingleLock::section_, &MyCSingleLock::locked_>;

Places offsetsOf(Of<KelOgreBase>);
template struct Fields<
    Of<KelOgreBase>, &KelOgreBase::root_, &KelOgreBase::pluginsFile_,
    &KelOgreBase::configurationFile_, &KelOgreBase::logFile_, &KelOgreBase::resourcesFile_,
    &KelOgreBase::renderWindow_, &KelOgreBase::renderSystemKind_, &KelOgreBase::pixelBufferCapable_,
    &KelOgreBase::intelGpu_, &KelOgreBase::setupSucceeded_, &KelOgreBase::useConfigurationFile_,
    &KelOgreBase::hiddenWindow_, &KelOgreBase::driverVersion_, &KelOgreBase::volumeTextures_>;

Places offsetsOf(Of<KelEffectBase>);
template struct Fields<Of<KelEffectBase>, &KelEffectBase::inputs_, &KelEffectBase::renderWidth_,
                       &KelEffectBase::renderHeight_, &KelEffectBase::sizeChanged_,
                       &KelEffectBase::row_>;

Places offsetsOf(Of<KelOgreEffectBase>);
template struct Fields<
    Of<KelOgreEffectBase>, &KelOgreEffectBase::number_, &KelOgreEffectBase::engine_,
    &KelOgreEffectBase::sceneManager_, &KelOgreEffectBase::camera_, &KelOgreEffectBase::viewport_,
    &KelOgreEffectBase::sceneNode_, &KelOgreEffectBase::planeNode_,
    &KelOgreEffectBase::cameraController_, &KelOgreEffectBase::renderTexture_,
    &KelOgreEffectBase::picturePlane_, &KelOgreEffectBase::programs_, &KelOgreEffectBase::shader_,
    &KelOgreEffectBase::material_, &KelOgreEffectBase::readBack_, &KelOgreEffectBase::parameters_,
    &KelOgreEffectBase::lastFrameTime_, &KelOgreEffectBase::frameTimeScale_>;

Places offsetsOf(OfProgramText);
template struct Fields<OfProgramText, &KelOgreEffectBase::ProgramText::text,
                       &KelOgreEffectBase::ProgramText::fromSource>;

Places offsetsOf(Of<keladjust::ReadBack>);
template struct Fields<Of<keladjust::ReadBack>, &keladjust::ReadBack::mode_,
                       &keladjust::ReadBack::buffer_>;

Places offsetsOf(Of<KelOgrePicturePlane>);
template struct Fields<Of<KelOgrePicturePlane>, &KelOgrePicturePlane::number_,
                       &KelOgrePicturePlane::name_, &KelOgrePicturePlane::materialName_,
                       &KelOgrePicturePlane::rectangleName_, &KelOgrePicturePlane::material_,
                       &KelOgrePicturePlane::textures_, &KelOgrePicturePlane::width_,
                       &KelOgrePicturePlane::height_, &KelOgrePicturePlane::pixelBufferSwitch_>;

Places offsetsOf(Of<KelOgreShader>);
template struct Fields<Of<KelOgreShader>, &KelOgreShader::vertexProgramName_,
                       &KelOgreShader::vertexProgram_, &KelOgreShader::fragmentProgramName_,
                       &KelOgreShader::fragmentProgram_, &KelOgreShader::material_>;

Places offsetsOf(Of<DYN_CLASS::CFactoryManager>);
template struct Fields<Of<DYN_CLASS::CFactoryManager>, &DYN_CLASS::CFactoryManager::next_,
                       &DYN_CLASS::CFactoryManager::factory_>;

Places offsetsOf(Of<_ImageParam>);
template struct Fields<Of<_ImageParam>, &_ImageParam::data, &_ImageParam::changed,
                       &_ImageParam::width, &_ImageParam::height, &_ImageParam::index,
                       &_ImageParam::format, &_ImageParam::byteSize>;

Places offsetsOf(Of<_CommDataType>);
template struct Fields<Of<_CommDataType>, &_CommDataType::programKind, &_CommDataType::name>;

class FieldOrder : public testing::TestWithParam<std::pair<const char*, Places>> {};

TEST_P(FieldOrder, IsKept) {
    const Places& offsets = GetParam().second;
    EXPECT_EQ(std::adjacent_find(offsets.begin(), offsets.end(), std::greater_equal<>()),
              offsets.end())
        << testing::PrintToString(offsets);
}

INSTANTIATE_TEST_SUITE_P(
    , FieldOrder,
    testing::Values(std::pair{"RenderThread", offsetsOf(Of<KelOgreRenderThread>())},
                    std::pair{"Lock", offsetsOf(Of<MyCSingleLock>())},
                    std::pair{"Engine", offsetsOf(Of<KelOgreBase>())},
                    std::pair{"EffectBase", offsetsOf(Of<KelEffectBase>())},
                    std::pair{"Effect", offsetsOf(Of<KelOgreEffectBase>())},
                    std::pair{"ProgramText", offsetsOf(OfProgramText())},
                    std::pair{"ReadBack", offsetsOf(Of<keladjust::ReadBack>())},
                    std::pair{"PicturePlane", offsetsOf(Of<KelOgrePicturePlane>())},
                    std::pair{"Shader", offsetsOf(Of<KelOgreShader>())},
                    std::pair{"FactoryManager", offsetsOf(Of<DYN_CLASS::CFactoryManager>())},
                    std::pair{"ImageParam", offsetsOf(Of<_ImageParam>())},
                    std::pair{"CommDataType", offsetsOf(Of<_CommDataType>())}),
    [](const auto& each) { return std::string(each.param.first); });

}  // namespace
