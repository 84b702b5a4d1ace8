#include "support/HostilePictures.h"

#include <zlib.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace keladjust::test {

namespace {

using app::Bytes;

void append(Bytes& target, const Bytes& bytes) {
    for (const unsigned char byte : bytes) target.push_back(byte);
}

void append(Bytes& target, std::string_view text) {
    for (const char letter : text) target.push_back(static_cast<unsigned char>(letter));
}

Bytes bigEndian(std::uint64_t value, int size) {
    Bytes bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<unsigned char>(value >> shift));
    }
    return bytes;
}

Bytes littleEndian(std::uint64_t value, int size) {
    const Bytes bytes = bigEndian(value, size);
    return {bytes.rbegin(), bytes.rend()};
}

// ---- JPEG

constexpr unsigned char baseline = 0xC0;
constexpr unsigned char progressive = 0xC2;
constexpr unsigned char arithmetic = 0xC9;
constexpr unsigned char arithmeticProgressive = 0xCA;

Bytes segment(unsigned char marker, const Bytes& content) {
    Bytes bytes = {0xFF, marker};
    append(bytes, bigEndian(content.size() + 2, 2));
    append(bytes, content);
    return bytes;
}

Bytes quantization() {
    Bytes table(65, 1);
    table[0] = 0;  // its number
    return segment(0xDB, table);
}

Bytes frame(unsigned char kind, std::uint32_t width, std::uint32_t height, int components,
            unsigned char sampling = 0x11) {
    Bytes content = {8};
    append(content, bigEndian(height, 2));
    append(content, bigEndian(width, 2));
    content.push_back(static_cast<unsigned char>(components));
    for (int index = 1; index <= components; ++index) {
        content.push_back(static_cast<unsigned char>(index));
        content.push_back(index == 1 ? sampling : static_cast<unsigned char>(0x11));
        content.push_back(0);
    }
    return segment(kind, content);
}

/// Of the coefficients from `first` to `last`.
Bytes scan(int components, unsigned char first, unsigned char last) {
    Bytes content = {static_cast<unsigned char>(components)};
    for (int index = 1; index <= components; ++index) {
        content.push_back(static_cast<unsigned char>(index));
        content.push_back(0);
    }
    append(content, Bytes{first, last, 0});
    return segment(0xDA, content);
}

Bytes jpeg(const std::vector<Bytes>& segments) {
    Bytes bytes = {0xFF, 0xD8};
    for (const Bytes& segment : segments) append(bytes, segment);
    append(bytes, Bytes{0xFF, 0xD9});
    return bytes;
}

/// A picture of one grey: arithmetic coding needs no byte for that, however large it is.
Bytes flatJpeg(std::uint32_t side, int components, unsigned char kind = arithmetic) {
    const unsigned char last = kind == arithmetic ? 63 : 0;
    return jpeg({quantization(), frame(kind, side, side, components), scan(components, 0, last)});
}

/// Every scan goes over 1000 x 1000 pixels and takes 12 bytes.
Bytes jpegOfManyScans(int scans) {
    constexpr std::uint32_t side = 1000;
    constexpr std::size_t blocks = (side / 8) * (side / 8);
    // One code each, of one bit: for DC "no difference", for AC "the next 2^14 blocks and more end
    // here", the number of which follows in 14 bits.
    Bytes dcTable(18, 0), acTable(18, 0);
    dcTable[1] = acTable[1] = 1;
    acTable[0] = 0x10;
    acTable[17] = 0xE0;
    std::vector<Bytes> segments = {quantization(),         frame(progressive, side, side, 1),
                                   segment(0xC4, dcTable), segment(0xC4, acTable),
                                   scan(1, 0, 0),          Bytes((blocks + 7) / 8, 0)};
    for (int index = 0; index < scans; ++index) {
        const auto coefficient = static_cast<unsigned char>(1 + index % 63);
        segments.push_back(scan(1, coefficient, coefficient));
        segments.push_back({0x00, 0x00});
    }
    return jpeg(segments);
}

/// An EXIF block whose only entry has `count` values at an offset far behind the end.
Bytes lyingExif(std::uint32_t count) {
    Bytes block;
    append(block, std::string_view("Exif\0\0II*\0", 10));
    append(block, littleEndian(8, 4));
    append(block, littleEndian(1, 2));
    append(block, littleEndian(0x927C, 2));  // a maker's note
    append(block, littleEndian(7, 2));
    append(block, littleEndian(count, 4));
    append(block, littleEndian(0xFFFFFF00, 4));
    append(block, littleEndian(8, 4));  // the next directory is this one
    return block;
}

// ---- PNG

Bytes chunk(std::string_view name, const Bytes& content) {
    Bytes named;
    append(named, name);
    append(named, content);
    Bytes bytes = bigEndian(content.size(), 4);
    append(bytes, named);
    append(bytes, bigEndian(crc32(0, named.data(), static_cast<uInt>(named.size())), 4));
    return bytes;
}

