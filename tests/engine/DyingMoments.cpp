// A display that dies in the middle of a render, at each of its steps. One test to a process,
// because each takes its display along.

#include <sys/types.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include "engine/RunningEngine.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::invertProgram;

/// The server has ended when this returns.
void killServer() {
    const auto server = static_cast<pid_t>(std::stol(std::getenv("WITH_DISPLAY_SERVER")));
    kill(server, SIGKILL);
    // Its parent, the script that has started this program, waits for it only afterwards.
    const std::string state = "/proc/" + std::to_string(server) + "/stat";
    const auto hasEnded = [&state] {
        std::ifstream file(state);
        const std::string line{std::istreambuf_iterator<char>(file), {}};
        return line.empty() || line.find(") Z") != std::string::npos;
    };
    while (!hasEnded()) std::this_thread::yield();
}

/// Has the display die at one step of the second pass.
class DyingEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class DyingEffect";

    void buildPrograms() override {
        dieAt("upload");
        KelOgreEffectBase::buildPrograms();
    }
    void renderTextureCreated() override { dieAt("texture"); }
    void viewportsReset() override { dieAt("viewport"); }
    void applyParameters() override {
        dieAt("parameters");
        KelOgreEffectBase::applyParameters();
    }
    void frameBegins() override { dieAt("frame"); }
    bool getPixels(_ImageParam* result) override {
        dieAt("pixels");
        const bool delivered = KelOgreEffectBase::getPixels(result);
        dieAt("end");
        return delivered;
    }

    std::string moment;

private:
    void dieAt(const std::string& step) {
        if (step != moment) return;
        moment.clear();
        killServer();
    }
};

class DyingMoments : public keladjust::test::RunningEngine {
protected:
    void dieAt(const char* moment) {
        DYN_CLASS::CFactory<DyingEffect> factory;
        const DYN_CLASS::CFactoryManager place(&factory);
        auto& effect = static_cast<DyingEffect&>(*effectWith(invertProgram, "DyingEffect"));
        HostPicture small(3, 2, 32, IMAGE_FORMAT_BGRA);
        render(effect, small);

        HostPicture picture(61, 47, 32, IMAGE_FORMAT_BGRA);
        HostPicture inverted(picture.fillRandom(1));
        for (std::size_t i = 0; i < inverted.bytes().size(); ++i) {
            if (i % 4 != 3)
                inverted.bits()[i] = static_cast<std::uint8_t>(255 - inverted.bits()[i]);
        }
        const auto before = picture.bytes();
        effect.moment = moment;
        render(effect, picture);
        EXPECT_EQ(effect.moment, "") << "the display has not died at all";
        EXPECT_TRUE(picture.bytes() == before || picture.bytes() == inverted.bytes());
        EXPECT_TRUE(picture.guardsIntact());
        // Whatever comes after, to the stop of the engine, ends as well.
        render(effect, picture);
        EXPECT_TRUE(picture.guardsIntact());
        thread->stop();
        EXPECT_FALSE(thread->isEngineInitialised());
    }
};

TEST_F(DyingMoments, Upload) {
    dieAt("upload");
}
TEST_F(DyingMoments, Texture) {
    dieAt("texture");
}
TEST_F(DyingMoments, Viewport) {
    dieAt("viewport");
}
TEST_F(DyingMoments, Parameters) {
    dieAt("parameters");
}
TEST_F(DyingMoments, Frame) {
    dieAt("frame");
}
TEST_F(DyingMoments, Pixels) {
    dieAt("pixels");
}
TEST_F(DyingMoments, End) {
    dieAt("end");
}

}  // namespace
