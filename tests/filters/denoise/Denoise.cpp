#include "models/denoise/Denoise.h"

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <algorithm>
#include <cfenv>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "models/denoise/FlowGraph.h"
#include "support/HostPicture.h"
#include "support/InstructionSets.h"
#include "support/OddNumbers.h"
#include "support/Photograph.h"

namespace {

using namespace keladjust::test;
using Bytes8 = std::vector<std::uint8_t>;

using Denoiser = CxImage* (*)(CxImage*, float);
constexpr Denoiser denoisers[] = {deNoiseRGB, deNoiseLumiance};

std::size_t strideOf(std::size_t width) {
    return (width + 3) / 4 * 4;
}

/// A picture with slopes, edges and noise, the same on every machine.
Bytes8 noisyScene(std::size_t width, std::size_t height, std::size_t stride, unsigned seed) {
    std::mt19937 generator(seed);
    Bytes8 plane(stride * height);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t slope = 40 + x / 2 + y / 3;
            const std::size_t step = (x / 23 + y / 17) % 2 * 70;
            plane[y * stride + x] = static_cast<std::uint8_t>(
                std::min<std::size_t>(slope + step, 230) + (generator() >> 28));
        }
    }
    return plane;
}

HostPicture noisyPicture(unsigned width, unsigned height, unsigned bpp, _ImagePixelFormat format) {
    HostPicture picture(width, height, bpp, format);
    std::uint8_t* const bits = picture.bits();
    const std::size_t rowBytes = picture.image()->GetEffWidth();
    const Bytes8 scene = noisyScene(rowBytes, height, rowBytes, 5);
    std::copy(scene.begin(), scene.end(), bits);
    return picture;
}

Bytes8 inPlace(Bytes8 plane, std::size_t width, std::size_t height, std::size_t stride,
               float sigma) {
    dctDenoisePlane(plane.data(), plane.data(), static_cast<int>(width), static_cast<int>(height),
                    static_cast<int>(stride), sigma);
    return plane;
}

/// Pixels of a padded plane without the padding.
Bytes8 tight(const Bytes8& plane, std::size_t width, std::size_t height, std::size_t stride) {
    Bytes8 result;
    for (std::size_t y = 0; y < height; ++y) {
        const auto row = plane.begin() + static_cast<std::ptrdiff_t>(y * stride);
        result.insert(result.end(), row, row + static_cast<std::ptrdiff_t>(width));
    }
    return result;
}

struct Difference {
    int largest = 0;
    double share = 0;  ///< of bytes that differ by more than a level
};

Difference difference(const Bytes8& a, const Bytes8& b) {
    Difference result;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int levels = std::abs(int{a[i]} - int{b[i]});
        result.largest = std::max(result.largest, levels);
        if (levels > 1) result.share += 1;
    }
    result.share /= static_cast<double>(a.size());
    return result;
}

