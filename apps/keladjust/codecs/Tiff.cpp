#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

#include "codecs/Codec.h"
#include "codecs/SampleDepth.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

/// A TIFF file in memory, as libtiff's callbacks see it. They must not throw.
struct MemoryFile {
    std::span<const unsigned char> input;  // when reading
    Bytes output;                          // when writing
    bool writing = false;
    std::uint64_t position = 0;
    std::array<char, 200> message{};

    std::uint64_t size() const { return writing ? output.size() : input.size(); }
};

MemoryFile& fileOf(thandle_t handle) {
    return *static_cast<MemoryFile*>(handle);
}

tmsize_t onRead(thandle_t handle, void* target, tmsize_t count) {
    MemoryFile& file = fileOf(handle);
    if (count <= 0 || file.position >= file.size()) return 0;
    const auto taken = static_cast<std::size_t>(
        std::min<std::uint64_t>(static_cast<std::uint64_t>(count), file.size() - file.position));
    const unsigned char* source = file.writing ? file.output.data() : file.input.data();
    std::memcpy(target, source + file.position, taken);
    file.position += taken;
    return static_cast<tmsize_t>(taken);
}

tmsize_t onWrite(thandle_t handle, void* source, tmsize_t count) noexcept {
    MemoryFile& file = fileOf(handle);
    if (count <= 0) return 0;
    const auto start = static_cast<std::size_t>(file.position);
    const auto taken = static_cast<std::size_t>(count);
    try {
        if (file.output.size() < start + taken) file.output.resize(start + taken);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    std::memcpy(file.output.data() + start, source, taken);
    file.position += taken;
    return count;
}

toff_t onSeek(thandle_t handle, toff_t offset, int origin) {
    MemoryFile& file = fileOf(handle);
    const std::uint64_t base = origin == SEEK_CUR   ? file.position
                               : origin == SEEK_END ? file.size()
                                                    : 0;
    file.position = base + offset;
    return file.position;
}

int onClose(thandle_t) {
    return 0;
}

toff_t onSize(thandle_t handle) {
    return fileOf(handle).size();
}

int onError(TIFF*, void* data, const char*, const char* format, va_list arguments) {
    MemoryFile& file = *static_cast<MemoryFile*>(data);
    if (file.message[0] == '\0') {  // the first message is the cause of those that follow
        std::vsnprintf(file.message.data(), file.message.size(), format, arguments);
    }
    return 1;
}

int onWarning(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

using Tiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

/// @param largestAllocation 0: any
Tiff open(MemoryFile& file, const char* mode, std::uint64_t largestAllocation) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
    if (options == nullptr) throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(
        options.get(), static_cast<tmsize_t>(std::min<std::uint64_t>(
                           largestAllocation, std::numeric_limits<tmsize_t>::max())));
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onError, &file);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onWarning, &file);
    return Tiff(TIFFClientOpenExt("picture", mode, &file, onRead, onWrite, onSeek, onClose, onSize,
                                  nullptr, nullptr, options.get()),
                &TIFFClose);
}

Failure damaged(const MemoryFile& file) {
    return Failure("damaged, truncated or unusual TIFF (" + std::string(file.message.data()) +
                   "); copy the file again, or save it as plain 8-bit RGB");
}

struct Layout {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t photometric = 0;
    std::uint16_t bits = 1;
    std::uint16_t samples = 1;
    std::uint16_t planes = PLANARCONFIG_CONTIG;
    std::uint16_t sampleFormat = SAMPLEFORMAT_UINT;
    bool tiled = false;
    bool hasAlpha = false;
    bool alphaIsMultiplied = false;

    std::uint16_t colours() const { return photometric == PHOTOMETRIC_RGB ? 3 : 1; }
    bool isGrey() const {
        return photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
    }
    /// Whether the rows can be taken as they are; all else goes through libtiff's own conversion.
    bool isPlain() const {
        return (photometric == PHOTOMETRIC_RGB || isGrey()) && (bits == 8 || bits == 16) &&
               sampleFormat == SAMPLEFORMAT_UINT && planes == PLANARCONFIG_CONTIG && !tiled &&
               samples >= colours() + (hasAlpha ? 1 : 0);
    }
};

bool isPreview(TIFF* tiff) {
    std::uint32_t kind = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &kind);
    std::uint16_t compression = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    // The second kind is an EXIF thumbnail.
    return (kind & FILETYPE_REDUCEDIMAGE) != 0 || compression == COMPRESSION_OJPEG;
}

// Leaves the first page.
bool hasMorePages(TIFF* tiff) {
    while (TIFFReadDirectory(tiff)) {
        if (!isPreview(tiff)) return true;
    }
    return false;
}

