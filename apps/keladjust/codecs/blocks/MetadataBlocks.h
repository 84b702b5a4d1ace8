#ifndef KELADJUST_APP_CODECS_BLOCKS_METADATABLOCKS_H
#define KELADJUST_APP_CODECS_BLOCKS_METADATABLOCKS_H

#include <span>
#include <string>
#include <vector>

#include "files/Bytes.h"

namespace keladjust::app {

/// What a picture file says about its picture, in the blocks that the formats have in common; those
/// that are not there are empty.
struct MetadataBlocks {
    Bytes exif;        ///< the directories, from "II*" or "MM" on
    Bytes xmp;         ///< the packet
    Bytes resources;   ///< of Photoshop; IPTC is one of them
    Bytes profile;     ///< of colours
    std::string text;  ///< JPEG's comment
};

/// The blocks of a JPEG, PNG, TIFF or WebP file. What is damaged is left out, as far as that goes.
///
/// @throws std::runtime_error if nothing can be made of it
/// @throws std::bad_alloc
MetadataBlocks jpegBlocks(std::span<const unsigned char> file);
MetadataBlocks pngBlocks(std::span<const unsigned char> file);
MetadataBlocks tiffBlocks(std::span<const unsigned char> file);
MetadataBlocks webpBlocks(std::span<const unsigned char> file);

/// `encoded`, a file as the codec makes it, with all blocks that the format has room for.
///
/// @param notices gets a line for each that it has none for
/// @throws std::runtime_error if the file cannot be extended
/// @throws std::bad_alloc
Bytes withJpegBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                     std::vector<std::string>& notices);
Bytes withPngBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                    std::vector<std::string>& notices);
Bytes withTiffBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                     std::vector<std::string>& notices);
Bytes withWebPBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                     std::vector<std::string>& notices);

}  // namespace keladjust::app

#endif
