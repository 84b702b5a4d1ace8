// Adjusting and encoding a picture while it is still being decoded gives what one after the other
// gives, for whatever may be done so.

#include "commands/OverlappedEncoding.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

#include "settings/Record.h"
#include "support/Pictures.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

_AdjustParam recordWith(const char* name, double value) {
    _AdjustParam record = usualRecord();
    setValue(record, *findSetting(name), value);
    return record;
}

// More rows than are adjusted at a time, and not a multiple of those that are told at a time.
Photo wide() {
    return noise(8192, 131, ChannelLayout::bgra);
}

class OverlappedEncodingTest : public testing::Test {
protected:
    // Decodes `file` with somebody following; the encoding is over when this returns.
    Photo follow(const Bytes& file) {
        overlapped.emplace(jpegCodec(), options, adjuster, record,
                           [this](const Photo&) { return accepts; });
        return jpegCodec().decode(file, {}, &*overlapped);
    }

    EncodeOptions options;
    Adjuster adjuster{GpuUse::never};
    _AdjustParam record = recordWith("exposure", 20);
    bool accepts = true;
    std::optional<OverlappedEncoding> overlapped;
};

TEST_F(OverlappedEncodingTest, GivesWhatOneAfterTheOtherGives) {
    for (const int quality : {75, 95}) {
        options.quality = quality;
        const Bytes file = jpegCodec().encode(wide(), options);
        Photo expected = jpegCodec().decode(file);
        adjuster.adjust(expected, record);

        const Photo adjusted = follow(file);
        ASSERT_TRUE(overlapped->isDone());
        expectSamePixels(adjusted, expected);
        EXPECT_EQ(overlapped->takeResult(), jpegCodec().encode(expected, options));
    }
}

TEST_F(OverlappedEncodingTest, EncodesAsAnyOtherFormat) {
    const Bytes file = jpegCodec().encode(wide(), options);
    Photo expected = jpegCodec().decode(file);
    adjuster.adjust(expected, record);
    overlapped.emplace(pngCodec(), options, adjuster, record, [](const Photo&) { return true; });
    jpegCodec().decode(file, {}, &*overlapped);
    expectSamePixels(pngCodec().decode(overlapped->takeResult()), expected);
}

TEST_F(OverlappedEncodingTest, LeavesAPictureThatIsNotAccepted) {
    accepts = false;
    const Bytes file = jpegCodec().encode(wide(), options);
    expectSamePixels(follow(file), jpegCodec().decode(file));
    EXPECT_FALSE(overlapped->isDone());
}

TEST_F(OverlappedEncodingTest, LeavesGreyPictures) {
    const Bytes file = jpegCodec().encode(noise(64, 64, ChannelLayout::grey), options);
    expectSamePixels(follow(file), jpegCodec().decode(file));
    EXPECT_FALSE(overlapped->isDone());
}

TEST_F(OverlappedEncodingTest, LeavesRecordsThatLookBeyondAPixel) {
    record = recordWith("clarity", 20);
    const Bytes file = jpegCodec().encode(wide(), options);
    expectSamePixels(follow(file), jpegCodec().decode(file));
    EXPECT_FALSE(overlapped->isDone());
}

// Rows have been handed on by then; nobody waits for the others, or looks at those any more.
TEST_F(OverlappedEncodingTest, EndsWithADamagedPicture) {
    Bytes file = jpegCodec().encode(wide(), options);
    file.resize(file.size() / 2);
    EXPECT_THROW(follow(file), Failure);
    EXPECT_THROW(overlapped->takeResult(), NoMoreRows);
}

TEST_F(OverlappedEncodingTest, PassesOnThatItWasToStop) {
    Adjuster stopped(GpuUse::never, 0, [] { return true; });
    const Bytes file = jpegCodec().encode(wide(), options);
    overlapped.emplace(jpegCodec(), options, stopped, record, [](const Photo&) { return true; });
    jpegCodec().decode(file, {}, &*overlapped);
    EXPECT_TRUE(overlapped->isDone());
    EXPECT_THROW(overlapped->takeResult(), Cancelled);
}

// Each setting by itself, far from where it does nothing: those that may are the same in rows, and
// all others are kept from it.
TEST(AdjusterRows, AreThoseOfTheWholePicture) {
    Adjuster adjuster(GpuUse::never);
    const Photo before = noise(97, 60, ChannelLayout::bgra);
    std::set<std::string> kept;
    for (const KeladjustSetting& setting : allSettings()) {
        for (const double value : {static_cast<double>(setting.lowest), setting.highest * 0.75}) {
            _AdjustParam record = usualRecord();
            for (const KeladjustSetting& other : allSettings()) {
                // So that bounds of a band do something.
                if (std::string(other.name).ends_with("-saturation")) setValue(record, other, 40);
            }
            setValue(record, setting, value);
            if (!adjuster.takesRows(before, record)) {
                kept.insert(setting.group);
                continue;
            }
            Photo whole = before;
            Photo rows = before;
            adjuster.adjust(whole, record);
            for (const std::uint32_t first : {0u, 16u, 17u}) {
                const std::uint32_t end = first == 0 ? 16 : first == 16 ? 17 : 60;
                adjuster.adjustRows(rows, first, end - first, record);
            }
            expectSamePixels(rows, whole);
            EXPECT_FALSE(HasFailure()) << setting.name;
        }
    }
    const std::set<std::string> expected = {"Vignette", "Presence and detail", "Lens and effects",
                                            "Noise"};
    EXPECT_EQ(kept, expected);
}

TEST(AdjusterRows, AreNeitherForAnEngineNorForOneThread) {
    const Photo photo = noise(8, 8, ChannelLayout::bgra);
    EXPECT_FALSE(Adjuster(GpuUse::never, 1).takesRows(photo, usualRecord()));
    EXPECT_FALSE(Adjuster(GpuUse::whenPossible).takesRows(photo, usualRecord()));
    EXPECT_TRUE(Adjuster(GpuUse::never).takesRows(photo, usualRecord()));
}

}  // namespace