TEST(Denoise, SettingZeroLeavesThePictureAlone) {
    for (const Denoiser stage : denoisers) {
        HostPicture picture = noisyPicture(30, 20, 24, IMAGE_FORMAT_BGR);
        const Bytes8 before = picture.bytes();
        EXPECT_EQ(stage(picture.image(), 0.0f), picture.image());
        EXPECT_EQ(stage(picture.image(), -0.0f), picture.image());
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(Denoise, PicturesWithoutPixelsComeBack) {
    CxImage empty;
    for (const Denoiser stage : denoisers) {
        EXPECT_EQ(stage(nullptr, 30.0f), nullptr);
        EXPECT_EQ(stage(&empty, 30.0f), &empty);
    }
}

TEST(Denoise, PicturesWithoutColourPlanesAreLeftAlone) {
    constexpr PixelFormat formats[] = {{8, IMAGE_FORMAT_GRAY},  {32, IMAGE_FORMAT_UNKNOWN},
                                       {32, IMAGE_FORMAT_RGB},  {24, IMAGE_FORMAT_BGRA},
                                       {16, IMAGE_FORMAT_RGBA}, {24, IMAGE_FORMAT_GRAY}};
    for (const Denoiser stage : denoisers) {
        for (const PixelFormat& f : formats) {
            HostPicture picture = noisyPicture(40, 30, f.bpp, f.format);
            const Bytes8 before = picture.bytes();
            EXPECT_EQ(stage(picture.image(), 50.0f), picture.image());
            EXPECT_EQ(picture.bytes(), before) << f.bpp << ' ' << f.format;
        }
    }
}

// The mean of 64 blocks, truncated, may fall just short of the level it stands for.
TEST(Denoise, SmallSettingLosesAtMostOneLevel) {
    HostPicture picture = photographCrop("nature/YellowFlower", 600, 400, 160, 120);
    const Bytes8 before = picture.bytes();
    deNoiseRGB(picture.image(), 0.01f);
    const Bytes8 after = picture.bytes();
    for (std::size_t i = 0; i < before.size(); ++i) {
        ASSERT_LE(after[i], before[i]) << i;
        ASSERT_GE(after[i] + 1, before[i]) << i;
    }
}

TEST(Denoise, EveryFlatPictureComesBack) {
    for (int value = 0; value < 256; ++value) {
        const Bytes8 plane(40 * 40, static_cast<std::uint8_t>(value));
        for (const float sigma : {0.01f, 0.04f}) {
            ASSERT_EQ(inPlace(plane, 40, 40, 40, sigma), plane) << value;
        }
        HostPicture picture(20, 20, 24, IMAGE_FORMAT_RGB);
        std::fill_n(picture.bits(), picture.size(), static_cast<std::uint8_t>(value));
        const Bytes8 before = picture.bytes();
        deNoiseRGB(picture.image(), 0.1f);
        ASSERT_EQ(picture.bytes(), before) << value;
    }
}

TEST(Denoise, EightPixelsAtTheRightAndAtTheBottomAreNeverFiltered) {
    HostPicture picture = noisyPicture(64, 48, 32, IMAGE_FORMAT_BGRA);
    HostPicture before(picture);
    deNoiseRGB(picture.image(), 100.0f);
    bool changed = false;
    for (unsigned y = 0; y < 48; ++y) {
        for (unsigned x = 0; x < 64; ++x) {
            if (x >= 56 || y >= 40) {
                ASSERT_EQ(picture.pixel(x, y), before.pixel(x, y)) << x << ' ' << y;
            } else {
                changed = changed || !(picture.pixel(x, y) == before.pixel(x, y));
            }
        }
    }
    EXPECT_TRUE(changed);
}

// At setting 100 the threshold is 45, which the mean coefficient of a block of 5 (40) does not
// reach and that of a block of 6 (48) does.
TEST(Denoise, DarkFlatAreasTurnBlack) {
    for (const std::uint8_t level : {std::uint8_t{5}, std::uint8_t{6}}) {
        HostPicture picture(40, 40, 24, IMAGE_FORMAT_RGB);
        std::fill_n(picture.bits(), picture.size(), level);
        deNoiseRGB(picture.image(), 100.0f);
        const std::uint8_t expected = level == 5 ? 0 : 6;
        for (unsigned i = 0; i < 32; ++i) {
            ASSERT_EQ(picture.pixel(i, i).red, expected) << i;
            ASSERT_EQ(picture.pixel(i, 36).red, level) << i;
            ASSERT_EQ(picture.pixel(36, i).red, level) << i;
        }
    }
}

TEST(Denoise, CoefficientsEqualToTheThresholdStay) {
    const Bytes8 plane(40 * 40, 3);
    EXPECT_EQ(inPlace(plane, 40, 40, 40, 8.0f), plane);  // 3 x 8 and 3 x sigma
    EXPECT_EQ(inPlace(plane, 40, 40, 40, 8.1f)[0], 0);
}

TEST(Denoise, SmallPicturesAreNotFiltered) {
    for (const auto& [width, height] : {std::pair{8u, 200u}, {200u, 8u}, {4u, 4u}, {8u, 8u}}) {
        HostPicture picture = noisyPicture(width, height, 24, IMAGE_FORMAT_RGB);
        const Bytes8 before = picture.bytes();
        deNoiseRGB(picture.image(), 100.0f);
        EXPECT_EQ(picture.bytes(), before) << width << 'x' << height;
    }
}

// What is not filtered is read as if rows had no padding: a plane of 5 columns is 8 bytes wide.
TEST(Denoise, UnfilteredPixelsOfPaddedRowsShift) {
    Bytes8 plane{1, 2, 3, 4, 5,  0, 0, 0,  //
                 6, 7, 8, 9, 10, 0, 0, 0};
    EXPECT_EQ(inPlace(plane, 5, 2, 8, 1.0f), (Bytes8{1, 2, 3, 4, 5, 0, 0, 0,  //
                                                     0, 0, 0, 0, 0, 0, 0, 0}));
    Bytes8 other(16, 0);
    dctDenoisePlane(plane.data(), other.data(), 5, 2, 8, 1.0f);
    EXPECT_EQ(other, (Bytes8{1, 2, 3, 4, 5, 0, 0, 0,  //
                             0, 0, 0, 6, 7, 0, 0, 0}));
}

TEST(Denoise, UnfilteredPixelsAreCopiedInPlaceRowByRow) {
    for (std::size_t width = 1; width <= 40; ++width) {
        for (const std::size_t height : {1, 7, 8, 9, 10, 17, 33}) {
            const std::size_t stride = strideOf(width);
            const Bytes8 plane = noisyScene(width, height, stride, 3);
            const Bytes8 result = inPlace(plane, width, height, stride, 4.0f);
            Bytes8 expected = plane;
            writeInPlaceModel(expected, width, height, stride,
                              tight(result, width, height, stride));
            ASSERT_EQ(result, expected) << width << 'x' << height;
        }
    }
}

TEST(Denoise, PlanesMatchTheDirectTransform) {
    for (const auto& [width, height] : {std::pair<std::size_t, std::size_t>{9, 9},
                                        {10, 9},
                                        {9, 31},
                                        {16, 16},
                                        {39, 41},
                                        {40, 40},
                                        {41, 39},
                                        {57, 23},
                                        {120, 90}}) {
        const std::size_t stride = width + 5;
        const Bytes8 plane = noisyScene(width, height, stride, 7);
        for (const float sigma : {0.01f, 1.0f, 5.0f, 15.0f, 60.0f}) {
            const Bytes8 result = inPlace(plane, width, height, stride, sigma);
            Bytes8 expected = plane;
            writeInPlaceModel(
                expected, width, height, stride,
                filteredModel(tight(plane, width, height, stride), width, height, sigma));
            EXPECT_LE(difference(result, expected).largest, 1)
                << width << 'x' << height << ' ' << sigma;
        }
    }
}

// To the byte, where the order of operations is the same.
TEST(Denoise, PlanesMatchTheFlowGraph) {
    for (const auto& [width, height] : {std::pair<std::size_t, std::size_t>{9, 9},
                                        {10, 31},
                                        {40, 41},
                                        {41, 40},
                                        {73, 29},
                                        {120, 90}}) {
        const Bytes8 plane = noisyScene(width, height, width, 7);
        for (const float sigma : {0.01f, 1.0f, 5.0f, 15.0f, 60.0f, infinity, quietNan}) {
            Bytes8 expected = plane;
            writeInPlaceModel(expected, width, height, width,
                              flowGraphModel(plane, width, height, sigma));
            EXPECT_EQ(inPlace(plane, width, height, width, sigma), expected)
                << width << 'x' << height << ' ' << sigma;
        }
    }
}

// A single coefficient of a block decides here, so tile and band borders would show.
TEST(Denoise, OneBlockIsFilteredAsAWhole) {
    for (std::size_t width = 9; width < 90; width += 7) {
        Bytes8 plane(width * 60, 100);
        plane[30 * width + width / 2] = 160;
        const Bytes8 result = inPlace(plane, width, 60, width, 5.0f);
        Bytes8 expected = plane;
        writeInPlaceModel(expected, width, 60, width, filteredModel(plane, width, 60, 5.0f));
        EXPECT_LE(difference(result, expected).largest, 1) << width;
    }
}

TEST(Denoise, PlaneInPlaceAndApartAgree) {
    const std::size_t width = 300;
    const std::size_t height = 200;
    const Bytes8 plane = noisyScene(width, height, width, 9);
    for (const int threads : {1, 4}) {
        setMaxThreads(threads);
        Bytes8 apart(plane.size());
        dctDenoisePlane(plane.data(), apart.data(), 300, 200, 300, 5.0f);
        EXPECT_EQ(inPlace(plane, width, height, width, 5.0f), apart);
    }
    setMaxThreads(0);
}

TEST(Denoise, PlaneKeepsToItsBuffers) {
    for (const auto& [width, height] :
         {std::pair{1u, 1u}, {3u, 50u}, {9u, 9u}, {33u, 17u}, {61u, 70u}, {64u, 64u}}) {
        // The last row of a plane has no padding to write to.
        HostPicture source(width * 4, height, 8, IMAGE_FORMAT_GRAY);
        source.fillRandom(1);
        HostPicture destination(source);
        const Bytes8 before = source.bytes();
        const auto stride = static_cast<int>(source.image()->GetEffWidth());
        dctDenoisePlane(source.bits(), destination.bits(), static_cast<int>(width),
                        static_cast<int>(height), stride, 20.0f);
        EXPECT_EQ(source.bytes(), before);
        EXPECT_TRUE(source.guardsIntact());
        EXPECT_TRUE(destination.guardsIntact());
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = width; x < width * 4; ++x) {
                ASSERT_EQ(destination.pixel(x, y), source.pixel(x, y)) << x << ' ' << y;
            }
        }
    }
}

