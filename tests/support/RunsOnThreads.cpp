#include "support/RunsOnThreads.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <thread>

#include "filters/Stages.h"
#include "support/EveryStage.h"
#include "support/StageSettings.h"

namespace keladjust::test {

namespace {

constexpr std::uint32_t tableSize = 9;

std::vector<float> tableOf(const _AdjustParam& record) {
    std::vector<float> points(3 * tableSize * tableSize * tableSize);
    EXPECT_TRUE(keladjustBake(&record, sizeof record, tableSize, true, points.data()));
    return points;
}

KeladjustRun wishesFor(std::int32_t path) {
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    wishes.path = path;
    return wishes;
}

std::int32_t stopHalfWay(void*, float share) {
    return share > 0.0f ? 1 : 0;
}

}  // namespace

RunsOnThreads::RunsOnThreads() {
    std::vector<_AdjustParam> records;
    for (const Stage& stage : stages) records.push_back(stageAlone(stage));
    records.push_back(everyStage().settings);
    for (const _AdjustParam& record : records) {
        HostPicture picture(131, 97, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(static_cast<std::uint32_t>(cases_.size()));
        HostPicture onCpu(picture);
        KeladjustRun wishes = wishesFor(KELADJUST_CPU);
        EXPECT_EQ(keladjustRun(onCpu.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
        HostPicture onGpu(picture);
        wishes = wishesFor(KELADJUST_AUTO);
        EXPECT_EQ(keladjustRun(onGpu.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
        const bool isOnGpu = wishes.pathTaken == KELADJUST_GPU;
        cases_.push_back({record, picture, onCpu.bytes(),
                          isOnGpu ? onGpu.bytes() : std::vector<std::uint8_t>{}, tableOf(record)});
    }
}

void RunsOnThreads::during(const std::function<void()>& work) const {
    std::array<std::thread, 8> threads;
    for (std::size_t t = 0; t < threads.size(); ++t) {
        threads[t] = std::thread([this, t] {
            for (std::size_t i = 0; i < cases_.size(); ++i) {
                const Case& each = cases_[(i + 5 * t) % cases_.size()];
                adjust(each, t % 2 == 0 ? KELADJUST_AUTO : KELADJUST_CPU,
                       static_cast<std::int32_t>(t % 4));
            }
        });
    }
    work();
    for (std::thread& thread : threads) thread.join();
}

void RunsOnThreads::adjust(const Case& each, std::int32_t path, std::int32_t maxThreads) {
    HostPicture picture(each.picture);
    KeladjustRun wishes = wishesFor(path);
    wishes.maxThreads = maxThreads;
    EXPECT_EQ(keladjustRun(picture.image(), &each.record, sizeof each.record, &wishes),
              KELADJUST_DONE);
    const bool onGpu = path != KELADJUST_CPU && wishes.pathTaken == KELADJUST_GPU;
    EXPECT_TRUE(picture.bytes() == (onGpu ? each.onGpu : each.onCpu));
    EXPECT_TRUE(tableOf(each.record) == each.table);
    // Cancelling one is nothing to the others.
    HostPicture cancelled(each.picture);
    wishes.progress = stopHalfWay;
    keladjustRun(cancelled.image(), &each.record, sizeof each.record, &wishes);
}

}  // namespace keladjust::test
