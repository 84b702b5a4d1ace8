#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "codecs/blocks/MetadataBlocks.h"
#include "codecs/blocks/TiffDirectory.h"

namespace keladjust::app {

namespace {

/// Tags of the first directory that tell how the pixels lie in the file they came from, or that are
/// blocks of their own. In any other file they would be lies.
bool describesTheFile(const TiffEntry& entry) {
    constexpr std::array<std::uint16_t, 43> tags = {
        0x00fe, 0x00ff, 0x0100, 0x0101, 0x0102,  0x0103,       0x0106,    0x0107, 0x010a,
        0x0111, 0x0115, 0x0116, 0x0117, 0x0118,  0x0119,       0x011c,    0x0122, 0x0123,
        0x0124, 0x0125, 0x013d, 0x0140, 0x0141,  0x0142,       0x0143,    0x0144, 0x0145,
        0x014a, 0x0152, 0x0153, 0x0154, 0x0155,  0x0156,       0x015b,    0x0200, 0x0201,
        0x0202, 0x0212, 0x0214, tagXmp, tagIptc, tagResources, tagProfile};
    return std::ranges::find(tags, entry.tag) != tags.end();
}

Bytes valueOf(const TiffDirectory& directory, std::uint16_t tag) {
    const auto entry = std::ranges::find(directory, tag, &TiffEntry::tag);
    return entry == directory.end() ? Bytes() : entry->value;
}

/// The directory as a block of its own.
Bytes blockOf(TiffDirectory directory, ByteOrder order) {
    const std::string_view start =
        order == ByteOrder::little ? std::string_view("II*\0", 4) : std::string_view("MM\0*", 4);
    Bytes block(start.begin(), start.end());
    block.resize(8);
    put32(block, 4, 8, order);
    append(block, std::move(directory), order);
    return block;
}

/// IPTC as the resource that it is elsewhere: "8BIM", number 0x0404, no name, size.
Bytes resourceOf(const Bytes& iptc) {
    constexpr std::string_view start("8BIM\4\4\0\0", 8);
    Bytes resource(start.begin(), start.end());
    resource.resize(12);
    put32(resource, 8, static_cast<std::uint32_t>(iptc.size()), ByteOrder::big);
    resource.insert(resource.end(), iptc.begin(), iptc.end());
    resource.resize(resource.size() + resource.size() % 2);
    return resource;
}

}  // namespace

MetadataBlocks tiffBlocks(std::span<const unsigned char> file) {
    TiffStructure structure(file);
    if (structure.first.empty()) throw std::runtime_error("a kind of TIFF that is not understood");
    MetadataBlocks blocks;
    blocks.xmp = valueOf(structure.first, tagXmp);
    blocks.profile = valueOf(structure.first, tagProfile);
    blocks.resources = valueOf(structure.first, tagResources);
    if (blocks.resources.empty()) {
        const Bytes iptc = valueOf(structure.first, tagIptc);
        if (!iptc.empty()) blocks.resources = resourceOf(iptc);
    }
    std::erase_if(structure.first, describesTheFile);
    if (!structure.first.empty()) {
        blocks.exif = blockOf(std::move(structure.first), structure.order);
    }
    return blocks;
}

Bytes withTiffBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                     std::vector<std::string>& notices) {
    const TiffStructure structure(encoded);
    if (structure.first.empty()) throw std::runtime_error("the TIFF file is too large for it");
    TiffDirectory directory = structure.first;
    const auto add = [&](TiffEntry entry) {
        if (entry.value.empty() || std::ranges::find(structure.first, entry.tag, &TiffEntry::tag) !=
                                       structure.first.end()) {
            return;
        }
        directory.push_back(std::move(entry));
    };
    TiffStructure exif(blocks.exif);
    std::erase_if(exif.first, describesTheFile);
    for (TiffEntry& entry : exif.first) {
        if (exif.order != structure.order) swapNumbers(entry);
        add(std::move(entry));
    }
    add({.tag = tagXmp, .type = typeByte, .value = blocks.xmp, .directory = {}});
    add({.tag = tagProfile, .type = typeUndefined, .value = blocks.profile, .directory = {}});
    add({.tag = tagResources, .type = typeByte, .value = blocks.resources, .directory = {}});
    if (!blocks.text.empty()) {
        notices.emplace_back("the comment is not kept: this build writes none into TIFF");
    }
    Bytes file = encoded;
    const std::uint32_t start = append(file, std::move(directory), structure.order);
    put32(file, 4, start, structure.order);
    return file;
}

}  // namespace keladjust::app
