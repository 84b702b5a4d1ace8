#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <string_view>

#include "codecs/blocks/MetadataBlocks.h"

namespace keladjust::app {

namespace {

constexpr std::size_t signatureLength = 8;
constexpr std::size_t chunkFrame = 12;  // size, name, check sum
constexpr std::size_t headerEnd = signatureLength + chunkFrame + 13;

constexpr std::string_view xmpKeyword = "XML:com.adobe.xmp";
constexpr std::string_view rawKeyword = "Raw profile type ";

/// No metadata is longer; what unpacks to more is made to fill memory.
constexpr std::size_t largestUnpacked = std::size_t{16} << 20;

std::string_view textOf(std::span<const unsigned char> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const unsigned char> bytesOf(std::string_view text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// What zlib has packed; nothing if it is damaged or unpacks to too much.
Bytes unpacked(std::span<const unsigned char> packed) {
    Bytes result;
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) throw std::bad_alloc();
    // zlib's interface predates const; it does not write to its input.
    stream.next_in = const_cast<unsigned char*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    int state = Z_OK;
    try {
        std::array<unsigned char, 1 << 14> part;
        while (state == Z_OK && result.size() <= largestUnpacked) {
            stream.next_out = part.data();
            stream.avail_out = static_cast<uInt>(part.size());
            state = inflate(&stream, Z_NO_FLUSH);
            result.insert(result.end(), part.begin(), part.end() - stream.avail_out);
        }
    } catch (...) {
        inflateEnd(&stream);
        throw;
    }
    inflateEnd(&stream);
    if (state == Z_MEM_ERROR) throw std::bad_alloc();
    if (state != Z_STREAM_END || result.size() > largestUnpacked) result.clear();
    return result;
}

Bytes packed(std::span<const unsigned char> bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    Bytes result(size);
    if (compress(result.data(), &size, bytes.data(), static_cast<uLong>(bytes.size())) != Z_OK) {
        throw std::bad_alloc();
    }
    result.resize(size);
    return result;
}

/// What stands before the next zero, which goes with it.
std::string_view takeText(std::span<const unsigned char>& content) {
    const auto zero = std::ranges::find(content, static_cast<unsigned char>(0));
    const auto size = static_cast<std::size_t>(zero - content.begin());
    const std::string_view text = textOf(content.first(size));
    content = content.subspan(std::min(size + 1, content.size()));
    return text;
}

int hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

/// A block in hexadecimal digits, as ImageMagick came to write them: a name and a size, each in a
/// line of its own, come first.
Bytes fromRawText(std::string_view text) {
    Bytes bytes;
    for (int line = 0; line < 3; ++line) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return bytes;
        text.remove_prefix(end + 1);
    }
    int high = -1;
    for (const char letter : text) {
        const int digit = hexDigit(letter);
        if (digit < 0) continue;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<unsigned char>(high << 4 | digit));
            high = -1;
        }
    }
    return bytes;
}

std::string rawText(std::string_view name, std::span<const unsigned char> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr std::size_t perLine = 36;
    std::string size = std::to_string(bytes.size());
    size.insert(0, 8 - std::min<std::size_t>(size.size(), 8), ' ');
    std::string text = '\n' + std::string(name) + '\n' + size;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (index % perLine == 0) text += '\n';
        text += digits[bytes[index] >> 4];
        text += digits[bytes[index] & 15];
    }
    return text + '\n';
}

void takeRaw(MetadataBlocks& blocks, std::string_view name, std::string_view text) {
    constexpr std::string_view exifStart("Exif\0\0", 6);
    if (name == "exif" || name == "APP1") {
        Bytes exif = fromRawText(text);
        if (textOf(exif).starts_with(exifStart)) exif.erase(exif.begin(), exif.begin() + 6);
        if (blocks.exif.empty()) blocks.exif = std::move(exif);
    } else if ((name == "iptc" || name == "8bim") && blocks.resources.empty()) {
        blocks.resources = fromRawText(text);
    } else if (name == "xmp" && blocks.xmp.empty()) {
        blocks.xmp = fromRawText(text);
    }
}

