// The order in which the library lets go of what it holds. A process of its own, because it
// replaces what frees memory, to see when that is.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "host/LibraryState.h"
#include "lut/LibraryLut.h"
#include "support/StageSettings.h"

namespace {

/// Memory that is looked for, and what is done when it is freed.
const void* lookedFor = nullptr;
void (*onFreed)() = nullptr;

void release(void* memory) {
    if (memory != nullptr && memory == lookedFor) {
        lookedFor = nullptr;
        onFreed();
    }
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

namespace {

using keladjust::EngineModule;
using keladjust::libraryState;
using keladjust::platform::Event;

std::vector<std::string> steps;

/// What of the library is still there when a step is taken.
void noteStep(const std::string& step) {
    const bool busyEvent = libraryState().busyEvent() != nullptr;
    const bool engine = libraryState().gpu.file.module != nullptr;
    steps.push_back(step + (busyEvent ? ", busy event open" : ", busy event closed") +
                    (engine ? ", engine there" : ", engine gone"));
}

/// An engine that runs until it is stopped.
class NotingEngine final : public EngineModule {
public:
    bool start(const keladjust::EngineStart&, keladjust::EngineReason&) noexcept override {
        return running = true;
    }
    void stop() noexcept override {
        if (running) noteStep("engine stopped");
        running = false;
    }
    bool isRunning() const noexcept override { return running; }
    bool hasEffect(std::uint32_t) const noexcept override { return running; }
    bool readDriver(keladjust::EngineDriver&) const noexcept override { return false; }
    bool render(const keladjust::EngineRender&, keladjust::EngineReason&) noexcept override {
        return false;
    }
    bool loadPicture(const char*, keladjust::EnginePictureTaker&) noexcept override {
        return false;
    }
    void log(const char*) noexcept override {}

    bool running = true;
};

TEST(ReleaseOrder, IsTableThenBusyEventThenEngine) {
    NotingEngine engine;
    libraryState().gpu.file.module = &engine;
    auto busy = std::make_shared<Event>();
    busy->signal();
    libraryState().setBusyEvent(busy);
    keladjust::buildLibraryLut();
    lookedFor = getLut3dData(keladjust::test::identity);
    ASSERT_NE(lookedFor, nullptr);
    onFreed = [] { noteStep("table freed"); };

    releaseOgre();
    EXPECT_EQ(steps, (std::vector<std::string>{"table freed, busy event open, engine there",
                                               "engine stopped, busy event closed, engine there"}));
    EXPECT_EQ(libraryState().gpu.file.module, nullptr);

    // There is nothing left to let go of.
    releaseOgre();
    EXPECT_EQ(steps.size(), 2u);
}

}  // namespace
