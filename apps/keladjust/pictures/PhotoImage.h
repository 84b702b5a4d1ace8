#ifndef KELADJUST_APP_PICTURES_PHOTOIMAGE_H
#define KELADJUST_APP_PICTURES_PHOTOIMAGE_H

#include <keladjust/keladjust.h>

#include <cstdint>
#include <memory>

#include "pictures/Photo.h"

namespace keladjust::app {

/// A photo's own pixels as the library takes them.
class PhotoImage {
public:
    /// @throws std::bad_alloc
    explicit PhotoImage(Photo& photo);
    /// Of some of its rows.
    ///
    /// @throws std::bad_alloc
    PhotoImage(Photo& photo, std::uint32_t firstRow, std::uint32_t rows);
    PhotoImage(const PhotoImage&) = delete;
    PhotoImage& operator=(const PhotoImage&) = delete;

    CxImage* get() const { return image_.get(); }

private:
    unsigned char* bits_;  // which the library finds through this place
    std::unique_ptr<CxImage, decltype(&releaseCxImage)> image_;
};

}  // namespace keladjust::app

#endif
