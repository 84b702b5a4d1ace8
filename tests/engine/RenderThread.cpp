// The render thread with an engine that only counts: commands, their order, the stop flag, failures
// and host threads side by side. Nothing here needs a display.

#include <OgreException.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "engine/HookEffect.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/LogCapture.h"
#include "engine/StubEngine.h"

namespace {

using keladjust::test::HookEffect;
using keladjust::test::HookFactory;
using keladjust::test::LogCapture;
using keladjust::test::StubEngine;

class RenderThread : public testing::Test {
protected:
    RenderThread() { StubEngine::nextStart = StubEngine::Start::succeeds; }
    ~RenderThread() override { EXPECT_EQ(StubEngine::alive, 0); }

    static std::unique_ptr<KelOgreRenderThread> start() {
        return std::make_unique<KelOgreRenderThread>("first/", nullptr, nullptr, 0u,
                                                     StubEngine::make);
    }
    static HookEffect* create(KelOgreRenderThread& thread) {
        return static_cast<HookEffect*>(thread.createEffect("HookEffect"));
    }
    static int render(KelOgreRenderThread& thread, KelEffectBase* effect) {
        return thread.render(effect, nullptr, nullptr, 4, nullptr, 20);
    }

    LogCapture log;
    HookFactory factory;
};

TEST_F(RenderThread, StopsWhatItStartedOnce) {
    const auto thread = start();
    EXPECT_TRUE(thread->isEngineInitialised());
    EXPECT_NE(thread->engine(), nullptr);
    EXPECT_EQ(thread->stop(), 1);
    EXPECT_FALSE(thread->isEngineInitialised());
    EXPECT_EQ(thread->engine(), nullptr);
    EXPECT_EQ(thread->stop(), 0);
    EXPECT_EQ(log.countExact("Delete all effect!"), 1);
}

TEST_F(RenderThread, AnEngineThatFailsToStartLeavesNoThread) {
    for (const auto outcome : {StubEngine::Start::fails, StubEngine::Start::throws}) {
        StubEngine::nextStart = outcome;
        log.clear();
        const auto thread = start();
        EXPECT_FALSE(thread->isEngineInitialised());
        EXPECT_EQ(StubEngine::alive, 0);
        EXPECT_EQ(log.countExact("Initialze Ogre failed!"), 1);
        EXPECT_EQ(render(*thread, nullptr), 0);
        EXPECT_EQ(thread->stop(), 0);
    }
    StubEngine::nextStart = StubEngine::Start::succeeds;
    EXPECT_TRUE(start()->isEngineInitialised());
}

TEST_F(RenderThread, CreatingAnEffectStartsAThreadWhereThereIsNone) {
    const auto thread = start();
    thread->stop();
    const int setups = StubEngine::setups;
    EXPECT_NE(create(*thread), nullptr);
    EXPECT_EQ(StubEngine::setups, setups + 1);
    EXPECT_TRUE(thread->isEngineInitialised());
}

// Nothing that is asked without the lock of the commands looks at what a stop takes away.
TEST_F(RenderThread, ToldOfWhileAnotherThreadStopsAndStartsIt) {
    const auto thread = start();
    std::atomic<bool> done{false};
    std::atomic<int> timesUp{0};
    std::thread asking([&] {
        do {
            if (thread->isEngineInitialised() && thread->engine() != nullptr) ++timesUp;
        } while (!done);
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(thread->stop(), 1);
        EXPECT_FALSE(thread->isEngineInitialised());
        EXPECT_NE(create(*thread), nullptr);
        EXPECT_TRUE(thread->isEngineInitialised());
    }
    // Up by now, and asked at least once more.
    while (timesUp == 0) std::this_thread::yield();
    done = true;
    asking.join();
}

TEST_F(RenderThread, ASecondObjectHasNoThread) {
    const auto first = start();
    const auto second = start();
    EXPECT_FALSE(second->isEngineInitialised());
    EXPECT_EQ(second->createEffect("HookEffect"), nullptr);
    EXPECT_EQ(second->stop(), 0);
    EXPECT_TRUE(first->isEngineInitialised());
    EXPECT_TRUE(log.has("Ogre Thread is null!"));
}

TEST_F(RenderThread, RefusesAnEffectWithoutAClassName) {
    const auto thread = start();
    EXPECT_EQ(thread->createEffect(nullptr), nullptr);
    EXPECT_EQ(log.countExact("Error: class name is NULL!"), 1);
}

TEST_F(RenderThread, AnUnknownClassGivesNullAndNotTheEffectBefore) {
    const auto thread = start();
    HookEffect* const first = create(*thread);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(thread->createEffect("NoSuchEffect"), nullptr);
    EXPECT_EQ(thread->createEffect(std::string(1000, 'x').c_str()), nullptr);
    HookEffect* const second = create(*thread);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(second, first);
}

TEST_F(RenderThread, RendersOnItsOwnThreadWithWhatItIsGiven) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    unsigned char output = 0;
    unsigned char input = 0;
    std::thread::id id;
    effect->onProcess = [&](unsigned char* out, unsigned char* in, std::uint32_t bytes) {
        EXPECT_EQ(out, &output);
        EXPECT_EQ(in, &input);
        EXPECT_EQ(bytes, 3u);
        id = std::this_thread::get_id();
    };
    EXPECT_EQ(thread->render(effect, &output, &input, 3, nullptr, 20), 1);
    EXPECT_NE(id, std::thread::id());
    EXPECT_NE(id, std::this_thread::get_id());
}

TEST_F(RenderThread, APassThatLeavesTheStopFlagSetCostsTheNextRender) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    int renders = 0;
    effect->onProcess = [&](auto...) { ++renders; };
    effect->setStopped(true);
    thread->setShaderParameters(effect, nullptr);
    effect->setStopped(false);
    EXPECT_EQ(render(*thread, effect), 0);
    EXPECT_EQ(renders, 0);
    EXPECT_EQ(render(*thread, effect), 1);
    EXPECT_EQ(renders, 1);
}

