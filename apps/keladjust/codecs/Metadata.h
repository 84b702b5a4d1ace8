#ifndef KELADJUST_APP_CODECS_METADATA_H
#define KELADJUST_APP_CODECS_METADATA_H

#include <memory>
#include <span>
#include <string>

#include "files/Bytes.h"
#include "pictures/Photo.h"

namespace keladjust::app {

/// What a picture file says about its picture: EXIF, XMP, IPTC, comment and colour profile.
///
/// Unreadable metadata never costs anyone a picture: it is left out, and said so.
class Metadata {
public:
    /// Nothing.
    Metadata();

    /// What `file` holds.
    explicit Metadata(std::span<const unsigned char> file);

    ~Metadata();
    Metadata(Metadata&&) noexcept;
    Metadata& operator=(Metadata&&) noexcept;

    /// The EXIF orientation, 1..8; 1 if there is none.
    int orientation() const;

    /// Makes the metadata fit `photo`, which stands upright: orientation, sizes, no thumbnail, no
    /// colour profile for another kind of pixel.
    void describe(const Photo& photo);

    /// The colour profile alone, for pictures made from this one.
    Metadata colourOnly() const;

    /// `encoded` with everything in it that its format can hold.
    ///
    /// @param notices gets a line for what could not be kept
    Bytes addTo(Bytes encoded, std::vector<std::string>& notices) const;

    /// What was lost on the way in.
    const std::vector<std::string>& notices() const;

    struct Content;

private:
    std::unique_ptr<Content> content_;
};

}  // namespace keladjust::app

#endif