TEST(Denoise, PlaneIgnoresWhatMakesNoSense) {
    Bytes8 plane = noisyScene(20, 20, 20, 1);
    const Bytes8 before = plane;
    dctDenoisePlane(nullptr, plane.data(), 20, 20, 20, 5.0f);
    dctDenoisePlane(plane.data(), nullptr, 20, 20, 20, 5.0f);
    dctDenoisePlane(plane.data(), plane.data(), 0, 20, 20, 5.0f);
    dctDenoisePlane(plane.data(), plane.data(), 20, -1, 20, 5.0f);
    dctDenoisePlane(plane.data(), plane.data(), 20, 20, 19, 5.0f);
    dctDenoisePlane(plane.data(), plane.data(), 20, 20, -20, 5.0f);
    EXPECT_EQ(plane, before);
}

TEST(Denoise, AnySettingHasAResult) {
    const Bytes8 plane = noisyScene(48, 48, 48, 2);
    const auto filtered = [&](float sigma) { return inPlace(plane, 48, 48, 48, sigma); };
    for (const float none : {quietNan, -infinity, -5.0f, -1e30f, 1e-40f}) {
        EXPECT_LE(difference(filtered(none), plane).largest, 1) << none;
    }
    for (const float all : {infinity, 1e30f, 3e38f, 1e5f}) {
        Bytes8 black = plane;
        for (std::size_t y = 0; y < 40; ++y)
            std::fill_n(black.data() + y * 48, 40, std::uint8_t{0});
        EXPECT_EQ(filtered(all), black) << all;
    }
    for (const Denoiser stage : denoisers) {
        for (const float setting : {quietNan, infinity, -infinity, 1e30f, -1e30f}) {
            HostPicture picture = noisyPicture(33, 21, 24, IMAGE_FORMAT_BGR);
            EXPECT_EQ(stage(picture.image(), setting), picture.image());
            EXPECT_TRUE(picture.guardsIntact());
        }
    }
}

