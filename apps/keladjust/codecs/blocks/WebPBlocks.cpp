#include <string_view>

#include "codecs/WebPContainer.h"
#include "codecs/blocks/MetadataBlocks.h"

namespace keladjust::app {

MetadataBlocks webpBlocks(std::span<const unsigned char> file) {
    MetadataBlocks blocks;
    blocks.profile = webpChunk(file, "ICCP");
    blocks.exif = webpChunk(file, "EXIF");
    blocks.xmp = webpChunk(file, "XMP ");
    // Some programs put it as into JPEG.
    constexpr std::string_view exifStart("Exif\0\0", 6);
    if (std::string_view(reinterpret_cast<const char*>(blocks.exif.data()), blocks.exif.size())
            .starts_with(exifStart)) {
        blocks.exif.erase(blocks.exif.begin(), blocks.exif.begin() + 6);
    }
    return blocks;
}

// It has no room for resources and comments.
Bytes withWebPBlocks(const Bytes& encoded, const MetadataBlocks& blocks,
                     std::vector<std::string>&) {
    return withWebPChunks(encoded, {blocks.profile, blocks.exif, blocks.xmp});
}

}  // namespace keladjust::app
