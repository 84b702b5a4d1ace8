// Adjustments that tell how far they are, can be cancelled and take records of other versions, on
// the CPU path.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <vector>

#include "filters/Stages.h"
#include "support/EveryStage.h"
#include "support/HostPicture.h"
#include "support/RunsOnThreads.h"
#include "support/StageSettings.h"

namespace {

using keladjust::test::everyFormat;
using keladjust::test::everyStage;
using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::PixelFormat;
using keladjust::test::stageAlone;

HostPicture randomPicture(unsigned width, unsigned height) {
    HostPicture picture(width, height, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(17);
    return picture;
}

/// What a host wants, with notes of what it is told.
struct Notes {
    std::vector<float> shares;
    std::size_t cancelAt = ~std::size_t{0};  ///< the question to which the answer is to stop
    std::thread::id thread = std::this_thread::get_id();
    bool onCallingThread = true;

    static std::int32_t note(void* user, float share) {
        Notes& notes = *static_cast<Notes*>(user);
        notes.shares.push_back(share);
        notes.onCallingThread = notes.onCallingThread && std::this_thread::get_id() == notes.thread;
        return notes.shares.size() > notes.cancelAt ? 1 : 0;
    }
    KeladjustRun run() {
        KeladjustRun wishes{};
        wishes.size = sizeof wishes;
        wishes.progress = note;
        wishes.user = this;
        return wishes;
    }
};

TEST(Run, DoesWhatDoAdjustDoes) {
    const _AdjustParam record = everyStage().settings;
    for (const PixelFormat format : everyFormat) {
        HostPicture picture(61, 43, format.bpp, format.format);
        picture.fillRandom(5);
        HostPicture expected(picture);
        doAdjust(expected.image(), record);
        for (const int path : {KELADJUST_AUTO, KELADJUST_CPU}) {
            for (const int threads : {0, 1, 3}) {
                HostPicture copy(picture);
                KeladjustRun wishes{};
                wishes.size = sizeof wishes;
                wishes.path = path;
                wishes.maxThreads = threads;
                EXPECT_EQ(keladjustRun(copy.image(), &record, sizeof record, &wishes),
                          KELADJUST_DONE);
                EXPECT_EQ(wishes.pathTaken, KELADJUST_CPU);
                EXPECT_TRUE(copy.bytes() == expected.bytes());
                EXPECT_TRUE(copy.guardsIntact());
            }
        }
        HostPicture copy(picture);
        EXPECT_EQ(keladjustRun(copy.image(), &record, sizeof record, nullptr), KELADJUST_DONE);
        EXPECT_TRUE(copy.bytes() == expected.bytes());
    }
}

TEST(Run, TellsWhyNotTheGpu) {
    releaseOgre();
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture(31, 17);
    const auto before = picture.bytes();
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    wishes.path = KELADJUST_GPU;
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_REFUSED);
    EXPECT_STRNE(wishes.reason, "");
    EXPECT_EQ(wishes.pathTaken, KELADJUST_AUTO);
    EXPECT_EQ(picture.bytes(), before);

    wishes.path = KELADJUST_AUTO;
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
    EXPECT_STRNE(wishes.reason, "");
    EXPECT_EQ(wishes.pathTaken, KELADJUST_CPU);
    EXPECT_NE(picture.bytes(), before);

    wishes.path = KELADJUST_CPU;
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
    EXPECT_STREQ(wishes.reason, "");
}

TEST(Run, RefusesWhatIsNotThere) {
    HostPicture picture = randomPicture(31, 17);
    const auto before = picture.bytes();
    const _AdjustParam record = everyStage().settings;
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    EXPECT_EQ(keladjustRun(nullptr, &record, sizeof record, &wishes), KELADJUST_REFUSED);
    EXPECT_STRNE(wishes.reason, "");
    EXPECT_EQ(keladjustRun(picture.image(), nullptr, sizeof record, &wishes), KELADJUST_REFUSED);
    EXPECT_STRNE(wishes.reason, "");
    for (const int path : {-1, 3, 1000}) {
        wishes.path = path;
        EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes),
                  KELADJUST_REFUSED);
        EXPECT_STRNE(wishes.reason, "");
    }
    EXPECT_EQ(picture.bytes(), before);
}

TEST(Run, TakesPicturesWithoutPixels) {
    CxImage empty;
    const _AdjustParam record = everyStage().settings;
    EXPECT_EQ(keladjustRun(&empty, &record, sizeof record, nullptr), KELADJUST_DONE);
}