void takeText(MetadataBlocks& blocks, std::string_view type,
              std::span<const unsigned char> content) {
    const std::string_view keyword = takeText(content);
    const bool international = type == "iTXt";
    bool isPacked = type == "zTXt";
    if (international) {
        if (content.size() < 2) return;
        isPacked = content[0] != 0;
        content = content.subspan(2);
        takeText(content);  // language
        takeText(content);  // the keyword in it
    } else if (isPacked) {
        if (content.empty()) return;
        content = content.subspan(1);  // the method, of which there is one
    }
    if (keyword != xmpKeyword && !keyword.starts_with(rawKeyword)) return;
    const Bytes plain = isPacked ? unpacked(content) : Bytes(content.begin(), content.end());
    if (keyword == xmpKeyword) {
        if (blocks.xmp.empty()) blocks.xmp = plain;
    } else {
        takeRaw(blocks, keyword.substr(rawKeyword.size()), textOf(plain));
    }
}

void takeChunk(MetadataBlocks& blocks, std::string_view type,
               std::span<const unsigned char> content) {
    if (type == "eXIf") {
        blocks.exif.assign(content.begin(), content.end());
    } else if (type == "iCCP") {
        takeText(content);  // the profile's name
        if (!content.empty()) blocks.profile = unpacked(content.subspan(1));
    } else if (type == "iTXt" || type == "tEXt" || type == "zTXt") {
        takeText(blocks, type, content);
    }
}

std::size_t number(std::span<const unsigned char> bytes) {
    std::size_t value = 0;
    for (std::size_t index = 0; index < 4; ++index) value = value << 8 | bytes[index];
    return value;
}

void putNumber(Bytes& bytes, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<unsigned char>(value >> shift));
    }
}

void addChunk(Bytes& bytes, std::string_view type, std::string_view start,
              std::span<const unsigned char> content) {
    putNumber(bytes, start.size() + content.size());
    const std::size_t checked = bytes.size();
    for (const auto part : {bytesOf(type), bytesOf(start), content}) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    putNumber(bytes, crc32(0, bytes.data() + checked, static_cast<uInt>(bytes.size() - checked)));
}

}  // namespace

MetadataBlocks pngBlocks(std::span<const unsigned char> file) {
    MetadataBlocks blocks;
    std::size_t position = signatureLength;
    while (position + chunkFrame <= file.size()) {
        const std::size_t size = number(file.subspan(position));
        if (size > file.size() - position - chunkFrame) break;
        takeChunk(blocks, textOf(file.subspan(position + 4, 4)), file.subspan(position + 8, size));
        position += chunkFrame + size;
    }
    return blocks;
}

Bytes withPngBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                    std::vector<std::string>& notices) {
    if (encoded.size() < headerEnd) throw std::runtime_error("the PNG file has no header");
    Bytes file(encoded.begin(), encoded.begin() + headerEnd);
    if (!blocks.profile.empty()) {
        addChunk(file, "iCCP", std::string_view("ICC profile\0\0", 13), packed(blocks.profile));
    }
    if (!blocks.exif.empty()) addChunk(file, "eXIf", "", blocks.exif);
    if (!blocks.xmp.empty()) {
        addChunk(file, "iTXt", std::string(xmpKeyword) + std::string(5, '\0'), blocks.xmp);
    }
    if (!blocks.resources.empty()) {
        const std::string text = rawText("iptc", blocks.resources);
        addChunk(file, "zTXt", std::string(rawKeyword) + "iptc" + std::string(2, '\0'),
                 packed(bytesOf(text)));
    }
    if (!blocks.text.empty()) {
        notices.emplace_back("the comment is not kept: this build writes none into PNG");
    }
    file.insert(file.end(), encoded.begin() + headerEnd, encoded.end());
    return file;
}

}  // namespace keladjust::app
