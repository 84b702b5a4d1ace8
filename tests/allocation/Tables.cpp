// Colour tables and their file, short of each allocation: baked wholly, or as they were.

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "allocation/Allocations.h"
#include "lut/LibraryLut.h"
#include "support/EveryStage.h"
#include "support/TemporaryFolder.h"

namespace {

using keladjust::test::everyStage;
using keladjust::test::Struck;
using keladjust::test::TemporaryFolder;
using keladjust::test::withEveryFault;
using Floats = std::vector<float>;

constexpr std::size_t tableFloats = std::size_t{3} * 32 * 32 * 32;

TEST(TablesShortOfMemory, AreBakedWhollyOrNot) {
    const _AdjustParam record = everyStage().settings;
    constexpr int edge = 17;
    constexpr std::size_t count = std::size_t{3} * edge * edge * edge;
    for (const bool redFastest : {true, false}) {
        Floats expected(count);
        ASSERT_TRUE(keladjustBake(&record, sizeof record, edge, redFastest, expected.data()));
        struct Call {
            void call() {
                baked = keladjustBake(&record, sizeof record, edge, redFastest, points.data());
            }
            void check(Struck struck) const {
                EXPECT_TRUE(baked || struck);
                EXPECT_EQ(points, baked ? expected : Floats(count, -7.0f));
            }
            const _AdjustParam& record;
            bool redFastest;
            const Floats& expected;
            Floats points = Floats(count, -7.0f);
            bool baked = false;
        };
        withEveryFault("keladjustBake", [&] { return Call{record, redFastest, expected}; });
    }
}

/// The library's own table, which is gone at the end.
struct LibraryTable {
    LibraryTable() = default;
    LibraryTable(const LibraryTable&) = delete;
    LibraryTable& operator=(const LibraryTable&) = delete;
    ~LibraryTable() { keladjust::destroyLibraryLut(); }
};

TEST(TablesShortOfMemory, OfTheLibraryAreThereOrNot) {
    const _AdjustParam record = everyStage().settings;
    Floats expected;
    {
        const LibraryTable table;
        keladjust::buildLibraryLut();
        const float* const baked = getLut3dData(record);
        ASSERT_NE(baked, nullptr);
        expected.assign(baked, baked + tableFloats);
    }
    // Made under the shortage, too.
    struct Made : LibraryTable {
        Made(const _AdjustParam& settings, const Floats& floats)
            : record(settings), expected(floats) {}
        void call() {
            keladjust::buildLibraryLut();
            baked = getLut3dData(record);
        }
        void check(Struck struck) const {
            EXPECT_TRUE(baked != nullptr || struck);
            if (baked != nullptr) {
                EXPECT_TRUE(std::equal(expected.begin(), expected.end(), baked));
            }
        }
        const _AdjustParam& record;
        const Floats& expected;
        const float* baked = nullptr;
    };
    withEveryFault("getLut3dData", [&] { return Made(record, expected); });
    struct MadeBefore : Made {
        MadeBefore(const _AdjustParam& settings, const Floats& floats) : Made(settings, floats) {
            keladjust::buildLibraryLut();
        }
    };
    withEveryFault("getLut3dData of a table", [&] { return MadeBefore(record, expected); });
}

std::string contentsOf(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(TablesShortOfMemory, AreWrittenWhollyOrNot) {
    const TemporaryFolder folder;
    const std::string path = (folder / "table.cube").string();
    const _AdjustParam record = everyStage().settings;
    const LibraryTable table;
    keladjust::buildLibraryLut();
    ASSERT_TRUE(writeLut3DFile(record, path.c_str()));
    const std::string expected = contentsOf(path);
    struct Call {
        void call() { written = writeLut3DFile(record, path.c_str()); }
        void check(Struck struck) const {
            EXPECT_TRUE(written || struck);
            if (written) {
                EXPECT_TRUE(contentsOf(path) == expected);
            }
        }
        const _AdjustParam& record;
        const std::string& path;
        const std::string& expected;
        bool written = false;
    };
    withEveryFault("writeLut3DFile", [&] { return Call{record, path, expected}; });
}

TEST(TablesShortOfMemory, GoThroughAStageWhollyOrNot) {
    using Change = std::function<void(float*, unsigned long)>;
    const std::pair<const char*, Change> changes[] = {
        {"lut3d_temperatureAdjustment",
         [](float* lut, unsigned long n) { lut3d_temperatureAdjustment(lut, n, 3, 12500); }},
        {"lut3d_tintAdjustment",
         [](float* lut, unsigned long n) { lut3d_tintAdjustment(lut, n, 3, 30); }},
        {"lut3d_exposureAdjustment",
         [](float* lut, unsigned long n) { lut3d_exposureAdjustment(lut, n, 3, 30); }},
        {"lut3d_brightnessAdjustment",
         [](float* lut, unsigned long n) { lut3d_brightnessAdjustment(lut, n, 3, 30); }},
        {"lut3d_contrastAdjustment",
         [](float* lut, unsigned long n) { lut3d_contrastAdjustment(lut, n, 3, 30); }},
        {"lut3d_vibranceAdjustment",
         [](float* lut, unsigned long n) { lut3d_vibranceAdjustment(lut, n, 3, 30); }},
        {"lut3d_saturationAdjustment",
         [](float* lut, unsigned long n) { lut3d_saturationAdjustment(lut, n, 3, 30); }},
        {"lut3d_hdrHighlight",
         [](float* lut, unsigned long n) { lut3d_hdrHighlight(lut, n, 3, 30); }},
        {"lut3d_hdrShadow", [](float* lut, unsigned long n) { lut3d_hdrShadow(lut, n, 3, 30); }},
        {"lut3d_hdrWhiteLevel",
         [](float* lut, unsigned long n) { lut3d_hdrWhiteLevel(lut, n, 3, 30); }},
        {"lut3d_hdrBlackLevel",
         [](float* lut, unsigned long n) { lut3d_hdrBlackLevel(lut, n, 3, 30); }},
        {"lut3d_adjustHueFilter",
         [](float* lut, unsigned long n) { lut3d_adjustHueFilter(lut, n, 3, 300, 60, 30); }},
        {"lut3d_adjustSaturationFilter",
         [](float* lut, unsigned long n) { lut3d_adjustSaturationFilter(lut, n, 3, 300, 60, 30); }},
        {"lut3d_adjustBrightnessFilter",
         [](float* lut, unsigned long n) { lut3d_adjustBrightnessFilter(lut, n, 3, 300, 60, 30); }},
        {"lut3d_doHSLAdjustFilter",
         [](float* lut, unsigned long n) {
             lut3d_doHSLAdjustFilter(lut, n, 3, 300, 60, 30, 20, 10);
         }},
    };
    Floats colours(tableFloats);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        colours[i] = static_cast<float>(i * 7919 % 1000) / 1000.0f;
    }
    struct Call {
        void call() { change(points.data(), points.size() / 3); }
        void check(Struck struck) const {
            EXPECT_TRUE(points == after || (struck && points == before));
        }
        const Change& change;
        const Floats& before;
        const Floats& after;
        Floats points = before;
    };
    for (const int threads : {1, 2}) {
        setMaxThreads(threads);
        for (const auto& [name, change] : changes) {
            Floats changed = colours;
            change(changed.data(), changed.size() / 3);
            ASSERT_NE(changed, colours) << name;
            withEveryFault(name, [&, &each = change] { return Call{each, colours, changed}; });
        }
    }
    setMaxThreads(0);
}

}  // namespace
