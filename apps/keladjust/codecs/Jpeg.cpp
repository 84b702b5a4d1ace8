#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <new>

#include <jerror.h>
#include <jpeglib.h>

#include "codecs/Codec.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

/// Where libjpeg ends when it gives up: it knows no return values, so it jumps.
///
/// A jump skips destructors. Every setjmp therefore stands in a member function whose locals are
/// trivial; what must be released belongs to the object around it.
struct ErrorState {
    jpeg_error_mgr base;
    std::jmp_buf jump;
    std::array<char, JMSG_LENGTH_MAX> message;
    bool damaged;
};

void onError(j_common_ptr codec) {
    auto* state = reinterpret_cast<ErrorState*>(codec->err);
    codec->err->format_message(codec, state->message.data());
    std::longjmp(state->jump, 1);
}

// libjpeg only warns about missing or damaged data and paints the rest grey. A photo editor must
// not pass such a picture on as a good one.
void onMessage(j_common_ptr codec, int level) {
    if (level >= 0) return;
    auto* state = reinterpret_cast<ErrorState*>(codec->err);
    const int code = codec->err->msg_code;
    const bool damage = code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER ||
                        code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC ||
                        code == JWRN_BOGUS_PROGRESSION;
    if (damage && !state->damaged) {
        state->damaged = true;
        codec->err->format_message(codec, state->message.data());
    }
}

/// Whoever follows a picture is told of so many rows at a time.
constexpr std::uint32_t rowsTold = 16;

/// A scan of a few bytes goes over the whole picture. No encoder makes as many.
constexpr int mostScans = 500;

void onProgress(j_common_ptr codec) {
    const auto* jpeg = reinterpret_cast<j_decompress_ptr>(codec);
    if (jpeg->input_scan_number <= mostScans) return;
    auto* state = reinterpret_cast<ErrorState*>(codec->err);
    std::snprintf(state->message.data(), state->message.size(), "more than %d scans", mostScans);
    std::longjmp(state->jump, 1);
}

jpeg_error_mgr* install(ErrorState& state) {
    jpeg_error_mgr* base = jpeg_std_error(&state.base);
    base->error_exit = onError;
    base->emit_message = onMessage;
    return base;
}

/// What to tell about a file that could not be read or written.
std::string messageOf(const ErrorState& state) {
    if (state.base.msg_code == JERR_OUT_OF_MEMORY) throw std::bad_alloc();
    return state.message.data();
}