TEST(Run, TakesRecordsOfOlderHosts) {
    const _AdjustParam record = everyStage().settings;
    for (std::size_t bytes = 0; bytes <= sizeof record; ++bytes) {
        HostPicture picture = randomPicture(9, 9);
        HostPicture expected(picture);
        _AdjustParam known = identity;
        std::memcpy(&known, &record, bytes / 4 * 4);
        doAdjust(expected.image(), known);
        // Exactly as many bytes as are said to be there.
        std::vector<unsigned char> given(bytes);
        if (bytes > 0) std::memcpy(given.data(), &record, bytes);
        unsigned char none = 0;
        const void* const first = bytes > 0 ? given.data() : &none;
        EXPECT_EQ(
            keladjustRun(picture.image(), static_cast<const _AdjustParam*>(first), bytes, nullptr),
            KELADJUST_DONE);
        EXPECT_TRUE(picture.bytes() == expected.bytes()) << bytes;
    }
}

TEST(Run, TakesRecordsOfNewerHostsThatAskForNothingNew) {
    std::array<_AdjustParam, 2> record{everyStage().settings, _AdjustParam{}};
    HostPicture picture = randomPicture(9, 9);
    HostPicture expected(picture);
    doAdjust(expected.image(), record[0]);
    EXPECT_EQ(keladjustRun(picture.image(), record.data(), sizeof record, nullptr), KELADJUST_DONE);
    EXPECT_TRUE(picture.bytes() == expected.bytes());

    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    for (const std::size_t behind : {1u, 4u, 260u}) {
        record[1] = {};
        reinterpret_cast<unsigned char*>(&record[1])[behind - 1] = 1;
        EXPECT_EQ(keladjustRun(picture.image(), record.data(), sizeof record[0] + behind, &wishes),
                  KELADJUST_REFUSED);
        EXPECT_STRNE(wishes.reason, "");
        EXPECT_TRUE(picture.bytes() == expected.bytes());
        // Not looked at if it is not said to be there.
        EXPECT_EQ(
            keladjustRun(picture.image(), record.data(), sizeof record[0] + behind - 1, &wishes),
            KELADJUST_DONE);
        doAdjust(expected.image(), record[0]);
    }
}

TEST(Run, ReadsAndWritesNoMoreOfTheHostsStructureThanItSays) {
    const _AdjustParam record = everyStage().settings;
    for (std::size_t size = 0; size <= 2 * sizeof(KeladjustRun); ++size) {
        // What lies behind would be refused, called or jumped to if it were read.
        alignas(KeladjustRun) std::array<unsigned char, 2 * sizeof(KeladjustRun)> memory;
        memory.fill(0xEE);
        KeladjustRun wishes{};
        wishes.size = static_cast<std::uint32_t>(size);
        wishes.path = KELADJUST_CPU;
        std::memcpy(memory.data(), &wishes, std::clamp(size, sizeof wishes.size, sizeof wishes));
        const auto before = memory;
        HostPicture picture = randomPicture(5, 5);
        EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record,
                               reinterpret_cast<KeladjustRun*>(memory.data())),
                  KELADJUST_DONE)
            << size;
        const std::size_t known = std::min(size, sizeof(KeladjustRun));
        EXPECT_TRUE(std::equal(memory.begin() + static_cast<std::ptrdiff_t>(known), memory.end(),
                               before.begin() + static_cast<std::ptrdiff_t>(known)))
            << size;
        if (size < sizeof(KeladjustRun)) continue;
        KeladjustRun told;
        std::memcpy(&told, memory.data(), sizeof told);
        EXPECT_EQ(told.pathTaken, KELADJUST_CPU);
        EXPECT_STREQ(told.reason, "");
    }
}

TEST(Run, TellsAShareThatGrowsFromNothingToAll) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture(301, 203);
    Notes notes;
    KeladjustRun wishes = notes.run();
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
    ASSERT_GE(notes.shares.size(), 2u);
    EXPECT_EQ(notes.shares.front(), 0.0f);
    EXPECT_EQ(notes.shares.back(), 1.0f);
    EXPECT_TRUE(std::is_sorted(notes.shares.begin(), notes.shares.end()));
    EXPECT_TRUE(notes.onCallingThread);
}

