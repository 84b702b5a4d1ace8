#include "codecs/Metadata.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codecs/Codec.h"

namespace {

using namespace keladjust::app;

/// A JPEG of 2 x 3 pixels whose first EXIF directory has the entries, twelve bytes each.
Bytes jpegWithExif(const std::vector<Bytes>& entries) {
    const std::string start("Exif\0\0II*\0\10\0\0\0", 14);
    Bytes exif(start.begin(), start.end());
    exif.insert(exif.end(), {static_cast<unsigned char>(entries.size()), 0});
    for (const Bytes& entry : entries) exif.insert(exif.end(), entry.begin(), entry.end());
    exif.resize(exif.size() + 4);  // no other directory

    Bytes file = jpegCodec().encode(Photo(2, 3, ChannelLayout::bgra), {});
    exif.insert(exif.begin(), {0xFF, 0xE1, 0, static_cast<unsigned char>(exif.size() + 2)});
    file.insert(file.begin() + 2, exif.begin(), exif.end());
    return file;
}

/// Tag 0x0112, one 16-bit number.
Bytes orientationEntry(unsigned char value) {
    return {0x12, 0x01, 3, 0, 1, 0, 0, 0, value, 0, 0, 0};
}

TEST(Metadata, ReadsTheOrientation) {
    EXPECT_EQ(Metadata(jpegWithExif({orientationEntry(6)})).orientation(), 6);
    EXPECT_EQ(Metadata(jpegWithExif({orientationEntry(9)})).orientation(), 1);
    EXPECT_EQ(Metadata(jpegWithExif({})).orientation(), 1);
}

// A picture that stands upright would else be turned once more by whoever reads it.
TEST(Metadata, OfAnUprightPictureSaysSoEachTime) {
    for (const auto second : Bytes{6, 8}) {
        Metadata metadata(jpegWithExif({orientationEntry(6), orientationEntry(second)}));
        const Photo photo(3, 2, ChannelLayout::bgra);
        metadata.describe(photo);
        for (const Codec* codec : codecs()) {
            std::vector<std::string> notices;
            const Bytes file = metadata.addTo(codec->encode(photo, {}), notices);
            EXPECT_EQ(Metadata(file).orientation(), 1) << codec->name();
        }
    }
}

}  // namespace
