#include "codecs/Codec.h"

#include <algorithm>
#include <array>

#include "platform/AllocationWatch.h"
#include "text/Failure.h"

namespace keladjust::app {

bool Codec::hasExtension(std::string_view extension) const {
    return std::ranges::find(extensions(), extension) != extensions().end();
}

Photo Codec::decode(std::span<const unsigned char> file, const PixelBound& bound,
                    DecodeWatcher* watcher) const {
    const platform::AllocationWatch watch;
    try {
        return read(file, bound, watcher);
    } catch (const Failure&) {
        watch.throwIfOneFailed();
        throw;
    }
}

Bytes Codec::encode(const Photo& photo, const EncodeOptions& options,
                    const RowsNeeded& rowsNeeded) const {
    const platform::AllocationWatch watch;
    try {
        return write(photo, options, rowsNeeded);
    } catch (const Failure&) {
        watch.throwIfOneFailed();
        throw;
    }
}

std::span<const Codec* const> codecs() {
    static const std::array<const Codec*, 4> all = {&jpegCodec(), &pngCodec(), &tiffCodec(),
                                                    &webpCodec()};
    return all;
}

const Codec* codecForContent(std::span<const unsigned char> start) {
    for (const Codec* codec : codecs()) {
        if (codec->recognises(start)) return codec;
    }
    return nullptr;
}

const Codec& codecForFile(std::span<const unsigned char> file) {
    if (file.empty()) throw Failure("the file is empty");
    const Codec* codec = codecForContent(file);
    if (codec == nullptr)
        throw Failure("not a JPEG, PNG, TIFF or WebP picture; convert it to one first");
    return *codec;
}

const Codec* codecForExtension(std::string_view extension) {
    for (const Codec* codec : codecs()) {
        if (codec->hasExtension(extension)) return codec;
    }
    return nullptr;
}

}  // namespace keladjust::app
