// Drivers that lack functions for buffer objects, or have them under the names of the extension.
// The driver's own look-up is replaced by one that hides names when asked to.

#include <dlfcn.h>

#include <array>
#include <functional>
#include <string>

#include "engine/GlBuffers.h"
#include "engine/RunningEngine.h"
#include "engine/platform/GlEntryPoints.h"

namespace {

/// True for names that the driver is to lack. Set on the render thread, and for a moment only.
std::function<bool(const std::string&)> isHidden;

}  // namespace

// As <GL/glx.h> declares it, whose macros are in the way of everything else.
extern "C" void (*glXGetProcAddressARB(const GLubyte* name))() {
    static const auto lookUp =
        reinterpret_cast<decltype(&glXGetProcAddressARB)>(dlsym(RTLD_NEXT, "glXGetProcAddressARB"));
    return isHidden && isHidden(reinterpret_cast<const char*>(name)) ? nullptr : lookUp(name);
}

namespace {

using keladjust::GlBuffers;
using keladjust::platform::glEntryPoint;
using keladjust::test::HostPicture;
using keladjust::test::invertProgram;
using keladjust::test::RunningEngine;

constexpr std::array<const char*, 7> bufferFunctions{
    "glGenBuffers", "glDeleteBuffers", "glIsBuffer",   "glBindBuffer",
    "glBufferData", "glMapBuffer",     "glUnmapBuffer"};

using Functions = std::array<void (*)(), bufferFunctions.size()>;

Functions functionsOf(const GlBuffers& buffers) {
    const auto asFunction = [](auto function) { return reinterpret_cast<void (*)()>(function); };
    return {asFunction(buffers.genBuffers), asFunction(buffers.deleteBuffers),
            asFunction(buffers.isBuffer),   asFunction(buffers.bindBuffer),
            asFunction(buffers.bufferData), asFunction(buffers.mapBuffer),
            asFunction(buffers.unmapBuffer)};
}

Functions functionsCalled(const std::string& suffix) {
    Functions functions{};
    for (std::size_t i = 0; i < functions.size(); ++i) {
        functions[i] = glEntryPoint((bufferFunctions[i] + suffix).c_str());
    }
    return functions;
}

/// The driver lacks these names while it lives.
class Hidden {
public:
    explicit Hidden(std::function<bool(const std::string&)> which) { isHidden = std::move(which); }
    ~Hidden() { isHidden = nullptr; }
    Hidden(const Hidden&) = delete;
    Hidden& operator=(const Hidden&) = delete;
};

class EntryPoints : public RunningEngine {
protected:
    /// What the driver is to lack while the effect is made.
    KelOgreEffectBase& effectWithout(std::function<bool(const std::string&)> which) {
        onThread([&] { isHidden = which; });
        KelOgreEffectBase* const effect = effectWith(invertProgram);
        onThread([] { isHidden = nullptr; });
        return *effect;
    }
    void expectRenders(KelOgreEffectBase& effect, bool throughBuffers) {
        HostPicture picture(5, 3, 32, IMAGE_FORMAT_BGRA);
        const auto before = picture.fillRandom(1).bytes();
        render(effect, picture);
        EXPECT_EQ(picture.bytes()[0], 255 - before[0]) << log.all();
        EXPECT_EQ(effect.picturePlane()->pixelBufferSwitch(), throughBuffers);
        EXPECT_FALSE(log.has("glMapBufferRangeEXT failed: "));
    }
    static bool isBufferFunction(const std::string& name) {
        return name.find("Buffer") != std::string::npos;
    }
    static bool isOfExtension(const std::string& name) { return name.ends_with("ARB"); }
};

TEST_F(EntryPoints, AreTakenUnderTheirOwnNames) {
    onThread([] {
        GlBuffers buffers;
        EXPECT_TRUE(buffers.load());
        EXPECT_EQ(functionsOf(buffers), functionsCalled(""));
    });
}

TEST_F(EntryPoints, AreTakenUnderTheNamesOfTheExtensionIfOneIsMissing) {
    onThread([] {
        const Functions own = functionsCalled("");
        const Functions ofExtension = functionsCalled("ARB");
        for (std::size_t i = 0; i < bufferFunctions.size(); ++i) {
            ASSERT_NE(ofExtension[i], nullptr) << bufferFunctions[i];
            ASSERT_NE(ofExtension[i], own[i]) << bufferFunctions[i];
            const Hidden hidden(
                [i](const std::string& name) { return name == bufferFunctions[i]; });
            GlBuffers buffers;
            EXPECT_TRUE(buffers.load()) << bufferFunctions[i];
            EXPECT_EQ(functionsOf(buffers), ofExtension) << "the two sets are not mixed";
        }
    });
}

TEST_F(EntryPoints, AreMissingIfEitherSetLacksOne) {
    onThread([] {
        for (const std::string missing : bufferFunctions) {
            const Hidden hidden([&](const std::string& name) {
                return name == "glGenBuffers" || name == missing + "ARB";
            });
            GlBuffers buffers;
            EXPECT_FALSE(buffers.load()) << missing;
        }
    });
}

TEST_F(EntryPoints, OfTheExtensionReadBackThroughABufferAsWell) {
    KelOgreEffectBase& effect = effectWithout(
        [](const std::string& name) { return isBufferFunction(name) && !isOfExtension(name); });
    EXPECT_EQ(effect.readBackMode(), KelOgreEffectBase::readBackThroughBuffer);
    expectRenders(effect, true);
}

TEST_F(EntryPoints, ThatAreMissingHaveEffectsReadBackDirectly) {
    KelOgreEffectBase& effect =
        effectWithout([](const std::string& name) { return isBufferFunction(name); });
    EXPECT_EQ(effect.readBackMode(), KelOgreEffectBase::readBackDirectly);
    expectRenders(effect, false);
    effect.setReadBackMode(KelOgreEffectBase::readBackThroughBuffer);
    EXPECT_EQ(effect.readBackMode(), KelOgreEffectBase::readBackDirectly);
}

}  // namespace