TEST(Run, AsTheFirstQuestionIsAnsweredLeavesThePictureAlone) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture(61, 43);
    const auto before = picture.bytes();
    Notes notes;
    notes.cancelAt = 0;
    KeladjustRun wishes = notes.run();
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_CANCELLED);
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_EQ(notes.shares.size(), 1u);
}

// At whatever question it is cancelled, it asks no more, and the next call knows nothing of it.
TEST(Run, CancelledAnywhereLeavesTheNextCallRight) {
    HostPicture original = randomPicture(301, 203);
    for (const keladjust::Stage& stage : keladjust::stages) {
        const _AdjustParam record = stageAlone(stage);
        HostPicture expected(original);
        stage.run(expected.image(), record);
        for (const std::size_t cancelAt : {1u, 2u, 5u, 20u}) {
            HostPicture picture(original);
            Notes notes;
            notes.cancelAt = cancelAt;
            KeladjustRun wishes = notes.run();
            const KeladjustResult result =
                keladjustRun(picture.image(), &record, sizeof record, &wishes);
            // How often it asks depends on how long it takes: it may be done before.
            EXPECT_LE(notes.shares.size(), cancelAt + 1);
            const bool asked = notes.shares.size() == cancelAt + 1 && notes.shares.back() < 1.0f;
            EXPECT_EQ(result, asked ? KELADJUST_CANCELLED : KELADJUST_DONE) << stage.name.c_str();
            EXPECT_TRUE(picture.guardsIntact());
            if (result == KELADJUST_CANCELLED) continue;
            EXPECT_TRUE(picture.bytes() == expected.bytes()) << stage.name.c_str();
            break;
        }
        HostPicture picture(original);
        EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, nullptr), KELADJUST_DONE);
        EXPECT_TRUE(picture.bytes() == expected.bytes()) << stage.name.c_str();
    }
}

std::int32_t throwing(void*, float) {
    throw std::runtime_error("a host's own");
}

TEST(Run, CancelsWhereTheHostThrows) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture(61, 43);
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    wishes.progress = throwing;
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_CANCELLED);
}

struct Inner {
    HostPicture* picture;
    const _AdjustParam* record;
    int calls = 0;
};

std::int32_t adjustAnother(void* user, float) {
    Inner& inner = *static_cast<Inner*>(user);
    if (inner.calls++ > 0) return 0;
    exposureAdjustment(inner.picture->image(), 10);
    return keladjustRun(inner.picture->image(), inner.record, sizeof *inner.record, nullptr) ==
                   KELADJUST_DONE
               ? 0
               : 1;
}

TEST(Run, LetsTheHostAdjustAnotherPictureMeanwhile) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture(61, 43);
    HostPicture other(picture);
    HostPicture expected(picture);
    HostPicture expectedOther(picture);
    doAdjust(expected.image(), record);
    exposureAdjustment(expectedOther.image(), 10);
    doAdjust(expectedOther.image(), record);
    Inner inner{&other, &record};
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    wishes.progress = adjustAnother;
    wishes.user = &inner;
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
    EXPECT_TRUE(picture.bytes() == expected.bytes());
    EXPECT_TRUE(other.bytes() == expectedOther.bytes());
}

// While another thread starts and stops what there is of the engine and changes the thread limit.
TEST(RunOnThreads, GivesWhatALoneCallGives) {
    keladjust::test::RunsOnThreads runs;
    runs.during([] {
        for (int i = 0; i < 20; ++i) {
            initOgreRunTime("/nowhere/", "/nowhere/");
            setMaxThreads(i % 5);
            releaseOgre();
        }
    });
    setMaxThreads(0);
}

TEST(RunOnThreads, StagesGiveWhatALoneCallGives) {
    HostPicture original = randomPicture(131, 97);
    std::vector<std::vector<std::uint8_t>> expected;
    for (const keladjust::Stage& stage : keladjust::stages) {
        HostPicture alone(original);
        stage.run(alone.image(), stageAlone(stage));
        expected.push_back(alone.bytes());
    }
    std::array<std::thread, 8> threads;
    for (std::size_t t = 0; t < threads.size(); ++t) {
        threads[t] = std::thread([&, t] {
            for (std::size_t i = 0; i < expected.size(); ++i) {
                const std::size_t which = (i + 3 * t) % expected.size();
                const keladjust::Stage& stage = keladjust::stages[which];
                HostPicture picture(original);
                stage.run(picture.image(), stageAlone(stage));
                EXPECT_TRUE(picture.bytes() == expected[which]) << stage.name.c_str();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
