#include "platform/Event.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using keladjust::platform::Event;

TEST(Event, LetsOneThroughPerSignal) {
    Event event;
    std::atomic<int> through{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&] {
            event.wait();
            // Alone here until the next signal, so nobody else can count at the same time.
            const int before = through;
            std::this_thread::yield();
            through = before + 1;
            event.signal();
        });
    }
    EXPECT_EQ(through, 0);
    event.signal();
    for (std::thread& waiter : waiters) waiter.join();
    EXPECT_EQ(through, 3);
}

TEST(Event, RemembersASignalUntilSomebodyWaits) {
    Event event;
    event.signal();
    event.signal();
    event.wait();  // returns at once; the second signal found it set already
    std::atomic<bool> second{false};
    std::thread waiter([&] {
        event.wait();
        second = true;
    });
    EXPECT_FALSE(second);
    event.signal();
    waiter.join();
    EXPECT_TRUE(second);
}

}  // namespace