// Raw files of most cameras look like TIFF files with a small preview in the first place. Nobody
// wants that adjusted instead of the picture.
void refuseRaw(TIFF* tiff, std::span<const unsigned char> bytes) {
    const bool canon = bytes.size() > 9 && bytes[8] == 'C' && bytes[9] == 'R';
    if (canon || isPreview(tiff)) {
        throw Failure("looks like a camera's raw file; develop it to a TIFF or JPEG first");
    }
}

Layout readLayout(TIFF* tiff, const MemoryFile& file) {
    Layout layout;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &layout.width) ||
        !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &layout.height) ||
        !TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &layout.photometric)) {
        throw damaged(file);
    }
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &layout.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &layout.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &layout.planes);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &layout.sampleFormat);
    layout.tiled = TIFFIsTiled(tiff) != 0;
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    if (count > 0) {
        layout.alphaIsMultiplied = kinds[0] == EXTRASAMPLE_ASSOCALPHA;
        layout.hasAlpha = layout.alphaIsMultiplied || kinds[0] == EXTRASAMPLE_UNASSALPHA;
    }
    return layout;
}

/// Rows and tiles have a size of their own: a picture of one pixel may claim tiles of billions, or
/// thousands of samples. There are two of each in memory.
void refuseSprawling(TIFF* tiff, std::uint64_t largest) {
    const std::uint64_t part = TIFFIsTiled(tiff) ? TIFFTileSize64(tiff) : TIFFScanlineSize64(tiff);
    if (part <= largest / 2) return;
    throw Failure("this kind of TIFF cannot be read (rows or tiles of " + std::to_string(part) +
                  " bytes); save it as plain 8-bit RGB");
}

/// Undoes the multiplication of colours by alpha, as far as eight bits allow.
void divideByAlpha(unsigned char* pixel) {
    const int alpha = pixel[3];
    if (alpha == 0 || alpha == 255) return;
    for (int channel = 0; channel < 3; ++channel) {
        pixel[channel] =
            static_cast<unsigned char>(std::min(255, (pixel[channel] * 255 + alpha / 2) / alpha));
    }
}

void readPlainRow(const Layout& layout, const unsigned char* source, Photo& photo,
                  std::uint32_t y) {
    const auto sample = [&](std::size_t index) -> unsigned char {
        if (layout.bits == 8) return source[index];
        std::uint16_t deep = 0;  // libtiff has put it in the machine's byte order
        std::memcpy(&deep, source + 2 * index, 2);
        return eightBits(deep);
    };
    const unsigned char inversion = layout.photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
    for (std::uint32_t x = 0; x < layout.width; ++x) {
        const std::size_t start = std::size_t{x} * layout.samples;
        unsigned char* pixel = photo.pixel(x, y);
        if (photo.layout() == ChannelLayout::grey) {
            *pixel = sample(start) ^ inversion;
            continue;
        }
        const std::size_t step = layout.colours() == 3 ? 1 : 0;
        pixel[2] = sample(start) ^ inversion;
        pixel[1] = sample(start + step) ^ inversion;
        pixel[0] = sample(start + 2 * step) ^ inversion;
        pixel[3] = layout.hasAlpha ? sample(start + layout.colours()) : 255;
        if (layout.alphaIsMultiplied) divideByAlpha(pixel);
    }
}

void readPlain(TIFF* tiff, const Layout& layout, Photo& photo, const MemoryFile& file) {
    Bytes row(static_cast<std::size_t>(TIFFScanlineSize(tiff)));
    if (row.size() < std::size_t{layout.width} * layout.samples * (layout.bits / 8)) {
        throw damaged(file);
    }
    for (std::uint32_t y = 0; y < layout.height; ++y) {
        if (TIFFReadScanline(tiff, row.data(), y) != 1) throw damaged(file);
        readPlainRow(layout, row.data(), photo, y);
    }
}

