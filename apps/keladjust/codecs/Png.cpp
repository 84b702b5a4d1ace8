#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>

#include "codecs/Codec.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

/// What libpng said before it jumped. As with every setjmp, those below stand in functions whose
/// locals are trivial; the objects around them release what there is to release.
struct ErrorText {
    std::array<char, 200> text{};
};

void onError(png_structp png, png_const_charp message) {
    auto* error = static_cast<ErrorText*>(png_get_error_ptr(png));
    std::snprintf(error->text.data(), error->text.size(), "%s", message);
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

class Reader {
public:
    explicit Reader(std::span<const unsigned char> file) : left_(file) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &error_, onError, onWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
    }
    ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Reads up to the pixels.
    bool readHeader() {
        if (setjmp(png_jmpbuf(png_))) return false;
        png_set_read_fn(png_, this, onRead);
        // Sizes are judged by others, who say why.
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        // Texts and profiles would be unpacked here, to any size, and nobody would look at them.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(png_, info_);
        return true;
    }

    /// Asks for grey or blue, green, red, alpha in eight bits each.
    bool chooseLayout() {
        if (setjmp(png_jmpbuf(png_))) return false;
        const int colour = png_get_color_type(png_, info_);
        const bool transparent =
            (colour & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
        hasAlpha_ = transparent;
        isGrey_ = (colour & PNG_COLOR_MASK_COLOR) == 0 && !transparent;
        isDeep_ = png_get_bit_depth(png_, info_) == 16;

        png_set_expand(png_);
        png_set_scale_16(png_);
        if (!isGrey_) {
            png_set_gray_to_rgb(png_);
            png_set_bgr(png_);
            png_set_add_alpha(png_, 255, PNG_FILLER_AFTER);
        }
        png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        return true;
    }

    bool readRows(png_bytepp rows) {
        if (setjmp(png_jmpbuf(png_))) return false;
        png_read_image(png_, rows);
        png_read_end(png_, nullptr);
        return true;
    }

    std::uint32_t width() const { return png_get_image_width(png_, info_); }
    std::uint32_t height() const { return png_get_image_height(png_, info_); }
    bool isGrey() const { return isGrey_; }
    bool hasAlpha() const { return hasAlpha_; }
    bool isDeep() const { return isDeep_; }
    std::string message() const { return error_.text.data(); }

private:
    static void onRead(png_structp png, png_bytep target, std::size_t count) {
        auto* reader = static_cast<Reader*>(png_get_io_ptr(png));
        if (reader->left_.size() < count) png_error(png, "the file ends too early");
        std::memcpy(target, reader->left_.data(), count);
        reader->left_ = reader->left_.subspan(count);
    }

    std::span<const unsigned char> left_;
    ErrorText error_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool isGrey_ = false;
    bool hasAlpha_ = false;
    bool isDeep_ = false;
};

class Writer {
public:
    Writer() {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error_, onError, onWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_write_struct(&png_, nullptr);
            throw std::bad_alloc();
        }
    }
    ~Writer() { png_destroy_write_struct(&png_, &info_); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    bool write(const Photo& photo) {
        if (setjmp(png_jmpbuf(png_))) return false;
        png_set_write_fn(png_, &result_, onWrite, nullptr);
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        const bool grey = photo.layout() == ChannelLayout::grey;
        const int colour = grey             ? PNG_COLOR_TYPE_GRAY
                           : photo.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA
                                            : PNG_COLOR_TYPE_RGB;
        png_set_IHDR(png_, info_, photo.width(), photo.height(), 8, colour, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png_, info_);
        if (!grey) {
            png_set_bgr(png_);
            if (!photo.hasAlpha) png_set_filler(png_, 0, PNG_FILLER_AFTER);
        }
        for (row_ = 0; row_ < photo.height(); ++row_) png_write_row(png_, photo.row(row_));
        png_write_end(png_, nullptr);
        return true;
    }

    Bytes takeResult() { return std::move(result_); }
    std::string message() const { return error_.text.data(); }

private:
    static bool append(Bytes& target, png_bytep data, std::size_t count) noexcept {
        try {
            target.insert(target.end(), data, data + count);
            return true;
        } catch (const std::bad_alloc&) {
            return false;  // an exception must not pass through libpng
        }
    }

    static void onWrite(png_structp png, png_bytep data, std::size_t count) {
        if (!append(*static_cast<Bytes*>(png_get_io_ptr(png)), data, count)) {
            png_error(png, "not enough memory");
        }
    }

    Bytes result_;
    ErrorText error_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::uint32_t row_ = 0;
};

class Png final : public Codec {
public:
    std::string_view name() const override { return "PNG"; }

    std::span<const std::string_view> extensions() const override {
        static constexpr std::array<std::string_view, 1> all = {"png"};
        return all;
    }

    bool recognises(std::span<const unsigned char> start) const override {
        constexpr std::array<unsigned char, 8> signature = {0x89, 'P', 'N', 'G', 13, 10, 26, 10};
        return start.size() >= signature.size() &&
               std::equal(signature.begin(), signature.end(), start.begin());
    }

    bool keepsAlpha() const override { return true; }

    Photo read(std::span<const unsigned char> file, const PixelBound& bound,
               DecodeWatcher*) const override {
        Reader png(file);
        const auto fail = [&] {
            return Failure("damaged or truncated PNG (" + png.message() +
                           "); copy the file again from where it came from");
        };
        if (!png.readHeader()) throw fail();
        bound.check(file.size(), png.width(), png.height());
        if (!png.chooseLayout()) throw fail();
        Photo photo(png.width(), png.height(),
                    png.isGrey() ? ChannelLayout::grey : ChannelLayout::bgra);
        photo.hasAlpha = png.hasAlpha();
        if (png.isDeep()) photo.notices.emplace_back("16 bits per channel converted to 8");
        std::vector<png_bytep> rows(photo.height());
        for (std::uint32_t y = 0; y < photo.height(); ++y) rows[y] = photo.row(y);
        if (!png.readRows(rows.data())) throw fail();
        return photo;
    }

    Bytes write(const Photo& photo, const EncodeOptions&,
                const RowsNeeded& rowsNeeded) const override {
        rowsNeeded(photo.height());
        Writer png;
        if (!png.write(photo)) throw Failure("cannot encode as PNG: " + png.message());
        return png.takeResult();
    }
};

}  // namespace

const Codec& pngCodec() {
    static const Png codec;
    return codec;
}

}  // namespace keladjust::app