TEST_F(RenderThread, EndsByItselfAfterARenderThatLeavesTheStopFlagSet) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    effect->onProcess = [&](auto...) { effect->setStopped(true); };
    render(*thread, effect);  // comes back although nobody is left to serve
    EXPECT_FALSE(thread->isEngineInitialised());
    EXPECT_EQ(StubEngine::alive, 0);
    EXPECT_EQ(log.countExact("Delete all effect!"), 1);

    EXPECT_EQ(render(*thread, effect), 0);
    EXPECT_EQ(thread->createEffect("HookEffect"), nullptr);
    EXPECT_EQ(thread->loadPicture("picture.png"), nullptr);
    EXPECT_EQ(thread->removeEffect(nullptr, true), 0);
    EXPECT_EQ(thread->stop(), 1);
    EXPECT_EQ(thread->stop(), 0);
}

/// An effect that the engine lets nobody make.
class ImpossibleEffect : public HookEffect {
public:
    static constexpr const char* typeName = "class ImpossibleEffect";
    ImpossibleEffect() {
        OGRE_EXCEPT(Ogre::Exception::ERR_INTERNAL_ERROR, "in the constructor", "test");
    }
};

TEST_F(RenderThread, SurvivesAnExceptionInsideEveryCommand) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    DYN_CLASS::CFactory<ImpossibleEffect> impossible;
    const DYN_CLASS::CFactoryManager place(&impossible);
    EXPECT_EQ(thread->createEffect("ImpossibleEffect"), nullptr);
    EXPECT_TRUE(log.has("in the constructor"));
    effect->onProcess = [](auto...) {
        OGRE_EXCEPT(Ogre::Exception::ERR_INTERNAL_ERROR, "in process", "test");
    };
    effect->onReadResult = [](auto...) { throw std::runtime_error("in readResult"); };
    effect->onGetMaterial = []() -> Ogre::MaterialPtr { throw 7; };
    effect->onSetShaderParameters = [](auto...) { throw std::bad_alloc(); };
    _ImageParam image;
    _ResultRecord record{&image, effect};
    EXPECT_EQ(render(*thread, effect), 0);
    EXPECT_EQ(thread->readResult(&record, nullptr, 4), 0);
    EXPECT_EQ(thread->getMaterial(effect), 0);
    EXPECT_EQ(thread->setShaderParameters(effect, nullptr), 0);
    EXPECT_EQ(thread->loadPicture("no/such/picture.png"), nullptr);
    const unsigned char pixels[4] = {};
    EXPECT_EQ(thread->storePicture("no/such/folder/picture.png", pixels, 1, 1, Ogre::PF_A8R8G8B8),
              0);
    EXPECT_TRUE(log.has("in process"));
    EXPECT_TRUE(log.has("in readResult"));
    EXPECT_EQ(
        log.countExact("Could not store picture. Maybe something that you specified is wrong."), 1);

    effect->onProcess = nullptr;
    EXPECT_EQ(render(*thread, effect), 1);

    // The last three: remove, which ends in being idle, and stop. What is destroyed must not throw;
    // effects see to that themselves.
    StubEngine::idleThrows = true;
    thread->removeEffect(effect, false);
    StubEngine::idleThrows = false;
    EXPECT_TRUE(log.has("in idle"));
    EXPECT_EQ(render(*thread, effect), 0);  // it is gone all the same
    EXPECT_EQ(render(*thread, create(*thread)), 1);
    EXPECT_EQ(thread->stop(), 1);
}

/// Counts how often it is asked for an effect.
class CountingFactory : public DYN_CLASS::CAbstractFactory {
public:
    KelEffectBase* create(const char*) override {
        ++asked;
        return nullptr;
    }
    std::atomic<int> asked{0};
};

TEST_F(RenderThread, IsNotWokenForAnEffectWithoutAClassName) {
    CountingFactory factories;
    const DYN_CLASS::CFactoryManager place(&factories);
    const auto thread = start();
    EXPECT_EQ(thread->createEffect(nullptr), nullptr);
    EXPECT_EQ(factories.asked, 0);
    EXPECT_EQ(thread->createEffect("NoSuchEffect"), nullptr);
    EXPECT_EQ(factories.asked, 1);
}

