#ifndef KELADJUST_APP_CODECS_CODEC_H
#define KELADJUST_APP_CODECS_CODEC_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string_view>

#include "files/Bytes.h"
#include "pictures/Photo.h"
#include "pictures/PixelBound.h"

namespace keladjust::app {

struct EncodeOptions {
    int quality = 92;       ///< 1..100, of lossy formats
    bool lossless = false;  ///< where the format has a choice
};

/// Who follows a picture while it comes out of its file, from its first row to its last.
class DecodeWatcher {
public:
    virtual ~DecodeWatcher() = default;

    /// There are no rows yet. The picture stays where it is until end().
    ///
    /// @throws std::bad_alloc
    virtual void begin(Photo& photo) = 0;

    /// So many rows are as they will be.
    virtual void reach(std::uint32_t rows) noexcept = 0;

    /// The picture is no longer there when this returns. Called after each begin(), with all rows
    /// reached unless the file proves damaged.
    virtual void end() noexcept = 0;
};

/// Called before rows are read, with how many have to be as they are to be written. What it throws
/// ends the encoding.
using RowsNeeded = std::function<void(std::uint32_t rows)>;

/// A picture file format, from memory to memory. Metadata is none of its business.
class Codec {
public:
    virtual ~Codec() = default;

    /// For people: "JPEG".
    virtual std::string_view name() const = 0;

    /// In lower case without the dot, the usual one first.
    virtual std::span<const std::string_view> extensions() const = 0;

    /// Whether a file that begins with `start` is meant to be of this format.
    virtual bool recognises(std::span<const unsigned char> start) const = 0;

    virtual bool keepsAlpha() const = 0;

    /// @param watcher         may be null; not every picture can be followed, and of others nothing
    ///                        is told
    /// @throws Failure        for a damaged, truncated or unsupported file, or a picture beyond
    ///                        `bound`, for which no memory is taken
    /// @throws std::bad_alloc
    Photo decode(std::span<const unsigned char> file, const PixelBound& bound = {},
                 DecodeWatcher* watcher = nullptr) const;

    /// @throws Failure        if the format cannot hold the picture
    /// @throws std::bad_alloc
    Bytes encode(
        const Photo& photo, const EncodeOptions& options,
        const RowsNeeded& rowsNeeded = [](std::uint32_t) {}) const;

    bool hasExtension(std::string_view extension) const;

private:
    /// May take a lack of memory for a damaged file, as the libraries do.
    virtual Photo read(std::span<const unsigned char> file, const PixelBound& bound,
                       DecodeWatcher* watcher) const = 0;

    /// May take a lack of memory for any other reason.
    virtual Bytes write(const Photo& photo, const EncodeOptions& options,
                        const RowsNeeded& rowsNeeded) const = 0;
};

/// How many bytes from the start of a file recognises() looks at.
inline constexpr std::size_t signatureSize = 16;

const Codec& jpegCodec();
const Codec& pngCodec();
const Codec& tiffCodec();
const Codec& webpCodec();

std::span<const Codec* const> codecs();

/// The codec for a file with this beginning, or null. File names play no part.
const Codec* codecForContent(std::span<const unsigned char> start);

/// The codec for this file.
///
/// @throws Failure if the file is empty or of none of the formats
const Codec& codecForFile(std::span<const unsigned char> file);

/// The codec that an extension (lower case, no dot) stands for, or null.
const Codec* codecForExtension(std::string_view extension);

}  // namespace keladjust::app

#endif