class Decompressor {
public:
    Decompressor() { jpeg_.err = install(errors_); }
    ~Decompressor() { jpeg_destroy_decompress(&jpeg_); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    bool readHeader(std::span<const unsigned char> file) {
        if (setjmp(errors_.jump)) return false;
        jpeg_create_decompress(&jpeg_);
        progress_.progress_monitor = onProgress;
        jpeg_.progress = &progress_;
        jpeg_mem_src(&jpeg_, file.data(), static_cast<unsigned long>(file.size()));
        jpeg_read_header(&jpeg_, TRUE);
        if (isGrey()) {
            jpeg_.out_color_space = JCS_GRAYSCALE;
        } else if (isCmyk()) {
            jpeg_.out_color_space = JCS_CMYK;
        } else {
            jpeg_.out_color_space = JCS_EXT_BGRA;
        }
        return true;
    }

    bool readRows(Photo& photo, DecodeWatcher* watcher) {
        if (setjmp(errors_.jump)) return false;
        jpeg_start_decompress(&jpeg_);
        while (jpeg_.output_scanline < jpeg_.output_height && !errors_.damaged) {
            JSAMPROW row = photo.row(jpeg_.output_scanline);
            jpeg_read_scanlines(&jpeg_, &row, 1);
            if (watcher != nullptr && jpeg_.output_scanline % rowsTold == 0 && !errors_.damaged) {
                watcher->reach(jpeg_.output_scanline);
            }
        }
        if (!errors_.damaged) jpeg_finish_decompress(&jpeg_);
        if (watcher != nullptr && !errors_.damaged) watcher->reach(photo.height());
        return !errors_.damaged;
    }

    bool isGrey() const { return jpeg_.jpeg_color_space == JCS_GRAYSCALE; }
    bool isCmyk() const {
        return jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK;
    }
    /// Files that bear Adobe's marker store how much of each ink is missing.
    bool inksAreInverted() const { return jpeg_.saw_Adobe_marker != 0; }
    std::uint32_t width() const { return jpeg_.image_width; }
    std::uint32_t height() const { return jpeg_.image_height; }
    std::string message() const { return messageOf(errors_); }

private:
    jpeg_decompress_struct jpeg_{};
    jpeg_progress_mgr progress_{};
    ErrorState errors_{};
};

/// Four inks to blue, green, red and opaque, in place. Without colour management this is the usual
/// approximation: what an ink and black let through, multiplied.
void convertFromCmyk(Photo& photo, bool inverted) {
    const auto light = [inverted](unsigned char ink) { return inverted ? ink : 255 - ink; };
    for (std::uint32_t y = 0; y < photo.height(); ++y) {
        unsigned char* pixel = photo.row(y);
        for (std::uint32_t x = 0; x < photo.width(); ++x, pixel += 4) {
            const int black = light(pixel[3]);
            const auto channel = [&](int ink) {
                return static_cast<unsigned char>((light(pixel[ink]) * black + 127) / 255);
            };
            const unsigned char red = channel(0);
            const unsigned char green = channel(1);
            const unsigned char blue = channel(2);
            pixel[0] = blue;
            pixel[1] = green;
            pixel[2] = red;
            pixel[3] = 255;
        }
    }
}

/// Where the compressor's bytes go. libjpeg's own destination in memory tells of a larger buffer
/// only at the end, so that after an error the one that was given has been freed already.
class Destination : public jpeg_destination_mgr {
public:
    Destination() : jpeg_destination_mgr{} {
        init_destination = [](j_compress_ptr jpeg) { of(jpeg).grow(jpeg); };
        empty_output_buffer = [](j_compress_ptr jpeg) -> boolean {
            of(jpeg).grow(jpeg);
            return TRUE;
        };
        term_destination = [](j_compress_ptr jpeg) {
            of(jpeg).used_ = of(jpeg).size_ - of(jpeg).free_in_buffer;
        };
    }
    ~Destination() { std::free(bytes_); }
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    std::span<const unsigned char> written() const { return {bytes_, used_}; }

private:
    static Destination& of(j_compress_ptr jpeg) { return *static_cast<Destination*>(jpeg->dest); }

    // libjpeg calls when all there is has been filled, whatever it says of free bytes. No exception
    // may pass through it.
    void grow(j_compress_ptr jpeg) {
        constexpr std::size_t first = 1 << 10;
        const std::size_t grown = size_ == 0 ? first : 2 * size_;
        auto* const bytes = static_cast<unsigned char*>(std::realloc(bytes_, grown));
        if (bytes == nullptr) ERREXIT1(jpeg, JERR_OUT_OF_MEMORY, 0);
        bytes_ = bytes;
        next_output_byte = bytes_ + size_;
        free_in_buffer = grown - size_;
        size_ = grown;
    }

