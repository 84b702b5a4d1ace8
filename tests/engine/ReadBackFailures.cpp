// A read-back that fails on its way writes nothing, and leaves the driver as it was.

#include <OgreRenderWindow.h>

#include <stdexcept>
#include <vector>

#include "engine/RunningEngine.h"
#include "engine/platform/GlEntryPoints.h"
#include "engine/platform/OpenGl.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::invertProgram;
using keladjust::test::PixelFormat;

class ReadBackFailures : public keladjust::test::RunningEngine {};

/// Reads half of the render and then fails, as a driver may whose context is lost meanwhile.
class HalfReadingEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class HalfReadingEffect";
    enum class End { delivers, refuses, throws };

    bool getPixels(_ImageParam* result) override {
        if (end == End::delivers) return KelOgreEffectBase::getPixels(result);
        for (std::size_t i = 0; i < result->byteSize / 2; ++i) result->data[i] = 0xA5;
        if (end == End::throws) throw std::runtime_error("lost on the way");
        return false;
    }
    End end = End::delivers;
};

TEST_F(ReadBackFailures, WriteNothingAndUnbindTheBuffer) {
    DYN_CLASS::CFactory<HalfReadingEffect> factory;
    const DYN_CLASS::CFactoryManager place(&factory);
    auto& effect = static_cast<HalfReadingEffect&>(*effectWith(invertProgram, "HalfReadingEffect"));
    ASSERT_EQ(effect.readBackMode(), KelOgreEffectBase::readBackThroughBuffer);
    for (const PixelFormat format : {PixelFormat{32, IMAGE_FORMAT_BGRA}, {24, IMAGE_FORMAT_RGB}}) {
        for (const auto end : {HalfReadingEffect::End::refuses, HalfReadingEffect::End::throws}) {
            effect.end = end;
            HostPicture picture(7, 5, format.bpp, format.format);
            const auto before = picture.fillRandom(6).bytes();
            render(effect, picture);
            EXPECT_EQ(picture.bytes(), before) << format.bpp;
            EXPECT_NE(effect.failure(), "");
            GLint bound = -1;
            onThread([&bound] { glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &bound); });
            EXPECT_EQ(bound, 0) << format.bpp;
            // The next pass is as good as the first would have been.
            effect.end = HalfReadingEffect::End::delivers;
            render(effect, picture);
            EXPECT_EQ(picture.bytes()[0], 255 - before[0]);
        }
    }
    thread->removeEffect(&effect, false);
}

int driverCalls = 0;

/// Counts what the driver is asked of its buffer from now on.
class CountingEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class CountingEffect";
    void countCalls() {
        glBuffers().isBuffer = [](GLuint) -> GLboolean { return ++driverCalls, GL_TRUE; };
        glBuffers().deleteBuffers = [](GLsizei, const GLuint*) { ++driverCalls; };
        glBuffers().bindBuffer = [](GLenum, GLuint) { ++driverCalls; };
        glBuffers().bufferData = [](GLenum, GLsizeiptr, const void*, GLenum) { ++driverCalls; };
        glBuffers().mapBuffer = [](GLenum, GLenum) -> void* { return ++driverCalls, nullptr; };
    }
};

TEST_F(ReadBackFailures, AskNothingOfADriverWhoseContextIsGone) {
    DYN_CLASS::CFactory<CountingEffect> factory;
    const DYN_CLASS::CFactoryManager place(&factory);
    auto& effect = static_cast<CountingEffect&>(*effectWith(invertProgram, "CountingEffect"));
    HostPicture picture(7, 5, 32, IMAGE_FORMAT_BGRA);
    render(effect, picture);
    const auto before = picture.bytes();
    effect.countCalls();
    driverCalls = 0;
    onThread([&] { thread->engine()->renderWindow()->destroy(); });

    _ImageParam result{};
    result.data = picture.bits();
    _ResultRecord record{&result, &effect};
    thread->readResult(&record, nullptr, 4);
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_TRUE(log.has("window had been closed!"));
    EXPECT_EQ(thread->removeEffect(&effect, false), 1);
    EXPECT_EQ(driverCalls, 0);
}

TEST(GlEntryPoints, AreNotWhatDriversGiveInPlaceOfThem) {
    using keladjust::platform::isGlEntryPoint;
    for (const std::intptr_t none : {-1, 0, 1, 2, 3}) EXPECT_FALSE(isGlEntryPoint(none)) << none;
    for (const std::intptr_t one : {-2, 4, 0x1000}) EXPECT_TRUE(isGlEntryPoint(one)) << one;
}

}  // namespace
