// What the pipeline asks of the render thread, and in which order. A render thread that only takes
// notes is linked in place of the real one.

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/OgreEngine.h"

namespace {

using keladjust::EngineReason;
using keladjust::OgreEngine;

std::vector<std::string> notes;

template <class... Words>
void note(const Words&... words) {
    std::ostringstream line;
    ((line << words << ' '), ...);
    notes.push_back(line.str().substr(0, line.str().size() - 1));
}

/// Notes what it is set to.
class NotingEffect : public KelOgreEffectBase {
public:
    using KelOgreEffectBase::setParameter;
    void setInputImage(unsigned char* pixels, std::uint32_t width, std::uint32_t height,
                       std::uint32_t index, std::uint32_t format) override {
        note("input", static_cast<int>(*pixels), width, height, index, format);
    }
    void setRenderSize(std::uint32_t width, std::uint32_t height) override {
        note("size", width, height);
    }
    void setParameter(std::int32_t kind, const char* name, float value) override {
        note("float", kind, name, value);
    }
    void setParameter(std::int32_t kind, const char* name, std::int32_t value) override {
        note("int", kind, name, value);
    }
    void setShaderSource(const char* text, std::int32_t isFragment,
                         std::int32_t fromSource) override {
        note("source", text, isFragment, fromSource);
    }
};

/// Effects live until the thread is stopped.
std::vector<std::unique_ptr<NotingEffect>> effects;

}  // namespace

KelOgreRenderThread::KelOgreRenderThread(const char* firstPath, const char* secondPath,
                                         const char* logPath, std::uint32_t renderSystemKind,
                                         EngineMaker)
    : renderSystemKind_(renderSystemKind) {
    note("start", firstPath, secondPath, logPath, renderSystemKind);
}
KelOgreRenderThread::~KelOgreRenderThread() {
    note("stop");
    effects.clear();
}
std::unique_ptr<KelOgreBase> KelOgreRenderThread::makeKelOgreBase(const KelOgreBase::Start&) {
    return nullptr;
}
bool KelOgreRenderThread::isEngineInitialised() const {
    return true;
}
const KelOgreBase* KelOgreRenderThread::engine() const {
    return nullptr;
}
KelEffectBase* KelOgreRenderThread::createEffect(const char* className) {
    note("create", className);
    return effects.emplace_back(std::make_unique<NotingEffect>()).get();
}
int KelOgreRenderThread::getMaterial(KelEffectBase* effect) {
    note("material", effect == effects.back().get());
    return 1;
}
int KelOgreRenderThread::loadPicture(const char*, const PictureReader&) {
    return 0;
}
int KelOgreRenderThread::render(KelEffectBase* effect, unsigned char* outputBuffer,
                                unsigned char* inputPixels, std::uint32_t bytesPerPixel,
                                bool* slowFlag, std::uint32_t evaluateMilliseconds,
                                std::string* failure) {
    note("render", effect == effects.back().get(), outputBuffer == nullptr,
         static_cast<int>(*inputPixels), bytesPerPixel,
         slowFlag == nullptr ? "no flag" : "a slow flag", evaluateMilliseconds, "ms",
         failure != nullptr ? "with a reason" : "without a reason");
    return 1;
}

namespace {

TEST(RenderRequests, AreMadeAfterAllSettingsWithTwentyMillisecondsAndNoFlag) {
    OgreEngine engine;
    EngineReason reason;
    const char* const programs[] = {"one program", "another"};
    ASSERT_TRUE(engine.start({"resources/", "plugins/", "log/", programs, 2}, reason));
    EXPECT_EQ(notes, (std::vector<std::string>{"start resources/ plugins/ log/ 0",
                                               "create KelOgreEffectBase", "source one program 1 1",
                                               "material 1", "create KelOgreEffectBase",
                                               "source another 1 1", "material 1"}));
    notes.clear();

    unsigned char pixels[3] = {77, 0, 0};
    const keladjust::EngineInt ints[] = {{"Sample", 0}, {"imageWidth", 31}};
    const keladjust::EngineFloat floats[] = {{"amount", 0.5f}, {"size", -2.0f}};
    ASSERT_TRUE(
        engine.render({1, pixels, 31, 17, 24, IMAGE_FORMAT_RGB, ints, 2, floats, 2}, reason))
        << reason.text;
    EXPECT_EQ(notes, (std::vector<std::string>{
                         "input 77 31 17 0 " + std::to_string(Ogre::PF_B8G8R8), "size 31 17",
                         "int 1 Sample 0", "int 1 imageWidth 31", "float 1 amount 0.5",
                         "float 1 size -2", "render 1 1 77 3 no flag 20 ms with a reason"}));
    notes.clear();

    engine.stop();
    EXPECT_EQ(notes, std::vector<std::string>{"stop"});
}

}  // namespace