class Converter {
public:
    Converter(TIFF* tiff, const MemoryFile& file) {
        std::array<char, 1024> reason{};
        if (!TIFFRGBAImageBegin(&image_, tiff, 1, reason.data())) {
            throw Failure("this kind of TIFF cannot be read (" + std::string(reason.data()) +
                          "); save it as plain 8-bit RGB");
        }
        // Rows as they are stored: turning the picture upright is done for all formats alike.
        image_.orientation = ORIENTATION_TOPLEFT;
        image_.req_orientation = ORIENTATION_TOPLEFT;
        file_ = &file;
    }
    ~Converter() { TIFFRGBAImageEnd(&image_); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    std::vector<std::uint32_t> read(const Layout& layout) {
        std::vector<std::uint32_t> raster(std::size_t{layout.width} * layout.height);
        if (!TIFFRGBAImageGet(&image_, raster.data(), layout.width, layout.height)) {
            throw damaged(*file_);
        }
        return raster;
    }

private:
    TIFFRGBAImage image_{};
    const MemoryFile* file_;
};

void readConverted(TIFF* tiff, const Layout& layout, Photo& photo, const MemoryFile& file) {
    const std::vector<std::uint32_t> raster = Converter(tiff, file).read(layout);
    const std::uint32_t* source = raster.data();
    for (std::uint32_t y = 0; y < layout.height; ++y) {
        for (std::uint32_t x = 0; x < layout.width; ++x, ++source) {
            unsigned char* pixel = photo.pixel(x, y);
            if (photo.layout() == ChannelLayout::grey) {
                *pixel = static_cast<unsigned char>(TIFFGetR(*source));
                continue;
            }
            pixel[0] = static_cast<unsigned char>(TIFFGetB(*source));
            pixel[1] = static_cast<unsigned char>(TIFFGetG(*source));
            pixel[2] = static_cast<unsigned char>(TIFFGetR(*source));
            pixel[3] = layout.hasAlpha ? static_cast<unsigned char>(TIFFGetA(*source)) : 255;
            if (layout.hasAlpha) divideByAlpha(pixel);
        }
    }
}

void describe(TIFF* tiff, const Photo& photo) {
    const bool grey = photo.layout() == ChannelLayout::grey;
    const int samples = grey ? 1 : photo.hasAlpha ? 4 : 3;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, photo.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, photo.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (photo.hasAlpha) {
        const std::uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

void packRow(const Photo& photo, std::uint32_t y, Bytes& row) {
    row.clear();
    if (photo.layout() == ChannelLayout::grey) {
        row.assign(photo.row(y), photo.row(y) + photo.width());
        return;
    }
    const unsigned char* pixel = photo.row(y);
    for (std::uint32_t x = 0; x < photo.width(); ++x, pixel += 4) {
        row.insert(row.end(), {pixel[2], pixel[1], pixel[0]});
        if (photo.hasAlpha) row.push_back(pixel[3]);
    }
}

class TiffCodec final : public Codec {
public:
    std::string_view name() const override { return "TIFF"; }

    std::span<const std::string_view> extensions() const override {
        static constexpr std::array<std::string_view, 2> all = {"tif", "tiff"};
        return all;
    }

    bool recognises(std::span<const unsigned char> start) const override {
        if (start.size() < 4) return false;
        constexpr std::array<const char*, 4> signatures = {"II*\0", "MM\0*", "II+\0", "MM\0+"};
        return std::ranges::any_of(signatures, [&](const char* signature) {
            return std::memcmp(start.data(), signature, 4) == 0;
        });
    }

    bool keepsAlpha() const override { return true; }

    Photo read(std::span<const unsigned char> bytes, const PixelBound& bound,
               DecodeWatcher*) const override {
        MemoryFile file;
        file.input = bytes;
        const std::uint64_t largestAllocation = bound.workingBytes(bytes.size());
        const Tiff tiff = open(file, "rm", largestAllocation);
        if (tiff == nullptr) throw damaged(file);
        refuseRaw(tiff.get(), bytes);
        const Layout layout = readLayout(tiff.get(), file);
        bound.check(bytes.size(), layout.width, layout.height);
        refuseSprawling(tiff.get(), largestAllocation);
        const bool grey = layout.isGrey() && !layout.hasAlpha;
        Photo photo(layout.width, layout.height, grey ? ChannelLayout::grey : ChannelLayout::bgra);
        photo.hasAlpha = layout.hasAlpha;
        if (layout.bits > 8) {
            photo.notices.push_back(std::to_string(layout.bits) +
                                    " bits per channel converted to 8");
        }
        if (layout.photometric == PHOTOMETRIC_SEPARATED) {
            photo.notices.emplace_back("CMYK converted to RGB without colour management");
        }
        if (layout.isPlain()) {
            readPlain(tiff.get(), layout, photo, file);
        } else {
            readConverted(tiff.get(), layout, photo, file);
        }
        if (hasMorePages(tiff.get())) {
            photo.notices.emplace_back("only the first page is used");
        }
        return photo;
    }

    Bytes write(const Photo& photo, const EncodeOptions&,
                const RowsNeeded& rowsNeeded) const override {
        rowsNeeded(photo.height());
        MemoryFile file;
        file.writing = true;
        Tiff tiff = open(file, "w", 0);
        if (tiff == nullptr) throw std::bad_alloc();
        describe(tiff.get(), photo);
        Bytes row;
        bool written = true;
        for (std::uint32_t y = 0; written && y < photo.height(); ++y) {
            packRow(photo, y, row);
            written = TIFFWriteScanline(tiff.get(), row.data(), y) == 1;
        }
        written = written && TIFFFlush(tiff.get()) == 1;
        if (!written) {
            throw Failure("cannot encode as TIFF: " + std::string(file.message.data()));
        }
        tiff.reset();
        return std::move(file.output);
    }
};

}  // namespace

const Codec& tiffCodec() {
    static const TiffCodec codec;
    return codec;
}

}  // namespace keladjust::app
