#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>

#include "codecs/Codec.h"
#include "codecs/Metadata.h"
#include "codecs/blocks/MetadataBlocks.h"
#include "codecs/blocks/TiffDirectory.h"
#include "codecs/blocks/XmpText.h"
#include "platform/AllocationWatch.h"

namespace keladjust::app {

// Blocks are kept as they are, but for what would be a lie about the picture that is written: how
// it lies, its size, and its thumbnail.
struct Metadata::Content {
    MetadataBlocks blocks;
    std::vector<std::string> notices;
};

namespace {

struct Format {
    const Codec& codec;
    MetadataBlocks (*blocks)(std::span<const unsigned char>);
    Bytes (*withBlocks)(const Bytes&, const MetadataBlocks&, std::vector<std::string>&);
};

const Format& formatOf(std::span<const unsigned char> file) {
    static const std::array<Format, 4> all = {{{jpegCodec(), jpegBlocks, withJpegBlocks},
                                               {pngCodec(), pngBlocks, withPngBlocks},
                                               {tiffCodec(), tiffBlocks, withTiffBlocks},
                                               {webpCodec(), webpBlocks, withWebPBlocks}}};
    for (const Format& format : all) {
        if (format.codec.recognises(file)) return format;
    }
    throw std::runtime_error("the file is of no format that is known");
}

std::string notKept(const std::exception& error) {
    return std::string("metadata is not kept: ") + error.what();
}

/// The pixels of a thumbnail, wherever the entries say they are, go too: they would show what has
/// been cut or painted over.
void blank(Bytes& exif, const TiffStructure& structure, std::uint16_t startTag,
           std::uint16_t lengthTag) {
    const auto numberOf = [&](std::uint16_t tag) -> std::size_t {
        const auto entry = std::ranges::find(structure.second, tag, &TiffEntry::tag);
        return entry == structure.second.end() ? 0 : numberIn(*entry, structure.order);
    };
    const std::size_t start = std::min(numberOf(startTag), exif.size());
    const std::size_t length = std::min(numberOf(lengthTag), exif.size() - start);
    std::fill_n(exif.begin() + static_cast<std::ptrdiff_t>(start), length, 0);
}

void describeExif(Bytes& exif, const Photo& photo) {
    const TiffStructure structure(exif);
    if (structure.nextLink != 0) {
        constexpr std::uint16_t tagStrips = 0x0111;
        constexpr std::uint16_t tagStripLengths = 0x0117;
        blank(exif, structure, tagThumbnail, tagThumbnailLength);
        blank(exif, structure, tagStrips, tagStripLengths);
        put32(exif, structure.nextLink, 0, structure.order);
    }
    // Damaged blocks have the same tag more than once, and readers differ in which one counts.
    const auto replace = [&](const TiffDirectory& directory, std::uint16_t tag,
                             std::uint32_t value) {
        for (const TiffEntry& entry : directory) {
            if (entry.tag != tag) continue;
            const bool fits16 = tag == tagOrientation;
            put16(exif, entry.record + 2, fits16 ? typeShort : typeLong, structure.order);
            put32(exif, entry.record + 4, 1, structure.order);
            put32(exif, entry.record + 8, 0, structure.order);
            if (fits16) {
                put16(exif, entry.record + 8, static_cast<std::uint16_t>(value), structure.order);
            } else {
                put32(exif, entry.record + 8, value, structure.order);
            }
        }
    };
    replace(structure.first, tagOrientation, 1);
    replace(structure.first, tagImageWidth, photo.width());
    replace(structure.first, tagImageLength, photo.height());
    for (const TiffEntry& entry : structure.first) {
        replace(entry.directory, tagPixelXDimension, photo.width());
        replace(entry.directory, tagPixelYDimension, photo.height());
    }
}

void describeXmp(Bytes& bytes, const Photo& photo) {
    std::string xmp(bytes.begin(), bytes.end());
    replaceXmpNumber(xmp, "tiff:Orientation", 1);
    replaceXmpNumber(xmp, "tiff:ImageWidth", photo.width());
    replaceXmpNumber(xmp, "tiff:ImageLength", photo.height());
    replaceXmpNumber(xmp, "exif:PixelXDimension", photo.width());
    replaceXmpNumber(xmp, "exif:PixelYDimension", photo.height());
    removeXmpElement(xmp, "xmp:Thumbnails");
    bytes.assign(xmp.begin(), xmp.end());
}

/// A profile names, in four letters from its 16th byte on, the kind of pixel it is for.
bool profileFits(const Bytes& profile, ChannelLayout layout) {
    return profile.size() >= 20 &&
           std::memcmp(profile.data() + 16, layout == ChannelLayout::grey ? "GRAY" : "RGB ", 4) ==
               0;
}

}  // namespace

Metadata::Metadata() : content_(std::make_unique<Content>()) {}

Metadata::Metadata(std::span<const unsigned char> file) : Metadata() {
    const platform::AllocationWatch watch;
    try {
        content_->blocks = formatOf(file).blocks(file);
    } catch (const std::runtime_error& error) {
        watch.throwIfOneFailed();
        content_->notices.push_back(notKept(error));
    }
}

Metadata::~Metadata() = default;
Metadata::Metadata(Metadata&&) noexcept = default;
Metadata& Metadata::operator=(Metadata&&) noexcept = default;

int Metadata::orientation() const {
    const TiffStructure structure(content_->blocks.exif);
    const auto entry = std::ranges::find(structure.first, tagOrientation, &TiffEntry::tag);
    if (entry == structure.first.end()) return 1;
    const std::uint32_t value = numberIn(*entry, structure.order);
    return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
}

void Metadata::describe(const Photo& photo) {
    MetadataBlocks& blocks = content_->blocks;
    describeExif(blocks.exif, photo);
    describeXmp(blocks.xmp, photo);
    if (!blocks.profile.empty() && !profileFits(blocks.profile, photo.layout())) {
        blocks.profile.clear();
        content_->notices.emplace_back("the colour profile does not fit the pixels any more");
    }
}

Metadata Metadata::colourOnly() const {
    Metadata copy;
    copy.content_->blocks.profile = content_->blocks.profile;
    return copy;
}

Bytes Metadata::addTo(Bytes encoded, std::vector<std::string>& notices) const {
    const MetadataBlocks& blocks = content_->blocks;
    if (blocks.exif.empty() && blocks.xmp.empty() && blocks.resources.empty() &&
        blocks.profile.empty() && blocks.text.empty()) {
        return encoded;
    }
    const platform::AllocationWatch watch;
    try {
        return formatOf(encoded).withBlocks(encoded, blocks, notices);
    } catch (const std::exception& error) {
        watch.throwIfOneFailed();
        if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) throw;
        notices.push_back(notKept(error));
        return encoded;
    }
}

const std::vector<std::string>& Metadata::notices() const {
    return content_->notices;
}

}  // namespace keladjust::app