TEST_F(RenderThread, HandsRecordsAndParametersOn) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    _ImageParam image;
    _ResultRecord record{&image, effect};
    unsigned char pixel = 0;
    int calls = 0;
    effect->onReadResult = [&](_ImageParam* result, unsigned char* input, std::uint32_t bytes) {
        EXPECT_EQ(result, &image);
        EXPECT_EQ(input, &pixel);
        EXPECT_EQ(bytes, 1u);
        ++calls;
    };
    effect->onSetShaderParameters = [&](const void* parameters) {
        EXPECT_EQ(parameters, &pixel);
        ++calls;
    };
    EXPECT_EQ(thread->readResult(&record, &pixel, 1), 1);
    EXPECT_EQ(thread->setShaderParameters(effect, &pixel), 1);
    EXPECT_EQ(calls, 2);
}

TEST_F(RenderThread, SaysWhatIsMissing) {
    const auto thread = start();
    _ResultRecord record;
    EXPECT_EQ(render(*thread, nullptr), 0);
    EXPECT_EQ(thread->getMaterial(nullptr), 0);
    EXPECT_EQ(thread->readResult(nullptr, nullptr, 4), 0);
    EXPECT_EQ(thread->readResult(&record, nullptr, 4), 0);
    EXPECT_EQ(log.countExact("Error: This effect is NULL!"), 4);
    EXPECT_EQ(thread->setShaderParameters(nullptr, nullptr), 0);
    EXPECT_EQ(log.countExact("Filter is NULL!"), 1);
    thread->stop();
    EXPECT_EQ(render(*thread, nullptr), 0);
    EXPECT_EQ(log.countExact("Ogre Thread is null!"), 1);
}

TEST_F(RenderThread, RemovesOneEffectOrAll) {
    const auto thread = start();
    HookEffect* const first = create(*thread);
    HookEffect* const second = create(*thread);
    const int idles = StubEngine::idles;
    EXPECT_EQ(thread->removeEffect(first, false), 1);
    EXPECT_EQ(thread->removeEffect(first, false), 0);
    EXPECT_EQ(log.countExact("Error: has no this effect!"), 1);
    EXPECT_EQ(render(*thread, second), 1);
    EXPECT_EQ(thread->removeEffect(nullptr, true), 1);
    EXPECT_EQ(thread->removeEffect(nullptr, true), 0);
    // An effect that is gone is not run, whatever it points to.
    EXPECT_EQ(render(*thread, second), 0);
    EXPECT_EQ(log.countExact("Error: has no this effect!"), 2);
    // A removal leaves the thread idle.
    EXPECT_EQ(StubEngine::idles, idles + 4);
    EXPECT_EQ(log.countExact("Thread is idle!"), 4);
}

TEST_F(RenderThread, TellsSlowRendersFromFastOnes) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    effect->onProcess = [](auto...) { std::this_thread::sleep_for(std::chrono::milliseconds(4)); };
    const auto judge = [&](std::uint32_t evaluateMilliseconds, bool before) {
        bool slow = before;
        for (int i = 0; i < 11; ++i) {
            EXPECT_EQ(slow, before) << i;
            thread->render(effect, nullptr, nullptr, 4, &slow, evaluateMilliseconds);
        }
        return slow;
    };
    EXPECT_TRUE(judge(2, false));
    EXPECT_FALSE(judge(10000, true));
}

TEST_F(RenderThread, NoTimeAtAllIsTooLittle) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    bool slow = false;
    EXPECT_EQ(thread->render(effect, nullptr, nullptr, 4, &slow, 0), 1);
    EXPECT_TRUE(slow);
    EXPECT_EQ(log.countExact("Evaluate time is low 0, it couldn't be completed work in this time."),
              1);
}

TEST_F(RenderThread, ServesManyHostThreadsOneAtATime) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    std::atomic<int> inside{0};
    int renders = 0;  // guarded by the thread's own order
    effect->onProcess = [&](auto...) {
        EXPECT_EQ(++inside, 1);
        ++renders;
        --inside;
    };
    std::vector<std::thread> hosts;
    for (int i = 0; i < 4; ++i) {
        hosts.emplace_back([&] {
            for (int j = 0; j < 200; ++j) EXPECT_EQ(render(*thread, effect), 1);
        });
    }
    for (std::thread& host : hosts) host.join();
    EXPECT_EQ(renders, 800);
}

TEST_F(RenderThread, CanBeStoppedWhileHostsAsk) {
    const auto thread = start();
    HookEffect* const effect = create(*thread);
    std::atomic<bool> stopped{false};
    std::vector<std::thread> hosts;
    for (int i = 0; i < 3; ++i) {
        hosts.emplace_back([&] {
            while (!stopped) render(*thread, effect);
            EXPECT_EQ(render(*thread, effect), 0);
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(thread->stop(), 1);
    stopped = true;
    for (std::thread& host : hosts) host.join();
}

TEST_F(RenderThread, StartsAndStopsAsOftenAsAsked) {
    for (int i = 0; i < 50; ++i) {
        const auto thread = start();
        EXPECT_EQ(render(*thread, create(*thread)), 1);
    }
}

}  // namespace
