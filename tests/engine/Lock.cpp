#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "engine/MyCSingleLock.h"
#include "platform/CriticalSection.h"

namespace {

class SingleLock : public testing::Test {
protected:
    SingleLock() { keladjust::platform::initializeCriticalSection(&section); }
    ~SingleLock() override { keladjust::platform::deleteCriticalSection(&section); }

    keladjust::platform::CriticalSection section;
};

TEST_F(SingleLock, KeepsOtherThreadsOut) {
    int counter = 0;
    std::thread threads[4];
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int i = 0; i < 10000; ++i) {
                MyCSingleLock lock(&section);
                ++counter;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 40000);
}

TEST_F(SingleLock, LetsItsOwnThreadInAgain) {
    MyCSingleLock outer(&section);
    MyCSingleLock inner(&section);
    EXPECT_TRUE(inner.isLocked());
}

TEST_F(SingleLock, LeavesOnce) {
    MyCSingleLock outer(&section);
    {
        MyCSingleLock inner(&section);
        inner.unlock();
        EXPECT_FALSE(inner.isLocked());
        inner.unlock();
    }
    // Still held: had the inner lock left twice, another thread would get in.
    std::atomic<bool> entered{false};
    std::thread other([&] {
        MyCSingleLock lock(&section);
        entered = true;
    });
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_FALSE(entered);
    outer.unlock();
    other.join();
    EXPECT_TRUE(entered);
}

}  // namespace
