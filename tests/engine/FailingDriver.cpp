// A graphics driver that fails: each of its answers in turn, once and from there on for good, in
// each way in which drivers say so. Whatever it does, a picture comes out rendered or as it was.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "engine/GlBuffers.h"
#include "engine/RunningEngine.h"
#include "engine/platform/OpenGl.h"

namespace {

// How a driver fails. In every way it has done nothing of what it was asked.
enum class Way { none, invalidOperation, outOfMemory, contextLost };

/// The driver between the engine and the real one. Used on the render thread.
struct Driver {
    Way way = Way::none;
    bool forGood = false;
    int answersUntilThen = 0;
    bool hasFailed = false;

    /// True if this answer is a failure.
    bool fails() {
        if (way == Way::none || answersUntilThen < 0) return false;
        if (answersUntilThen > 0) {
            --answersUntilThen;
            return false;
        }
        hasFailed = true;
        if (!forGood) answersUntilThen = -1;
        return true;
    }
    GLenum error() const {
        switch (way) {
            case Way::outOfMemory:
                return GL_OUT_OF_MEMORY;
            case Way::contextLost:
                return 0x0507;  // GL_CONTEXT_LOST
            default:
                return GL_INVALID_OPERATION;
        }
    }
};
Driver driver;
// What the next question for an error gets.
GLenum pendingError = GL_NO_ERROR;

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// The functions that read a render back, and the one that tells of errors.
extern "C" {
GLenum glGetError() {
    static const auto real = next<GLenum (*)()>("glGetError");
    const GLenum pending = pendingError;
    pendingError = GL_NO_ERROR;
    if (pending != GL_NO_ERROR) return pending;
    // A context that is lost says so as often as it is asked.
    if (driver.hasFailed && driver.forGood && driver.way == Way::contextLost) return driver.error();
    return real();
}
void glReadBuffer(GLenum source) {
    static const auto real = next<void (*)(GLenum)>("glReadBuffer");
    if (driver.fails()) {
        pendingError = driver.error();
    } else {
        real(source);
    }
}
void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type,
                  void* pixels) {
    static const auto real =
        next<void (*)(GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, void*)>("glReadPixels");
    if (driver.fails()) {
        pendingError = driver.error();
    } else {
        real(x, y, width, height, format, type, pixels);
    }
}
}

namespace {

using keladjust::test::HostPicture;
using keladjust::test::invertProgram;
using keladjust::test::RunningEngine;

PFNGLMAPBUFFERPROC realMap = nullptr;
PFNGLUNMAPBUFFERPROC realUnmap = nullptr;

/// An effect whose buffer is mapped by the failing driver.
class DrivenEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class DrivenEffect";
    DrivenEffect() {
        realMap = glBuffers().mapBuffer;
        realUnmap = glBuffers().unmapBuffer;
        glBuffers().mapBuffer = [](GLenum target, GLenum access) -> void* {
            if (!driver.fails()) return realMap(target, access);
            pendingError = driver.error();
            return nullptr;
        };
        // The contents are lost meanwhile, for which there is no error.
        glBuffers().unmapBuffer = [](GLenum target) -> GLboolean {
            const GLboolean intact = realUnmap(target);
            return driver.fails() ? static_cast<GLboolean>(GL_FALSE) : intact;
        };
    }
};

class FailingDriver : public RunningEngine {
protected:
    void TearDown() override {
        driver = {};
        RunningEngine::TearDown();
    }
};

TEST_F(FailingDriver, RendersAllOrNothing) {
    DYN_CLASS::CFactory<DrivenEffect> factory;
    const DYN_CLASS::CFactoryManager place(&factory);
    KelOgreEffectBase& effect = *effectWith(invertProgram, "DrivenEffect");
    HostPicture original(7, 5, 32, IMAGE_FORMAT_BGRA);
    original.fillRandom(4);
    HostPicture inverted(original);
    render(effect, inverted);
    ASSERT_EQ(inverted.bits()[0], 255 - original.bits()[0]);

    int failures = 0;
    int refusals = 0;
    for (const auto mode :
         {KelOgreEffectBase::readBackByEngine, KelOgreEffectBase::readBackDirectly,
          KelOgreEffectBase::readBackThroughBuffer}) {
        effect.setReadBackMode(mode);
        for (const Way way : {Way::invalidOperation, Way::outOfMemory, Way::contextLost}) {
            for (const bool forGood : {false, true}) {
                for (int answers = 0;; ++answers) {
                    ASSERT_LT(answers, 100);
                    driver = {way, forGood, answers};
                    HostPicture picture(original);
                    EXPECT_EQ(render(effect, picture), 1);
                    const bool failed = driver.hasFailed;
                    driver = {};
                    pendingError = GL_NO_ERROR;
                    const bool refused = picture.bytes() == original.bytes();
                    EXPECT_TRUE(refused || picture.bytes() == inverted.bytes())
                        << "mode " << mode << ", way " << static_cast<int>(way) << ", answer "
                        << answers << (forGood ? " and all later ones" : "");
                    EXPECT_EQ(refused, !effect.failure().empty());
                    if (!failed) break;
                    ++failures;
                    refusals += refused ? 1 : 0;
                    // With a driver that is well again, so is the next pass.
                    HostPicture later(original);
                    render(effect, later);
                    EXPECT_TRUE(later.bytes() == inverted.bytes());
                }
            }
        }
    }
    EXPECT_GT(failures, 20);
    EXPECT_GT(refusals, 10);
    EXPECT_TRUE(thread->isEngineInitialised());
    thread->removeEffect(&effect, false);
}

}  // namespace
