#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string_view>

#include "codecs/Codec.h"
#include "codecs/Metadata.h"
#include "codecs/WebPContainer.h"
#include "files/AtomicFile.h"
#include "platform/AllocationWatch.h"

namespace keladjust::app {

struct Metadata::Content {
    Exiv2::ExifData exif;
    Exiv2::XmpData xmp;
    Exiv2::IptcData iptc;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian;  // camera makers' notes may depend on it
    std::string comment;
    Bytes profile;
    std::vector<std::string> notices;
};

namespace {

/// How often this thread has been short of memory in Exiv2; below zero: it is not there.
thread_local int shortages = -1;

/// What operator new does without memory. An exception that goes through the middle of Exiv2's XMP
/// part leaves that locked, and the next to come waits for ever; so there is a second try, and no
/// exception as long as little was asked for.
void onShortage() {
    if (shortages < 0) throw std::bad_alloc();
    if (++shortages == 1) return;
    constexpr std::size_t little = std::size_t{1} << 16;
    if (void* some = std::malloc(little)) {
        std::free(some);
        throw std::bad_alloc();
    }
    std::fputs("keladjust: not enough memory; close other programs\n", stderr);
    AtomicFile::abandonAll();
    std::_Exit(EXIT_FAILURE);
}

/// Exiv2's XMP part keeps state for the whole process, so one thread at a time works with it. That
/// costs little: metadata takes a fraction of the time of decoding and encoding.
class Exiv2Session {
public:
    /// @throws std::bad_alloc
    Exiv2Session() : lock_(mutex()) {
        std::set_new_handler(onShortage);
        static bool begun = false;
        static bool ready = false;
        if (!begun) {
            begun = true;  // once: what has come to nothing halfway cannot be begun anew
            Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
            shortages = 0;
            ready = initialize();
            shortages = -1;
        }
        if (!ready) throw std::bad_alloc();
        shortages = 0;
    }
    ~Exiv2Session() { shortages = -1; }
    Exiv2Session(const Exiv2Session&) = delete;
    Exiv2Session& operator=(const Exiv2Session&) = delete;

private:
    static bool initialize() {
        try {
            return Exiv2::XmpParser::initialize();
        } catch (...) {
            return false;
        }
    }

    static std::mutex& mutex() {
        static std::mutex one;
        return one;
    }
    std::lock_guard<std::mutex> lock_;
};

/// What `work` gives, done by one thread at a time.
///
/// @throws std::bad_alloc also where Exiv2 would go on without what it had no memory for
/// @throws std::exception whatever Exiv2 throws, which is of any type
template <class Work>
auto withExiv2(Work work) {
    const Exiv2Session session;
    const platform::AllocationWatch watch;
    try {
        auto result = work();
        watch.throwIfOneFailed();
        return result;
    } catch (const std::exception&) {
        watch.throwIfOneFailed();
        throw;
    } catch (...) {
        watch.throwIfOneFailed();
        throw std::runtime_error("XMP that cannot be understood");
    }
}

std::unique_ptr<Exiv2::Image> openImage(std::span<const unsigned char> file) {
    // Exiv2 counts in `long`, which has 32 bits under Windows.
    if (file.size() > static_cast<std::size_t>(std::numeric_limits<long>::max())) {
        throw std::length_error("the file is too large");
    }
    std::unique_ptr<Exiv2::Image> image(
        Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size())).release());
    image->readMetadata();
    return image;
}

// Tags of the first directory that tell how the pixels lie in the file they came from. They would
// be lies in any other file.
bool describesStorage(const Exiv2::Exifdatum& datum) {
    const std::string group = datum.groupName();
    constexpr std::array<std::string_view, 4> otherPictures = {"SubImage", "SubThumb", "Image2",
                                                               "Image3"};
    if (std::ranges::any_of(otherPictures,
                            [&](std::string_view other) { return group.starts_with(other); })) {
        return true;
    }
    if (group != "Image") return false;
    constexpr std::array<std::uint16_t, 40> tags = {
        0x00fe, 0x00ff, 0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x0107, 0x010a, 0x0111,
        0x0115, 0x0116, 0x0117, 0x0118, 0x0119, 0x011c, 0x0122, 0x0123, 0x0124, 0x0125,
        0x013d, 0x0140, 0x0141, 0x0142, 0x0143, 0x0144, 0x0145, 0x014a, 0x0152, 0x0153,
        0x0154, 0x0155, 0x0156, 0x015b, 0x0200, 0x0201, 0x0202, 0x0212, 0x0214, 0x8773};
    return std::ranges::find(tags, datum.tag()) != tags.end();
}

template <class Data>
void eraseIf(Data& data, bool (*unwanted)(const typename Data::iterator::value_type&)) {
    for (auto entry = data.begin(); entry != data.end();) {
        entry = unwanted(*entry) ? data.erase(entry) : std::next(entry);
    }
}

// Damaged files have the same tag more than once, and readers differ in which one counts.
template <class Data, class Value>
void replaceIfPresent(Data& data, std::string_view key, const Value& value) {
    for (auto& entry : data) {
        if (entry.key() == key) entry = value;
    }
}

/// A profile names, in four letters from its 16th byte on, the kind of pixel it is for.
bool profileFits(const Bytes& profile, ChannelLayout layout) {
    return profile.size() >= 20 &&
           std::memcmp(profile.data() + 16, layout == ChannelLayout::grey ? "GRAY" : "RGB ", 4) ==
               0;
}

bool canHold(const Exiv2::Image& image, Exiv2::MetadataId kind) {
    const Exiv2::AccessMode mode = image.checkMode(kind);
    return mode == Exiv2::amWrite || mode == Exiv2::amReadWrite;
}

