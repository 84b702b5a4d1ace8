// Picture files of any bytes, and files with metadata of any bytes: what can be read is written in
// every format and read again, with its metadata.

#include <fuzzer/FuzzedDataProvider.h>
#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "codecs/Codec.h"
#include "codecs/Metadata.h"
#include "pictures/Orientation.h"
#include "support/Finding.h"
#include "text/Failure.h"

// A few bytes may claim a picture of gigabytes. While an input is tried, memory is short long
// before that, which programs must bear anyway.
namespace {
constexpr std::size_t largestAllocation = std::size_t{1} << 20;
bool isMemoryShort = false;

void* allocate(std::size_t size) noexcept {
    return isMemoryShort && size > largestAllocation ? nullptr : std::malloc(size);
}

class ShortMemory {
public:
    ShortMemory() { isMemoryShort = true; }
    ~ShortMemory() { isMemoryShort = false; }
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;
};
}  // namespace

void* operator new(std::size_t size) {
    if (void* const memory = allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

// For the codecs' own libraries.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64";
}

namespace {

using namespace keladjust::app;
using keladjust::fuzz::finding;

std::string nameOf(const Codec& codec) {
    return std::string(codec.name());
}

/// The smallest JPEG with a segment of any content behind its start.
Bytes jpegWithSegment(FuzzedDataProvider& input) {
    static const Bytes plain = jpegCodec().encode(Photo(2, 3, ChannelLayout::bgra), {});
    constexpr unsigned char app1 = 0xE1;
    constexpr unsigned char app2 = 0xE2;
    constexpr unsigned char app13 = 0xED;
    struct Kind {
        unsigned char marker;
        std::string start;
    };
    static const Kind kinds[] = {{app1, std::string("Exif\0\0", 6)},
                                 {app1, std::string("http://ns.adobe.com/xap/1.0/\0", 29)},
                                 {app2, std::string("ICC_PROFILE\0\1\1", 14)},
                                 {app13, std::string("Photoshop 3.0\0", 14)}};
    const Kind& kind = kinds[input.ConsumeIntegralInRange<std::size_t>(0, std::size(kinds) - 1)];
    std::vector<unsigned char> content = input.ConsumeRemainingBytes<unsigned char>();
    content.resize(std::min<std::size_t>(content.size(), 60000));
    const std::size_t length = 2 + kind.start.size() + content.size();

    Bytes file(plain.begin(), plain.begin() + 2);
    file.insert(file.end(), {0xFF, kind.marker, static_cast<unsigned char>(length >> 8),
                             static_cast<unsigned char>(length & 255)});
    file.insert(file.end(), kind.start.begin(), kind.start.end());
    file.insert(file.end(), content.begin(), content.end());
    file.insert(file.end(), plain.begin() + 2, plain.end());
    return file;
}

/// The picture of a file, or none if the file is refused.
std::optional<Photo> decoded(const Bytes& file) {
    try {
        return codecForFile(file).decode(file);
    } catch (const Failure&) {
    } catch (const std::bad_alloc&) {
    }
    return {};
}

bool haveSamePixels(const Photo& a, const Photo& b) {
    const std::size_t rowBytes = a.width() * a.bytesPerPixel();
    for (std::uint32_t y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.row(y), b.row(y), rowBytes) != 0) return false;
    }
    return true;
}

/// What was just written must be there again.
Photo readBack(const Codec& codec, const Bytes& file, const Photo& written) {
    if (codecForContent(file) != &codec) finding("%s: not recognised", nameOf(codec).c_str());
    try {
        Photo photo = codec.decode(file);
        if (photo.width() != written.width() || photo.height() != written.height()) {
            finding("%s: another size", nameOf(codec).c_str());
        }
        return photo;
    } catch (const Failure& failure) {
        finding("%s cannot read what it wrote: %s", nameOf(codec).c_str(), failure.what());
    }
}

void tryWriting(const Codec& codec, const Photo& photo, const Metadata& metadata,
                const EncodeOptions& options) {
    Bytes encoded;
    try {
        encoded = codec.encode(photo, options);
    } catch (const Failure&) {
        return;  // more than the format holds
    }
    const Photo again = readBack(codec, encoded, photo);
    const bool isExact = &codec == &pngCodec() || &codec == &tiffCodec();
    if (isExact && (again.layout() != photo.layout() || again.hasAlpha != photo.hasAlpha ||
                    !haveSamePixels(again, photo))) {
        finding("%s: other pixels", nameOf(codec).c_str());
    }

    std::vector<std::string> notices;
    const Bytes described = metadata.addTo(encoded, notices);
    const Photo withMetadata = readBack(codec, described, photo);
    if (withMetadata.layout() != again.layout() || !haveSamePixels(withMetadata, again)) {
        finding("%s: other pixels with metadata", nameOf(codec).c_str());
    }
    const int orientation = Metadata(described).orientation();
    if (orientation != 1) {
        finding("%s: an upright picture is said to lie (%d)", nameOf(codec).c_str(), orientation);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto choice = input.ConsumeIntegral<std::uint8_t>();
    EncodeOptions options;
    options.quality = input.ConsumeIntegralInRange(1, 100);
    options.lossless = input.ConsumeBool();
    const Codec& target = *codecs()[choice % codecs().size()];
    const bool isFile = choice < 192;
    const Bytes file =
        isFile ? input.ConsumeRemainingBytes<unsigned char>() : jpegWithSegment(input);

    const ShortMemory shortMemory;
    std::optional<Photo> photo = decoded(file);
    if (!photo) return 0;
    try {
        Metadata metadata(file);
        const Photo upright = keladjust::app::upright(std::move(*photo), metadata.orientation());
        metadata.describe(upright);
        tryWriting(target, upright, metadata, options);
    } catch (const std::bad_alloc&) {
        // The same as for the file.
    }
    return 0;
}