// The stages are the plane filter between splitting a picture and joining it again.
void denoiseByPlanes(CxImage& image, float setting, bool hsl) {
    CxImage planes[3];
    ASSERT_TRUE(hsl ? image.SplitHSLA(&planes[0], &planes[1], &planes[2], nullptr)
                    : image.SplitRGBA(&planes[0], &planes[1], &planes[2], nullptr));
    for (CxImage& plane : planes) {
        dctDenoisePlane(plane.GetBits(), plane.GetBits(), static_cast<int>(plane.GetWidth()),
                        static_cast<int>(plane.GetHeight()), static_cast<int>(plane.GetEffWidth()),
                        setting * 0.15f);
    }
    ASSERT_TRUE(image.Combine(&planes[0], &planes[1], &planes[2], nullptr, hsl ? 1 : 0));
}

TEST(Denoise, EveryFormatAndSizeIsItsPlanesFiltered) {
    for (const PixelFormat& f : everyFormat) {
        if (f.format == IMAGE_FORMAT_GRAY) continue;
        for (const auto& [width, height] : {std::pair{1u, 1u},
                                            {7u, 3u},
                                            {8u, 8u},
                                            {9u, 9u},
                                            {37u, 29u},
                                            {66u, 31u},
                                            {203u, 61u}}) {
            for (const bool hsl : {false, true}) {
                HostPicture picture = noisyPicture(width, height, f.bpp, f.format);
                HostPicture expected(picture);
                const Denoiser stage = hsl ? deNoiseLumiance : deNoiseRGB;
                EXPECT_EQ(stage(picture.image(), 30.0f), picture.image());
                denoiseByPlanes(*expected.image(), 30.0f, hsl);
                EXPECT_EQ(picture.bytes(), expected.bytes())
                    << f.bpp << ' ' << f.format << ' ' << width << 'x' << height << ' ' << hsl;
                EXPECT_TRUE(picture.guardsIntact());
            }
        }
    }
}