Bytes addWithExiv2(const Bytes& encoded, const Metadata::Content& content) {
    const auto image = openImage(encoded);
    if (image->byteOrder() == Exiv2::invalidByteOrder) image->setByteOrder(content.byteOrder);
    if (canHold(*image, Exiv2::mdExif)) {
        // A TIFF's own layout is among these entries and must stay.
        Exiv2::ExifData exif = image->exifData();
        for (const Exiv2::Exifdatum& datum : content.exif) exif[datum.key()] = datum.value();
        image->setExifData(exif);
    }
    if (canHold(*image, Exiv2::mdXmp)) image->setXmpData(content.xmp);
    if (canHold(*image, Exiv2::mdIptc)) image->setIptcData(content.iptc);
    if (canHold(*image, Exiv2::mdComment)) image->setComment(content.comment);
    if (!content.profile.empty()) {
        Exiv2::DataBuf profile(content.profile.data(), static_cast<long>(content.profile.size()));
        image->setIccProfile(profile);
    }
    image->writeMetadata();
    Exiv2::BasicIo& io = image->io();
    const unsigned char* bytes = io.mmap();
    return Bytes(bytes, bytes + io.size());
}

// Exiv2 0.27 writes a wrong canvas size into a WebP file that gets its first metadata, and loses
// the colour profile. So it only makes the parts here.
Bytes addToWebP(const Bytes& encoded, const Metadata::Content& content) {
    Exiv2::Blob exif;
    Exiv2::ExifParser::encode(exif, content.byteOrder, content.exif);
    std::string xmp;
    if (!content.xmp.empty()) Exiv2::XmpParser::encode(xmp, content.xmp);
    return withWebPChunks(
        encoded,
        {content.profile, exif, {reinterpret_cast<const unsigned char*>(xmp.data()), xmp.size()}});
}

Metadata::Content contentOf(std::span<const unsigned char> file) {
    const auto image = openImage(file);
    Metadata::Content content;
    content.exif = image->exifData();
    content.xmp = image->xmpData();
    content.iptc = image->iptcData();
    if (image->byteOrder() != Exiv2::invalidByteOrder) content.byteOrder = image->byteOrder();
    content.comment = image->comment();
    if (image->iccProfileDefined()) {
        const Exiv2::DataBuf& profile = *image->iccProfile();
        content.profile.assign(profile.pData_, profile.pData_ + profile.size_);
    }
    eraseIf(content.exif, describesStorage);
    return content;
}

Metadata::Content described(Metadata::Content content, const Photo& photo) {
    Exiv2::ExifData& exif = content.exif;
    Exiv2::ExifThumb(exif).erase();
    replaceIfPresent(exif, "Exif.Image.Orientation", std::uint16_t{1});
    replaceIfPresent(exif, "Exif.Photo.PixelXDimension", photo.width());
    replaceIfPresent(exif, "Exif.Photo.PixelYDimension", photo.height());

    Exiv2::XmpData& xmp = content.xmp;
    const std::string width = std::to_string(photo.width());
    const std::string height = std::to_string(photo.height());
    replaceIfPresent(xmp, "Xmp.tiff.Orientation", std::string("1"));
    replaceIfPresent(xmp, "Xmp.tiff.ImageWidth", width);
    replaceIfPresent(xmp, "Xmp.tiff.ImageLength", height);
    replaceIfPresent(xmp, "Xmp.exif.PixelXDimension", width);
    replaceIfPresent(xmp, "Xmp.exif.PixelYDimension", height);
    eraseIf(xmp, [](const Exiv2::Xmpdatum& datum) {
        return datum.groupName() == "xmp" && datum.tagName().starts_with("Thumbnails");
    });
    return content;
}

}  // namespace

Metadata::Metadata() : content_(std::make_unique<Content>()) {}

Metadata::Metadata(std::span<const unsigned char> file) : Metadata() {
    try {
        *content_ = withExiv2([&] { return contentOf(file); });
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        // Exiv2's own errors, and what damaged entries provoke in the standard library.
        content_->notices.push_back(std::string("metadata is not kept: ") + error.what());
    }
}

Metadata::~Metadata() = default;
Metadata::Metadata(Metadata&&) noexcept = default;
Metadata& Metadata::operator=(Metadata&&) noexcept = default;

int Metadata::orientation() const {
    return withExiv2([&] {
        const auto entry = content_->exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
        if (entry == content_->exif.end() || entry->count() == 0) return 1;
        const long value = entry->toLong();
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    });
}

void Metadata::describe(const Photo& photo) {
    *content_ = withExiv2([&] { return described(std::move(*content_), photo); });
    if (!content_->profile.empty() && !profileFits(content_->profile, photo.layout())) {
        content_->profile.clear();
        content_->notices.emplace_back("the colour profile does not fit the pixels any more");
    }
}

Metadata Metadata::colourOnly() const {
    Metadata copy;
    copy.content_->profile = content_->profile;
    return copy;
}

Bytes Metadata::addTo(Bytes encoded, std::vector<std::string>& notices) const {
    const Content& content = *content_;
    if (content.exif.empty() && content.xmp.empty() && content.iptc.empty() &&
        content.comment.empty() && content.profile.empty()) {
        return encoded;
    }
    try {
        return withExiv2([&] {
            return webpCodec().recognises(encoded) ? addToWebP(encoded, content)
                                                   : addWithExiv2(encoded, content);
        });
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        notices.push_back(std::string("metadata is not kept: ") + error.what());
        return encoded;
    }
}

const std::vector<std::string>& Metadata::notices() const {
    return content_->notices;
}

}  // namespace keladjust::app
