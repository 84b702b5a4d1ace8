#include "support/Pictures.h"

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "codecs/Codec.h"
#include "files/InputFile.h"

namespace keladjust::test {

using app::ChannelLayout;
using app::Photo;

std::string photograph(const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(KELADJUST_PHOTO_DIR) / name;
    if (!std::filesystem::is_regular_file(path)) {
        throw std::runtime_error(
            path.string() + " is missing: install mate-backgrounds or set KELADJUST_PHOTO_DIR");
    }
    return path.string();
}

Photo noise(std::uint32_t width, std::uint32_t height, ChannelLayout layout, bool hasAlpha) {
    Photo photo(width, height, layout);
    photo.hasAlpha = hasAlpha;
    std::mt19937 random(42);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            unsigned char* pixel = photo.pixel(x, y);
            for (std::size_t channel = 0; channel < photo.bytesPerPixel(); ++channel) {
                const bool opaque = channel == 3 && !hasAlpha;
                pixel[channel] = opaque ? 255 : static_cast<unsigned char>(random());
            }
        }
    }
    return photo;
}

Photo decodeFile(const std::filesystem::path& path) {
    const app::Bytes file = app::readFile(path);
    const app::Codec* codec = app::codecForContent(file);
    if (!codec) throw std::runtime_error(path.string() + " is no picture");
    return codec->decode(file);
}

std::array<double, 3> meanColour(const Photo& photo) {
    std::array<double, 3> sum{};
    for (std::uint32_t y = 0; y < photo.height(); ++y) {
        for (std::uint32_t x = 0; x < photo.width(); ++x) {
            const unsigned char* pixel = photo.pixel(x, y);
            const std::size_t step = photo.layout() == ChannelLayout::grey ? 0 : 1;
            sum[0] += pixel[2 * step];
            sum[1] += pixel[step];
            sum[2] += pixel[0];
        }
    }
    const double count = static_cast<double>(photo.width()) * photo.height();
    return {sum[0] / count, sum[1] / count, sum[2] / count};
}

double meanBrightness(const Photo& photo) {
    const auto colour = meanColour(photo);
    return (colour[0] + colour[1] + colour[2]) / 3;
}

void expectSamePixels(const Photo& actual, const Photo& expected) {
    ASSERT_EQ(actual.width(), expected.width());
    ASSERT_EQ(actual.height(), expected.height());
    ASSERT_EQ(actual.layout(), expected.layout());
    ASSERT_EQ(actual.hasAlpha, expected.hasAlpha);
    for (std::uint32_t y = 0; y < actual.height(); ++y) {
        ASSERT_EQ(
            std::memcmp(actual.row(y), expected.row(y), actual.width() * actual.bytesPerPixel()), 0)
            << "row " << y;
    }
}

void annotate(const std::filesystem::path& path, int orientation) {
    const std::unique_ptr<Exiv2::Image> image(Exiv2::ImageFactory::open(path.string()).release());
    image->readMetadata();
    Exiv2::ExifData exif;
    exif["Exif.Image.Make"] = "Maker";
    exif["Exif.Image.Orientation"] = static_cast<std::uint16_t>(orientation);
    exif["Exif.Photo.PixelXDimension"] = std::uint32_t{12345};
    exif["Exif.Photo.PixelYDimension"] = std::uint32_t{54321};
    const app::Bytes thumbnail = app::jpegCodec().encode(noise(16, 16, ChannelLayout::bgra), {});
    Exiv2::ExifThumb(exif).setJpegThumbnail(thumbnail.data(), static_cast<long>(thumbnail.size()));
    image->setExifData(exif);
    image->xmpData()["Xmp.dc.title"] = "Title";
    image->iptcData()["Iptc.Application2.Keywords"] = "keyword";
    app::Bytes profile = testProfile();
    Exiv2::DataBuf buffer(profile.data(), static_cast<long>(profile.size()));
    image->setIccProfile(buffer);
    image->writeMetadata();
}

app::Bytes testProfile() {
    app::Bytes profile(100'000);
    std::mt19937 random(7);
    for (unsigned char& byte : profile) byte = static_cast<unsigned char>(random());
    const auto size = static_cast<std::uint32_t>(profile.size());
    for (std::size_t byte = 0; byte < 4; ++byte) {
        profile[byte] = static_cast<unsigned char>(size >> (24 - 8 * byte));
    }
    std::memcpy(profile.data() + 12, "mntrRGB XYZ ", 12);
    std::memcpy(profile.data() + 36, "acsp", 4);
    return profile;
}

}  // namespace keladjust::test