TEST(Denoise, AlphaStays) {
    for (const Denoiser stage : denoisers) {
        HostPicture picture(50, 40, 32, IMAGE_FORMAT_RGBA);
        picture.fillRandom(4);
        HostPicture before(picture);
        stage(picture.image(), 60.0f);
        for (unsigned y = 0; y < 40; ++y) {
            for (unsigned x = 0; x < 50; ++x) {
                ASSERT_EQ(picture.pixel(x, y).alpha, before.pixel(x, y).alpha);
            }
        }
    }
}

// Hue, too, although the name speaks of luminance alone.
TEST(Denoise, LuminanceStageFiltersAllThreePlanes) {
    HostPicture picture(40, 40, 24, IMAGE_FORMAT_RGB);
    std::mt19937 generator(8);
    for (unsigned y = 0; y < 40; ++y) {
        for (unsigned x = 0; x < 40; ++x) {
            const auto hue = static_cast<unsigned char>(60 + (generator() >> 29));
            const auto saturation = static_cast<unsigned char>(150 + (generator() >> 29));
            picture.setPixel(x, y, CxImage::HSLtoRGB({120, saturation, hue, 0}));
        }
    }
    const auto spread = [&picture](auto channel) {
        int low = 255;
        int high = 0;
        for (unsigned y = 0; y < 32; ++y) {
            for (unsigned x = 0; x < 32; ++x) {
                const int value = channel(CxImage::RGBtoHSL(picture.pixel(x, y)));
                low = std::min(low, value);
                high = std::max(high, value);
            }
        }
        return high - low;
    };
    const auto hue = [](_tagMyRGBQUAD c) { return int{c.red}; };
    const auto saturation = [](_tagMyRGBQUAD c) { return int{c.green}; };
    const int hueBefore = spread(hue);
    const int saturationBefore = spread(saturation);
    deNoiseLumiance(picture.image(), 60.0f);
    EXPECT_LT(spread(hue), hueBefore);
    EXPECT_LT(spread(saturation), saturationBefore);
}

TEST(Denoise, PhotographIsWithinALevelOfTheDirectTransform) {
    const unsigned width = 400;
    const unsigned height = 300;
    HostPicture photograph = photographCrop("nature/YellowFlower", 600, 400, width, height);
    for (const float setting : {0.05f, 5.0f, 33.0f, 100.0f}) {
        HostPicture picture(photograph);
        deNoiseRGB(picture.image(), setting);
        Bytes8 expected = photograph.bytes();
        for (std::size_t channel = 0; channel < 3; ++channel) {
            Bytes8 plane(std::size_t{width} * height);
            for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = expected[3 * i + channel];
            const Bytes8 filtered = filteredModel(plane, width, height, setting * 0.15f);
            writeInPlaceModel(plane, width, height, width, filtered);
            for (std::size_t i = 0; i < plane.size(); ++i) expected[3 * i + channel] = plane[i];
        }
        // Two factorings may round a coefficient to different sides of the threshold, which then
        // shows as far as the coefficient reaches.
        EXPECT_LE(difference(picture.bytes(), expected).share, 0.002) << setting;
    }
}

