// The building blocks of the spatial stages.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "golden/DigestByDepth.h"
#include "golden/Results.h"
#include "support/OddNumbers.h"

namespace keladjust::test {

namespace {

struct Geometry {
    int width;
    int height;
    int bytesPerPixel;
};

Geometry geometryOf(const CxImage& image) {
    return {static_cast<int>(image.width), static_cast<int>(image.height),
            static_cast<int>(image.bytesPerPixel)};
}

// One digest for each pixel size that the blur handles: 1, 3 and 4 bytes.
void addBlurs(Results& results) {
    const auto add = [&results](const std::string& name, auto blur) {
        const auto onImage = [&blur](CxImage* image) { blur(image->pBits, geometryOf(*image)); };
        const std::uint64_t digests[] = {digestOfPictures(8, onImage),
                                         digestOfPictures(24, onImage),
                                         digestOfPictures(32, onImage)};
        results.add(name, digests);
    };
    for (const int radius : {1, 2, 3, 10, 50, 127, 254}) {
        add(callText("stackBlur", radius), [radius](std::uint8_t* bits, Geometry g) {
            stackBlur(bits, g.width, g.height, g.bytesPerPixel, radius);
        });
        for (const int pass : {1, 2}) {
            add(callText("stackBlurPass", radius, pass), [&](std::uint8_t* bits, Geometry g) {
                stackBlurPass(bits, g.width, g.height, g.bytesPerPixel, radius, pass);
            });
        }
    }
}

struct Map {
    int width;
    int height;
    std::vector<std::uint8_t> bytes;
};

// The red planes of the 32-bit pictures, without padding.
std::vector<Map> redMaps() {
    std::vector<Map> maps;
    for (const HostPicture& original : goldenPictures(32)) {
        HostPicture picture(original);
        const auto [width, height, bytesPerPixel] = geometryOf(*picture.image());
        Map map{width, height, {}};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                map.bytes.push_back(
                    picture.pixel(static_cast<unsigned>(x), static_cast<unsigned>(y)).red);
            }
        }
        maps.push_back(std::move(map));
    }
    return maps;
}

void addMaps(Results& results) {
    std::vector<Map> reds = redMaps();
    std::vector<Map> means = reds;
    Digest mean;
    Digest maximum;
    for (std::size_t i = 0; i < reds.size(); ++i) {
        const auto& [width, height, red] = reds[i];
        meanFilter15(red.data(), means[i].bytes.data(), width, height);
        mean.add(means[i].bytes);
        const std::uint8_t largest = mapMaximum(means[i].bytes.data(), width, height);
        maximum.add({&largest, 1});
    }
    results.add("meanFilter15", mean.value());
    results.add("mapMaximum", maximum.value());

    for (const float factor : {0.5f, 0.9f, 1.0f, 2.5f, 0.0f, -1.0f, 1e30f, infinity, quietNan}) {
        Digest digest;
        for (std::size_t i = 0; i < reds.size(); ++i) {
            const auto& [width, height, red] = reds[i];
            const std::unique_ptr<unsigned char, void (*)(void*)> veil(
                estimateVeil(red.data(), means[i].bytes.data(), width, height, factor), std::free);
            ASSERT_NE(veil, nullptr);
            digest.add({veil.get(), red.size()});
        }
        results.add(callText("estimateVeil", factor), digest.value());
    }
}

void addDenoisedPlanes(Results& results) {
    for (const float sigma :
         {0.1f, 1.0f, 5.0f, 20.0f, 100.0f, 0.0f, -1.0f, 1e30f, infinity, quietNan}) {
        results.add(callText("dctDenoisePlane", sigma), digestOfPictures(8, [sigma](CxImage* i) {
                        const auto [width, height, bytesPerPixel] = geometryOf(*i);
                        dctDenoisePlane(i->pBits, i->pBits, width, height,
                                        static_cast<int>(i->effWidth), sigma);
                    }));
    }
}

void addColourConversions(Results& results) {
    const auto add = [&results](const char* name, auto convert) {
        results.add(name, digestOfPictures(32, [convert](CxImage* image) {
                        for (int y = 0; y < static_cast<int>(image->height); ++y) {
                            for (int x = 0; x < static_cast<int>(image->width); ++x) {
                                image->SetPixelColor(x, y,
                                                     convert(image->GetPixelColor(x, y, true)));
                            }
                        }
                    }));
    };
    add("CxImage::RGBtoHSL", CxImage::RGBtoHSL);
    add("CxImage::HSLtoRGB", CxImage::HSLtoRGB);
}

// Apart and together again, as red, green, blue and as hue, saturation, lightness; grey pictures
// are not taken apart.
void addPlanes(Results& results) {
    const auto add = [&results](const char* name, auto split, int colourSpace) {
        results.add(name, digestByDepth([&](CxImage* image) {
                        CxImage planes[4];
                        if (!(image->*split)(&planes[0], &planes[1], &planes[2], &planes[3]))
                            return;
                        image->Combine(&planes[0], &planes[1], &planes[2], &planes[3], colourSpace);
                    }));
    };
    add("CxImage::SplitRGBA, Combine", &CxImage::SplitRGBA, 0);
    add("CxImage::SplitHSLA, Combine", &CxImage::SplitHSLA, 1);
}

}  // namespace

Results buildingBlockResults() {
    Results results;
    addBlurs(results);
    addMaps(results);
    addDenoisedPlanes(results);
    addColourConversions(results);
    addPlanes(results);
    return results;
}

}  // namespace keladjust::test
