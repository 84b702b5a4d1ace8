#include <webp/decode.h>
#include <webp/encode.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "codecs/Codec.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

class EncoderPicture {
public:
    EncoderPicture() {
        if (!WebPPictureInit(&picture)) throw Failure("the WebP library does not fit this program");
        WebPMemoryWriterInit(&output);
        picture.writer = WebPMemoryWrite;
        picture.custom_ptr = &output;
    }
    ~EncoderPicture() {
        WebPPictureFree(&picture);
        WebPMemoryWriterClear(&output);
    }
    EncoderPicture(const EncoderPicture&) = delete;
    EncoderPicture& operator=(const EncoderPicture&) = delete;

    WebPPicture picture{};
    WebPMemoryWriter output{};
};

/// WebP knows no grey pictures.
Bytes expandGrey(const Photo& photo) {
    Bytes pixels(std::size_t{photo.width()} * photo.height() * 4, 255);
    unsigned char* target = pixels.data();
    for (std::uint32_t y = 0; y < photo.height(); ++y) {
        const unsigned char* source = photo.row(y);
        for (std::uint32_t x = 0; x < photo.width(); ++x, target += 4) {
            std::memset(target, source[x], 3);
        }
    }
    return pixels;
}

void import(WebPPicture& picture, const Photo& photo) {
    picture.width = static_cast<int>(photo.width());
    picture.height = static_cast<int>(photo.height());
    const int stride = picture.width * 4;
    const Bytes expanded = photo.layout() == ChannelLayout::grey ? expandGrey(photo) : Bytes();
    const unsigned char* pixels = expanded.empty() ? photo.row(0) : expanded.data();
    const int done = photo.hasAlpha ? WebPPictureImportBGRA(&picture, pixels, stride)
                                    : WebPPictureImportBGRX(&picture, pixels, stride);
    if (!done) throw std::bad_alloc();
}

class WebP final : public Codec {
public:
    std::string_view name() const override { return "WebP"; }

    std::span<const std::string_view> extensions() const override {
        static constexpr std::array<std::string_view, 1> all = {"webp"};
        return all;
    }

    bool recognises(std::span<const unsigned char> start) const override {
        return start.size() >= 12 && std::memcmp(start.data(), "RIFF", 4) == 0 &&
               std::memcmp(start.data() + 8, "WEBP", 4) == 0;
    }

    bool keepsAlpha() const override { return true; }

    Photo read(std::span<const unsigned char> file, const PixelBound& bound,
               DecodeWatcher*) const override {
        const auto fail = [] {
            return Failure(
                "damaged or truncated WebP; copy the file again from where it came from");
        };
        WebPBitstreamFeatures features;
        if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK) throw fail();
        if (features.has_animation) {
            throw Failure("an animated WebP; only still pictures can be adjusted");
        }
        bound.check(file.size(), static_cast<std::uint64_t>(features.width),
                    static_cast<std::uint64_t>(features.height));
        Photo photo(static_cast<std::uint64_t>(features.width),
                    static_cast<std::uint64_t>(features.height), ChannelLayout::bgra);
        photo.hasAlpha = features.has_alpha != 0;
        if (WebPDecodeBGRAInto(file.data(), file.size(), photo.row(0),
                               photo.stride() * photo.height(),
                               static_cast<int>(photo.stride())) == nullptr) {
            throw fail();
        }
        return photo;
    }

    Bytes write(const Photo& photo, const EncodeOptions& options,
                const RowsNeeded& rowsNeeded) const override {
        rowsNeeded(photo.height());
        if (std::max(photo.width(), photo.height()) > WEBP_MAX_DIMENSION) {
            throw Failure("WebP holds at most " + std::to_string(WEBP_MAX_DIMENSION) +
                          " pixels a side; choose --format jpeg, png or tiff");
        }
        WebPConfig config;
        if (!WebPConfigInit(&config)) throw Failure("the WebP library does not fit this program");
        if (options.lossless) {
            config.lossless = 1;
            config.exact = 1;  // colours under full transparency too
        } else {
            config.quality = static_cast<float>(options.quality);
        }
        EncoderPicture encoder;
        encoder.picture.use_argb = options.lossless ? 1 : 0;
        import(encoder.picture, photo);
        if (!WebPEncode(&config, &encoder.picture)) {
            throw Failure("cannot encode as WebP (error " +
                          std::to_string(encoder.picture.error_code) + ')');
        }
        return Bytes(encoder.output.mem, encoder.output.mem + encoder.output.size);
    }
};

}  // namespace

const Codec& webpCodec() {
    static const WebP codec;
    return codec;
}

}  // namespace keladjust::app