/// The chunks stand before the pixels, which are grey and `packed`.
Bytes png(std::uint32_t width, std::uint32_t height, const Bytes& packed,
          const std::vector<Bytes>& chunks = {}, unsigned char interlaced = 0) {
    Bytes bytes;
    append(bytes, "\x89PNG\r\n\x1a\n");
    Bytes header = bigEndian(width, 4);
    append(header, bigEndian(height, 4));
    append(header, Bytes{8, 0, 0, 0, interlaced});
    append(bytes, chunk("IHDR", header));
    for (const Bytes& extra : chunks) append(bytes, extra);
    append(bytes, chunk("IDAT", packed));
    append(bytes, chunk("IEND", {}));
    return bytes;
}

Bytes deflated(const Bytes& content) {
    const auto length = static_cast<uLong>(content.size());
    uLongf size = compressBound(length);
    Bytes bytes(size);
    compress2(bytes.data(), &size, content.data(), length, Z_BEST_COMPRESSION);
    bytes.resize(size);
    return bytes;
}

Bytes onePixel() {
    return deflated({0, 128});
}

/// A text, or profile, that is `size` letters long when it is unpacked.
Bytes packedChunk(std::string_view name, std::string_view start, std::size_t size) {
    Bytes content;
    append(content, start);
    append(content, deflated(Bytes(size, 'a')));
    return chunk(name, content);
}

// ---- TIFF

struct Entry {
    std::uint16_t tag;
    std::uint32_t value;
};

constexpr std::uint16_t tileWidth = 322;

/// Values of 32 bits throughout, one each; `data` lies behind the directory.
Bytes tiff(std::vector<Entry> entries, const Bytes& data = {}) {
    const auto dataStart = static_cast<std::uint32_t>(8 + 2 + 12 * (entries.size() + 1) + 4);
    bool tiled = false;
    for (const Entry& entry : entries) tiled = tiled || entry.tag == tileWidth;
    const Entry place{static_cast<std::uint16_t>(tiled ? 324 : 273), dataStart};
    auto next = entries.begin();
    while (next != entries.end() && next->tag < place.tag) ++next;
    entries.insert(next, place);

    Bytes bytes = {'I', 'I', 42, 0, 8, 0, 0, 0};
    append(bytes, littleEndian(entries.size(), 2));
    for (const Entry& entry : entries) {
        append(bytes, littleEndian(entry.tag, 2));
        append(bytes, littleEndian(4, 2));
        append(bytes, littleEndian(1, 4));
        append(bytes, littleEndian(entry.value, 4));
    }
    append(bytes, littleEndian(0, 4));
    append(bytes, data);
    return bytes;
}

/// Grey; compression 1 is none, 4 is that of fax machines, 5 is LZW.
Bytes greyTiff(std::uint32_t width, std::uint32_t height, std::uint32_t bits,
               std::uint32_t compression, const Bytes& data, std::uint32_t claimedBytes,
               std::uint32_t samples = 1) {
    return tiff({{256, width},
                 {257, height},
                 {258, bits},
                 {259, compression},
                 {262, 1},
                 {277, samples},
                 {278, height},
                 {279, claimedBytes}},
                data);
}

Bytes tiledTiff(std::uint32_t side, std::uint32_t compression) {
    return tiff({{256, 1},
                 {257, 1},
                 {258, 8},
                 {259, compression},
                 {262, 1},
                 {277, 1},
                 {tileWidth, side},
                 {323, side},
                 {325, 4}},
                {0x80, 0, 0, 0});
}

// ---- WebP

Bytes riff(const std::vector<Bytes>& chunks) {
    Bytes content;
    append(content, "WEBP");
    for (const Bytes& chunk : chunks) append(content, chunk);
    Bytes bytes;
    append(bytes, "RIFF");
    append(bytes, littleEndian(content.size(), 4));
    append(bytes, content);
    return bytes;
}

Bytes riffChunk(std::string_view name, Bytes content) {
    Bytes bytes;
    append(bytes, name);
    append(bytes, littleEndian(content.size(), 4));
    if (content.size() % 2 != 0) content.push_back(0);
    append(bytes, content);
    return bytes;
}

/// Lossless, of one colour: five codes of one symbol each, so that a pixel takes no bit.
Bytes flatWebP(std::uint32_t width, std::uint32_t height) {
    std::uint64_t bits = std::uint64_t{width - 1} | std::uint64_t{height - 1} << 14;
    Bytes content = {0x2F};
    append(content, littleEndian(bits, 4));
    // No transform, cache or groups; then five times "simple, one symbol, of one bit, 0".
    bits = 0;
    for (int code = 0; code < 5; ++code) bits |= std::uint64_t{1} << (3 + 4 * code);
    append(content, littleEndian(bits, 3));
    return riff({riffChunk("VP8L", content)});
}