TEST(Denoise, ThreadsDoNotShow) {
    for (const Denoiser stage : denoisers) {
        setMaxThreads(1);
        HostPicture expected = noisyPicture(301, 203, 24, IMAGE_FORMAT_RGB);
        HostPicture original(expected);
        stage(expected.image(), 40.0f);
        for (const int threads : {2, 3, 16}) {
            setMaxThreads(threads);
            HostPicture picture(original);
            stage(picture.image(), 40.0f);
            EXPECT_EQ(picture.bytes(), expected.bytes()) << threads;
        }
    }
    setMaxThreads(0);
}

TEST(Denoise, InstructionSetsDoNotShow) {
    for (const auto& [width, height] :
         {std::pair<std::size_t, std::size_t>{9, 9}, {31, 12}, {40, 40}, {171, 60}}) {
        const Bytes8 plane = noisyScene(width, height, width, 11);
        const Bytes8 expected = inPlace(plane, width, height, width, 4.0f);
        int sets = 0;
        forEachInstructionSet([&](const std::string& name) {
            EXPECT_EQ(inPlace(plane, width, height, width, 4.0f), expected) << name;
            ++sets;
        });
        EXPECT_GT(sets, 0);
    }
}

TEST(Denoise, TheCallersRoundingModeDoesNotShow) {
    HostPicture expected = noisyPicture(100, 60, 24, IMAGE_FORMAT_RGB);
    HostPicture picture(expected);
    deNoiseLumiance(expected.image(), 40.0f);
    std::fesetround(FE_UPWARD);
    deNoiseLumiance(picture.image(), 40.0f);
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(mode, FE_UPWARD);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

std::uint64_t fnv1a(const Bytes8& bytes) {
    std::uint64_t hash = 14695981039346656037u;
    for (const std::uint8_t byte : bytes) hash = (hash ^ byte) * 1099511628211u;
    return hash;
}

// Results are kept from release to release and are the same on every platform. A change here is a
// change of every picture that hosts have adjusted.
TEST(Denoise, ResultsAreKept) {
    const Bytes8 plane = noisyScene(203, 119, 208, 1);
    EXPECT_EQ(fnv1a(inPlace(plane, 203, 119, 208, 0.1f)), 3766125057621980135u);
    EXPECT_EQ(fnv1a(inPlace(plane, 203, 119, 208, 5.0f)), 16468813618677269564u);
    EXPECT_EQ(fnv1a(inPlace(plane, 203, 119, 208, 15.0f)), 1030138388953402086u);
}

// The rows of an image that owns its pixels are written into a fresh buffer, as Combine() does it;
// a host's own buffer keeps its padding.
TEST(Denoise, ClearsThePaddingOfOwnedPixelsAlone) {
    for (const auto stage : {deNoiseRGB, deNoiseLumiance}) {
        CxImage owned(5, 3, 24, IMAGE_FORMAT_RGB);
        std::fill_n(owned.GetBits(), owned.GetSize(), static_cast<unsigned char>(9));
        stage(&owned, 20.0f);
        std::vector<unsigned char> bytes(48, 9);
        unsigned char* bits = bytes.data();
        CxImage adopted(&bits, 5, 3, 24, IMAGE_FORMAT_RGB);
        stage(&adopted, 20.0f);
        for (unsigned y = 0; y < 3; ++y) {
            EXPECT_EQ(owned.GetBits()[16 * y + 15], 0) << "row " << y;
            EXPECT_EQ(bytes[16 * y + 15], 9) << "row " << y;
        }
    }
}

}  // namespace
