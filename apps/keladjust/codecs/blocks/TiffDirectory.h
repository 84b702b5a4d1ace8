#ifndef KELADJUST_APP_CODECS_BLOCKS_TIFFDIRECTORY_H
#define KELADJUST_APP_CODECS_BLOCKS_TIFFDIRECTORY_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "files/Bytes.h"

namespace keladjust::app {

enum class ByteOrder { little, big };

/// Tags that have a part to play here.
enum TiffTag : std::uint16_t {
    tagImageWidth = 0x0100,
    tagImageLength = 0x0101,
    tagOrientation = 0x0112,
    tagThumbnail = 0x0201,
    tagThumbnailLength = 0x0202,
    tagXmp = 0x02BC,
    tagIptc = 0x83BB,
    tagResources = 0x8649,
    tagExif = 0x8769,
    tagProfile = 0x8773,
    tagGps = 0x8825,
    tagPixelXDimension = 0xA002,
    tagPixelYDimension = 0xA003,
    tagInteroperability = 0xA005,
};

/// Kinds of values that have a part to play here.
enum TiffType : std::uint16_t { typeByte = 1, typeShort = 3, typeLong = 4, typeUndefined = 7 };

struct TiffEntry;

/// A directory as TIFF and EXIF have it.
using TiffDirectory = std::vector<TiffEntry>;

struct TiffEntry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    Bytes value;              ///< numbers in the byte order of where they were read
    std::size_t record = 0;   ///< where in the bytes it was read from its twelve stand
    TiffDirectory directory;  ///< the one that it points to, instead of a value
};

/// What begins with "II*" or "MM": a TIFF file or an EXIF block.
struct TiffStructure {
    /// What can be read of it: entries and directories that point outside are left out. Nothing if
    /// `bytes` are of another kind.
    explicit TiffStructure(std::span<const unsigned char> bytes);

    ByteOrder order = ByteOrder::little;
    TiffDirectory first;
    std::size_t nextLink = 0;  ///< where it says which directory comes next; 0: nowhere
    TiffDirectory second;      ///< of an EXIF block: that of the thumbnail
};

/// The number in an entry of one SHORT or LONG; 0 for all else.
std::uint32_t numberIn(const TiffEntry& entry, ByteOrder order);

void put16(Bytes& bytes, std::size_t position, std::uint16_t value, ByteOrder order);
void put32(Bytes& bytes, std::size_t position, std::uint32_t value, ByteOrder order);

/// An entry's value, read in one byte order, in the other.
void swapNumbers(TiffEntry& entry);

/// Appends the directory, which has nothing after it, and all it points to. Positions count from
/// the start of `bytes`.
///
/// @return where it stands
/// @throws std::length_error if that takes more than 32 bits
std::uint32_t append(Bytes& bytes, TiffDirectory directory, ByteOrder order);

}  // namespace keladjust::app

#endif