Bytes extendedHeader(unsigned char flags, std::uint32_t width, std::uint32_t height) {
    Bytes content = {flags, 0, 0, 0};
    append(content, littleEndian(width - 1, 3));
    append(content, littleEndian(height - 1, 3));
    return riffChunk("VP8X", content);
}

Bytes lossyHeader(std::uint32_t width, std::uint32_t height) {
    Bytes content = {0x10, 0x02, 0x00, 0x9D, 0x01, 0x2A};  // a key frame that is shown
    append(content, littleEndian(width, 2));
    append(content, littleEndian(height, 2));
    content.resize(40, 0);
    return riffChunk("VP8 ", content);
}

}  // namespace

std::vector<HostilePicture> hostilePictures() {
    constexpr std::uint32_t most = 0xFFFFFFFF;
    constexpr std::size_t mega = 1'000'000;
    const Bytes black(24, 0);
    const std::vector<Bytes> texts(20, packedChunk("zTXt", {"Comment\0\0", 9}, 7 * mega));
    Bytes annotated = flatJpeg(16, 1);
    const Bytes exif = segment(0xE1, lyingExif(most));
    annotated.insert(annotated.begin() + 2, exif.begin(), exif.end());

    return {
        {"empty.jpg", jpeg({quantization(), frame(baseline, 65500, 65500, 3), scan(3, 0, 63)}),
         "too large (65500 x 65500 pixels; allowed are 268435456)"},
        {"flat.jpg", flatJpeg(16000, 1), "claims 16000 x 16000 pixels"},
        {"progressive.jpg", flatJpeg(16000, 3, arithmeticProgressive),
         "claims 16000 x 16000 pixels"},
        {"sampled.jpg",
         jpeg({quantization(), frame(progressive, 65500, 100, 4, 0x44), scan(1, 0, 0)}),
         "claims 65500 x 100 pixels"},
        {"scans.jpg", jpegOfManyScans(20'000), "more than 500 scans"},
        {"exif.jpg", annotated, ""},

        {"empty.png", png(16000, 16000, {0x78, 0x9C}), "claims 16000 x 16000 pixels"},
        {"wide.png", png(0x7FFFFFFF, 1, {0x78, 0x9C}), "too large (2147483647 x 1 pixels"},
        {"tall.png", png(1, 0x7FFFFFFF, {0x78, 0x9C}, {}, 1), "too large (1 x 2147483647 pixels"},
        {"texts.png", png(1, 1, onePixel(), texts), ""},
        {"profile.png", png(1, 1, onePixel(), {packedChunk("iCCP", {"x\0\0", 3}, 30 * mega)}), ""},
        {"xmp.png",
         png(1, 1, onePixel(),
             {packedChunk("iTXt", {"XML:com.adobe.xmp\0\1\0\0\0", 22}, 30 * mega)}),
         ""},
        {"exif.png", png(1, 1, onePixel(), {chunk("eXIf", lyingExif(most))}), ""},

        {"empty.tif", greyTiff(16000, 16000, 8, 1, {}, 0), "claims 16000 x 16000 pixels"},
        {"blank.tif", greyTiff(16000, 16000, 1, 4, black, 24), "claims 16000 x 16000 pixels"},
        {"wide.tif", greyTiff(most, 1, 8, 1, black, most), "too large (4294967295 x 1 pixels"},
        {"strips.tif",
         tiff({{256, 1}, {257, most}, {258, 8}, {259, 1}, {262, 1}, {277, 1}, {278, 1}, {279, 1}}),
         "TIFF"},
        {"bytes.tif", greyTiff(10, 10, 8, 1, black, most), "damaged, truncated or unusual TIFF"},
        {"packed.tif", greyTiff(10, 10, 8, 5, black, most), "damaged, truncated or unusual TIFF"},
        {"samples.tif", greyTiff(1000, 1, 8, 1, black, 24, 65535),
         "rows or tiles of 65535000 bytes"},
        {"tile.tif", tiledTiff(65520, 1), "rows or tiles of 4292870400 bytes"},
        {"packedtile.tif", tiledTiff(65520, 5), "rows or tiles of 4292870400 bytes"},

        {"flat.webp", flatWebP(16383, 16383), "a file of 28 bytes claims 16383 x 16383 pixels"},
        {"lossy.webp", riff({lossyHeader(16383, 16383)}), "claims 16383 x 16383 pixels"},
        {"canvas.webp", riff({extendedHeader(0, 1 << 24, 1 << 7), lossyHeader(16383, 16383)}),
         "WebP"},
        {"moving.webp", riff({extendedHeader(2, 16383, 16383)}), "an animated WebP"},
    };
}

std::vector<HostilePicture> fullestSmallPictures() {
    return {{"flat.jpg", flatJpeg(1250, 1), ""},
            {"progressive.jpg", flatJpeg(1300, 3, arithmeticProgressive), ""},
            {"flat.webp", flatWebP(670, 670), ""}};
}

}  // namespace keladjust::test
