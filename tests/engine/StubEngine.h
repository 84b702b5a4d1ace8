#ifndef KELADJUST_TESTS_ENGINE_STUBENGINE_H
#define KELADJUST_TESTS_ENGINE_STUBENGINE_H

#include <OgreArchiveManager.h>
#include <OgreException.h>
#include <OgreResourceGroupManager.h>

#include <atomic>
#include <memory>

#include "engine/KelOgreBase.h"

namespace keladjust::test {

/// Stands in for the engine where only the render thread is looked at: it comes up without a
/// display and counts what it is asked.
class StubEngine : public KelOgreBase {
public:
    enum class Start { succeeds, fails, throws };

    inline static std::atomic<Start> nextStart{Start::succeeds};
    inline static std::atomic<int> setups{0};
    inline static std::atomic<bool> idleThrows{false};
    inline static std::atomic<int> idles{0};
    inline static std::atomic<int> alive{0};

    static std::unique_ptr<KelOgreBase> make(const KelOgreBase::Start& start) {
        return std::make_unique<StubEngine>(start);
    }

    explicit StubEngine(const KelOgreBase::Start& start) : KelOgreBase(start) { ++alive; }
    ~StubEngine() override { --alive; }

    bool setup(unsigned, unsigned) override {
        ++setups;
        if (nextStart == Start::throws) throw 7;
        return nextStart == Start::succeeds;
    }
    void idle() override {
        ++idles;
        if (idleThrows) OGRE_EXCEPT(Ogre::Exception::ERR_INTERNAL_ERROR, "in idle", "test");
    }

private:
    // Looked into by the commands for picture files, which find nothing there.
    Ogre::ArchiveManager archives_;
    Ogre::ResourceGroupManager resources_;
};

}  // namespace keladjust::test

#endif
