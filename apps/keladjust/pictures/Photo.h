#ifndef KELADJUST_APP_PICTURES_PHOTO_H
#define KELADJUST_APP_PICTURES_PHOTO_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "files/ZeroBytes.h"

namespace keladjust::app {

/// The two layouts in which pictures travel between codecs and the library.
enum class ChannelLayout {
    grey,  ///< one byte per pixel
    bgra   ///< blue, green, red, alpha; alpha is 255 where the file has none
};

/// A decoded picture: rows from top to bottom, each padded to a multiple of four bytes.
class Photo {
public:
    /// A black picture.
    ///
    /// @throws Failure if the size is 0 or beyond what the library can address
    Photo(std::uint64_t width, std::uint64_t height, ChannelLayout layout);

    std::uint32_t width() const { return width_; }
    std::uint32_t height() const { return height_; }
    ChannelLayout layout() const { return layout_; }
    std::size_t bytesPerPixel() const { return layout_ == ChannelLayout::grey ? 1 : 4; }
    std::size_t stride() const { return stride_; }

    unsigned char* row(std::uint32_t y) { return pixels_.data() + y * stride(); }
    const unsigned char* row(std::uint32_t y) const { return pixels_.data() + y * stride(); }
    unsigned char* pixel(std::uint32_t x, std::uint32_t y) { return row(y) + x * bytesPerPixel(); }
    const unsigned char* pixel(std::uint32_t x, std::uint32_t y) const {
        return row(y) + x * bytesPerPixel();
    }

    bool hasAlpha = false;             ///< whether alpha means anything
    std::vector<std::string> notices;  ///< what was lost on the way in

private:
    std::uint32_t width_;
    std::uint32_t height_;
    ChannelLayout layout_;
    ZeroBytes pixels_;
    std::size_t stride_;
};

}  // namespace keladjust::app

#endif
