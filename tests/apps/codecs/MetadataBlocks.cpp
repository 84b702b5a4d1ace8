#include "codecs/blocks/MetadataBlocks.h"

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>
#include <zlib.h>

#include <string>
#include <string_view>

#include "codecs/Codec.h"
#include "codecs/Metadata.h"
#include "codecs/blocks/TiffDirectory.h"
#include "codecs/blocks/XmpText.h"

namespace {

using namespace keladjust::app;

Bytes bytesOf(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

Bytes& operator+=(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return bytes;
}

/// An EXIF block of a camera with big numbers first: orientation, maker's note, thumbnail.
Bytes blockOfACamera(std::uint16_t orientation) {
    Exiv2::ExifData exif;
    exif["Exif.Image.Orientation"] = orientation;
    exif["Exif.Image.Make"] = "Maker";
    exif["Exif.Photo.PixelXDimension"] = std::uint32_t{12345};
    exif["Exif.Photo.PixelYDimension"] = std::uint32_t{54321};
    exif["Exif.Photo.ExposureTime"] = Exiv2::Rational(1, 250);
    Exiv2::DataValue note(Exiv2::undefined);
    note.read("1 2 3 4 5 6 7 8 9 10 11 12");
    exif.add(Exiv2::ExifKey("Exif.Photo.MakerNote"), &note);
    exif["Exif.GPSInfo.GPSLatitudeRef"] = "N";
    const std::string thumbnail = "\xFF\xD8thumbnail\xFF\xD9";
    Exiv2::ExifThumb(exif).setJpegThumbnail(reinterpret_cast<const Exiv2::byte*>(thumbnail.data()),
                                            static_cast<long>(thumbnail.size()));
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, Exiv2::bigEndian, exif);
    return blob;
}

Bytes jpegWith(const MetadataBlocks& blocks) {
    std::vector<std::string> notices;
    const Bytes file =
        withJpegBlocks(jpegCodec().encode(Photo(2, 3, ChannelLayout::bgra), {}), blocks, notices);
    EXPECT_TRUE(notices.empty());
    return file;
}

Bytes encoded(const Codec& codec) {
    return codec.encode(Photo(3, 2, ChannelLayout::bgra), {});
}

Exiv2::ExifData exifOf(const Bytes& block) {
    Exiv2::ExifData exif;
    Exiv2::ExifParser::decode(exif, block.data(), static_cast<std::uint32_t>(block.size()));
    return exif;
}

std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

// A maker's note points to places by where they stood when the camera wrote it.
TEST(MetadataBlocks, KeepAllButWhatHasChanged) {
    const Bytes before = blockOfACamera(6);
    MetadataBlocks blocks;
    blocks.exif = before;
    blocks.resources = bytesOf("8BIM\4\4\0\0\0\0\0\0");
    blocks.text = "a comment";
    Metadata metadata(jpegWith(blocks));
    EXPECT_EQ(metadata.orientation(), 6);
    metadata.describe(Photo(3, 2, ChannelLayout::bgra));
    std::vector<std::string> notices;
    const MetadataBlocks after = jpegBlocks(metadata.addTo(encoded(jpegCodec()), notices));

    ASSERT_EQ(after.exif.size(), before.size());
    Exiv2::ExifData exif = exifOf(after.exif);
    EXPECT_EQ(exif["Exif.Image.Orientation"].toLong(), 1);
    EXPECT_EQ(exif["Exif.Photo.PixelXDimension"].toLong(), 3);
    EXPECT_EQ(exif["Exif.Photo.PixelYDimension"].toLong(), 2);
    const auto noteAt = [](const Bytes& block) {
        return textOf(block).find(std::string("\1\2\3\4\5\6\7\10\11\12\13\14"));
    };
    EXPECT_EQ(noteAt(after.exif), noteAt(before));
    EXPECT_EQ(textOf(after.exif).find("thumbnail"), std::string::npos);
    EXPECT_NE(textOf(before).find("thumbnail"), std::string::npos);
    EXPECT_EQ(after.resources, blocks.resources);
    EXPECT_EQ(after.text, blocks.text);
}

TEST(MetadataBlocks, GoThroughTiffInEitherByteOrder) {
    MetadataBlocks blocks;
    blocks.exif = blockOfACamera(1);
    std::vector<std::string> notices;
    const Bytes tiff = withTiffBlocks(encoded(tiffCodec()), blocks, notices);
    EXPECT_EQ(tiffCodec().decode(tiff).width(), 3u);
    Exiv2::ExifData exif = exifOf(tiffBlocks(tiff).exif);
    EXPECT_EQ(exif["Exif.Image.Make"].toString(), "Maker");
    EXPECT_EQ(exif["Exif.Photo.ExposureTime"].toString(), "1/250");
    EXPECT_EQ(exif["Exif.Photo.MakerNote"].toString(), "1 2 3 4 5 6 7 8 9 10 11 12");
    EXPECT_EQ(exif["Exif.GPSInfo.GPSLatitudeRef"].toString(), "N");
    EXPECT_EQ(exif.findKey(Exiv2::ExifKey("Exif.Image.ImageWidth")), exif.end());
}

// As ImageMagick, and Exiv2 before 0.28, write them.
TEST(MetadataBlocks, AreReadFromTextInPng) {
    const Photo photo(3, 2, ChannelLayout::bgra);
    const Bytes plain = pngCodec().encode(photo, {});
    const std::unique_ptr<Exiv2::Image> image(
        Exiv2::ImageFactory::open(plain.data(), static_cast<long>(plain.size())).release());
    image->readMetadata();
    image->exifData()["Exif.Image.Orientation"] = std::uint16_t{8};
    image->iptcData()["Iptc.Application2.Keywords"] = "keyword";
    image->writeMetadata();
    Exiv2::BasicIo& io = image->io();
    const Bytes file(io.mmap(), io.mmap() + io.size());

    EXPECT_EQ(Metadata(file).orientation(), 8);
    EXPECT_NE(textOf(pngBlocks(file).resources).find("keyword"), std::string::npos);
}

TEST(MetadataBlocks, PackedProfilesThatFillMemoryAreLeftOut) {
    const Bytes zeros(std::size_t{17} << 20);
    for (const std::size_t size : {std::size_t{1} << 20, zeros.size()}) {
        MetadataBlocks blocks;
        blocks.profile.assign(zeros.begin(), zeros.begin() + static_cast<std::ptrdiff_t>(size));
        std::vector<std::string> notices;
        const Bytes file = withPngBlocks(encoded(pngCodec()), blocks, notices);
        EXPECT_EQ(pngBlocks(file).profile.size(), size == zeros.size() ? 0 : size);
    }
}

TEST(MetadataBlocks, TooLongForASegmentAreLeftOutWithANotice) {
    MetadataBlocks blocks;
    blocks.xmp.assign(70'000, ' ');
    std::vector<std::string> notices;
    const Bytes plain = encoded(jpegCodec());
    EXPECT_EQ(withJpegBlocks(plain, blocks, notices), plain);
    EXPECT_EQ(notices, std::vector<std::string>{"XMP is not kept: it is too long for JPEG"});
}

TEST(MetadataBlocks, OfDamagedFilesAreWhatCanBeRead) {
    MetadataBlocks blocks;
    blocks.exif = blockOfACamera(6);
    blocks.xmp = bytesOf("<x/>");
    blocks.profile = Bytes(100'000, 7);
    blocks.resources = bytesOf("8BIM");
    std::vector<std::string> notices;
    struct Form {
        const Codec& codec;
        MetadataBlocks (*read)(std::span<const unsigned char>);
        Bytes (*write)(const Bytes&, const MetadataBlocks&, std::vector<std::string>&);
    };
    for (const Form& form :
         {Form{jpegCodec(), jpegBlocks, withJpegBlocks}, Form{pngCodec(), pngBlocks, withPngBlocks},
          Form{tiffCodec(), tiffBlocks, withTiffBlocks},
          Form{webpCodec(), webpBlocks, withWebPBlocks}}) {
        const Bytes whole = form.write(encoded(form.codec), blocks, notices);
        EXPECT_EQ(form.read(whole).xmp, blocks.xmp) << form.codec.name();
        EXPECT_EQ(form.read(whole).profile, blocks.profile) << form.codec.name();
        // Ends anywhere, and wrong bytes anywhere: no more comes out than went in.
        for (std::size_t index = 12; index < whole.size(); index += 1 + index / 64) {
            Bytes wrong = whole;
            wrong[index] ^= 0x80;
            for (const Bytes& damaged :
                 {Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(index)),
                  wrong}) {
                try {
                    Metadata metadata(damaged);
                    metadata.describe(Photo(3, 2, ChannelLayout::bgra));
                    EXPECT_EQ(metadata.orientation(), 1);
                    EXPECT_LE(form.read(damaged).profile.size(), blocks.profile.size());
                } catch (const std::runtime_error&) {
                }
            }
        }
    }
}

TEST(TiffDirectory, RingsAndSharedValuesEnd) {
    // The directory at 8 is its own EXIF directory and its own successor.
    Bytes ring =
        bytesOf(std::string_view("II*\0\10\0\0\0\1\0\x69\x87\4\0\1\0\0\0\10\0\0\0\10\0\0\0", 26));
    EXPECT_LE(TiffStructure(ring).first.size(), 1u);
    // A thousand entries, each of which has the whole file for its value.
    Bytes bomb = bytesOf(std::string_view("II*\0\10\0\0\0\xE8\3", 10));
    const std::size_t size = 10 + 1000 * 12 + 4;
    for (int entry = 0; entry < 1000; ++entry) {
        bomb += {1, 1, 7, 0, static_cast<unsigned char>(size), size >> 8, 0, 0, 0, 0, 0, 0};
    }
    bomb.resize(size);
    EXPECT_EQ(TiffStructure(bomb).first.size(), 1u);
}

TEST(XmpText, NumbersAreReplacedWhereverTheyStand) {
    std::string xmp =
        "<rdf:Description tiff:Orientation=\"6\" exif:PixelXDimension = '12345'>"
        "<tiff:Orientation>8</tiff:Orientation><tiff:OrientationNote>7</tiff:OrientationNote>"
        "<tiff:Orientation/></rdf:Description>";
    replaceXmpNumber(xmp, "tiff:Orientation", 1);
    replaceXmpNumber(xmp, "exif:PixelXDimension", 9);
    EXPECT_EQ(xmp,
              "<rdf:Description tiff:Orientation=\"1\" exif:PixelXDimension = '9'>"
              "<tiff:Orientation>1</tiff:Orientation><tiff:OrientationNote>7</tiff:OrientationNote>"
              "<tiff:Orientation/></rdf:Description>");
}

TEST(XmpText, ThumbnailsAreTakenOut) {
    std::string xmp = "<a><xmp:Thumbnails><rdf:Alt>...</rdf:Alt></xmp:Thumbnails>b</a>";
    removeXmpElement(xmp, "xmp:Thumbnails");
    EXPECT_EQ(xmp, "<a>b</a>");
}

}  // namespace
