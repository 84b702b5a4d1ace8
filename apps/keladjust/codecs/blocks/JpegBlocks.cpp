#include <algorithm>
#include <map>
#include <string_view>

#include "codecs/blocks/MetadataBlocks.h"

namespace keladjust::app {

namespace {

enum Marker : unsigned char {
    markerStart = 0xD8,
    markerEnd = 0xD9,
    markerScan = 0xDA,
    markerApp0 = 0xE0,
    markerApp1 = 0xE1,
    markerApp2 = 0xE2,
    markerApp13 = 0xED,
    markerComment = 0xFE,
};

// What such segments begin with.
constexpr std::string_view exifName("Exif\0\0", 6);
constexpr std::string_view xmpName("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr std::string_view resourcesName("Photoshop 3.0\0", 14);
constexpr std::string_view profileName("ICC_PROFILE\0", 12);

/// A segment counts its bytes, those of the number included, in 16 bits.
constexpr std::size_t largestSegment = 65533;

struct Segment {
    unsigned char marker;
    std::span<const unsigned char> content;
    std::size_t end;
};

/// The segments from behind the start of the file up to the picture, or to where it is damaged.
std::vector<Segment> segmentsOf(std::span<const unsigned char> file) {
    std::vector<Segment> segments;
    std::size_t position = 2;
    while (position + 4 <= file.size() && file[position] == 0xFF) {
        const unsigned char marker = file[position + 1];
        if (marker == 0xFF) {  // before a marker there may be any number of these
            ++position;
            continue;
        }
        if (marker == markerScan || marker == markerEnd || marker == markerStart) break;
        const std::size_t size = std::size_t{file[position + 2]} << 8 | file[position + 3];
        if (size < 2 || size > file.size() - position - 2) break;
        segments.push_back({marker, file.subspan(position + 4, size - 2), position + 2 + size});
        position += 2 + size;
    }
    return segments;
}

bool takeName(std::span<const unsigned char>& content, std::string_view name) {
    if (content.size() < name.size() ||
        !std::equal(name.begin(), name.end(), content.begin(),
                    [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; })) {
        return false;
    }
    content = content.subspan(name.size());
    return true;
}

void add(Bytes& bytes, std::span<const unsigned char> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void addSegment(Bytes& bytes, Marker marker, std::string_view name,
                std::span<const unsigned char> content) {
    const std::size_t size = 2 + name.size() + content.size();
    bytes.insert(bytes.end(), {0xFF, marker, static_cast<unsigned char>(size >> 8),
                               static_cast<unsigned char>(size)});
    bytes.insert(bytes.end(), name.begin(), name.end());
    add(bytes, content);
}

/// One segment, if it fits into one.
void addWhole(Bytes& bytes, Marker marker, std::string_view name, const Bytes& content,
              std::string_view what, std::vector<std::string>& notices) {
    if (content.empty()) return;
    if (name.size() + content.size() > largestSegment) {
        notices.push_back(std::string(what) + " is not kept: it is too long for JPEG");
        return;
    }
    addSegment(bytes, marker, name, content);
}

/// As many segments as it takes, each of which begins with `name`.
void addInParts(Bytes& bytes, Marker marker, std::string_view name,
                std::span<const unsigned char> content) {
    while (!content.empty()) {
        const std::size_t size = std::min(content.size(), largestSegment - name.size());
        addSegment(bytes, marker, name, content.first(size));
        content = content.subspan(size);
    }
}

/// A profile's parts say which of how many they are.
void addProfile(Bytes& bytes, std::span<const unsigned char> profile,
                std::vector<std::string>& notices) {
    const std::size_t partSize = largestSegment - profileName.size() - 2;
    const std::size_t count = (profile.size() + partSize - 1) / partSize;
    if (count > 255) {
        notices.emplace_back("the colour profile is not kept: it is too long for JPEG");
        return;
    }
    for (std::size_t part = 1; part <= count; ++part) {
        const std::size_t size = std::min(profile.size(), partSize);
        std::string name(profileName);
        name += static_cast<char>(part);
        name += static_cast<char>(count);
        addSegment(bytes, markerApp2, name, profile.first(size));
        profile = profile.subspan(size);
    }
}

}  // namespace

MetadataBlocks jpegBlocks(std::span<const unsigned char> file) {
    MetadataBlocks blocks;
    std::map<unsigned char, std::span<const unsigned char>> profileParts;
    for (const Segment& segment : segmentsOf(file)) {
        auto content = segment.content;
        if (segment.marker == markerApp1) {
            if (blocks.exif.empty() && takeName(content, exifName)) {
                blocks.exif.assign(content.begin(), content.end());
            } else if (blocks.xmp.empty() && takeName(content, xmpName)) {
                blocks.xmp.assign(content.begin(), content.end());
            }
        } else if (segment.marker == markerApp2) {
            if (takeName(content, profileName) && content.size() > 2) {
                profileParts.try_emplace(content[0], content.subspan(2));
            }
        } else if (segment.marker == markerApp13) {
            if (takeName(content, resourcesName)) add(blocks.resources, content);
        } else if (segment.marker == markerComment && blocks.text.empty()) {
            blocks.text.assign(content.begin(), content.end());
        }
    }
    for (const auto& [number, part] : profileParts) add(blocks.profile, part);
    return blocks;
}

Bytes withJpegBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                     std::vector<std::string>& notices) {
    // JFIF's own segment has to come first.
    const std::vector<Segment> segments = segmentsOf(encoded);
    const bool hasJfif = !segments.empty() && segments.front().marker == markerApp0;
    const std::size_t start = hasJfif ? segments.front().end : 2;

    Bytes file(encoded.begin(), encoded.begin() + static_cast<std::ptrdiff_t>(start));
    addWhole(file, markerApp1, exifName, blocks.exif, "EXIF", notices);
    addWhole(file, markerApp1, xmpName, blocks.xmp, "XMP", notices);
    addProfile(file, blocks.profile, notices);
    addInParts(file, markerApp13, resourcesName, blocks.resources);
    addInParts(file, markerComment, "",
               {reinterpret_cast<const unsigned char*>(blocks.text.data()), blocks.text.size()});
    add(file, std::span(encoded).subspan(start));
    return file;
}

}  // namespace keladjust::app
