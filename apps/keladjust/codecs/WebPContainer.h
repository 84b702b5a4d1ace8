#ifndef KELADJUST_APP_CODECS_WEBPCONTAINER_H
#define KELADJUST_APP_CODECS_WEBPCONTAINER_H

#include <span>

#include "files/Bytes.h"

namespace keladjust::app {

/// What can stand beside the picture in a WebP file; empty parts are left out.
struct WebPChunks {
    std::span<const unsigned char> profile;
    std::span<const unsigned char> exif;
    std::span<const unsigned char> xmp;
};

/// A chunk of a WebP file by its four letters; nothing if there is none.
///
/// @throws std::runtime_error if the file is damaged
Bytes webpChunk(std::span<const unsigned char> file, const char* name);

/// `encoded`, a WebP file as the encoder makes it, with `chunks`.
Bytes withWebPChunks(const Bytes& encoded, const WebPChunks& chunks);

}  // namespace keladjust::app

#endif