    unsigned char* bytes_ = nullptr;
    std::size_t size_ = 0;
    std::size_t used_ = 0;
};

class Compressor {
public:
    Compressor() { jpeg_.err = install(errors_); }
    ~Compressor() { jpeg_destroy_compress(&jpeg_); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    bool write(const Photo& photo, int quality, const RowsNeeded& rowsNeeded) {
        if (setjmp(errors_.jump)) return false;
        jpeg_create_compress(&jpeg_);
        jpeg_.dest = &destination_;
        jpeg_.image_width = photo.width();
        jpeg_.image_height = photo.height();
        jpeg_.input_components = static_cast<int>(photo.bytesPerPixel());
        jpeg_.in_color_space = photo.layout() == ChannelLayout::grey ? JCS_GRAYSCALE : JCS_EXT_BGRX;
        jpeg_set_defaults(&jpeg_);
        jpeg_set_quality(&jpeg_, quality, TRUE);
        jpeg_.optimize_coding = TRUE;
        if (quality >= 90) {
            // Whoever asks for this much wants colour edges as sharp as the rest.
            jpeg_.comp_info[0].h_samp_factor = 1;
            jpeg_.comp_info[0].v_samp_factor = 1;
        }
        jpeg_start_compress(&jpeg_, TRUE);
        while (jpeg_.next_scanline < jpeg_.image_height) {
            if (jpeg_.next_scanline % rowsTold == 0) {
                rowsNeeded(std::min(jpeg_.next_scanline + rowsTold, photo.height()));
            }
            // libjpeg's interface predates const; it does not write to its input.
            JSAMPROW row = const_cast<JSAMPROW>(photo.row(jpeg_.next_scanline));
            jpeg_write_scanlines(&jpeg_, &row, 1);
        }
        jpeg_finish_compress(&jpeg_);
        return true;
    }

    std::span<const unsigned char> result() const { return destination_.written(); }
    std::string message() const { return messageOf(errors_); }

private:
    jpeg_compress_struct jpeg_{};
    ErrorState errors_{};
    Destination destination_;
};

/// A picture while somebody follows it, or nobody.
class Followed {
public:
    Followed(DecodeWatcher* watcher, Photo& photo) : watcher_(watcher) {
        if (watcher_ != nullptr) watcher_->begin(photo);
    }
    ~Followed() {
        if (watcher_ != nullptr) watcher_->end();
    }
    Followed(const Followed&) = delete;
    Followed& operator=(const Followed&) = delete;

    DecodeWatcher* watcher() const { return watcher_; }

private:
    DecodeWatcher* watcher_;
};

class Jpeg final : public Codec {
public:
    std::string_view name() const override { return "JPEG"; }

    std::span<const std::string_view> extensions() const override {
        static constexpr std::array<std::string_view, 4> all = {"jpg", "jpeg", "jpe", "jfif"};
        return all;
    }

    bool recognises(std::span<const unsigned char> start) const override {
        return start.size() >= 3 && start[0] == 0xFF && start[1] == 0xD8 && start[2] == 0xFF;
    }

    bool keepsAlpha() const override { return false; }

    Photo read(std::span<const unsigned char> file, const PixelBound& bound,
               DecodeWatcher* watcher) const override {
        Decompressor jpeg;
        const auto fail = [&] {
            return Failure("damaged or truncated JPEG (" + jpeg.message() +
                           "); copy the file again from where it came from");
        };
        if (!jpeg.readHeader(file)) throw fail();
        bound.check(file.size(), jpeg.width(), jpeg.height());
        Photo photo(jpeg.width(), jpeg.height(),
                    jpeg.isGrey() ? ChannelLayout::grey : ChannelLayout::bgra);
        // Inks become colours only when all rows are there.
        const Followed followed(jpeg.isCmyk() ? nullptr : watcher, photo);
        if (!jpeg.readRows(photo, followed.watcher())) throw fail();
        if (jpeg.isCmyk()) {
            convertFromCmyk(photo, jpeg.inksAreInverted());
            photo.notices.emplace_back("CMYK converted to RGB without colour management");
        }
        return photo;
    }

    Bytes write(const Photo& photo, const EncodeOptions& options,
                const RowsNeeded& rowsNeeded) const override {
        if (std::max(photo.width(), photo.height()) > JPEG_MAX_DIMENSION) {
            throw Failure("JPEG holds at most " + std::to_string(JPEG_MAX_DIMENSION) +
                          " pixels a side; choose --format png or tiff");
        }
        Compressor jpeg;
        if (!jpeg.write(photo, options.quality, rowsNeeded)) {
            throw Failure("cannot encode as JPEG: " + jpeg.message());
        }
        const auto result = jpeg.result();
        return Bytes(result.begin(), result.end());
    }
};

}  // namespace

const Codec& jpegCodec() {
    static const Jpeg codec;
    return codec;
}

}  // namespace keladjust::app
