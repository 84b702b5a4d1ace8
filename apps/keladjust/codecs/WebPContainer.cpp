#include "codecs/WebPContainer.h"

#include <webp/mux.h>

#include <memory>
#include <new>
#include <stdexcept>

namespace keladjust::app {

namespace {

void check(WebPMuxError result) {
    if (result == WEBP_MUX_MEMORY_ERROR) throw std::bad_alloc();
    if (result != WEBP_MUX_OK) throw std::runtime_error("WebP cannot hold it");
}

void set(WebPMux* mux, const char* name, std::span<const unsigned char> bytes) {
    if (bytes.empty()) return;
    const WebPData data{bytes.data(), bytes.size()};
    check(WebPMuxSetChunk(mux, name, &data, 0));
}

using Mux = std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)>;

Mux open(std::span<const unsigned char> file) {
    const WebPData picture{file.data(), file.size()};
    return {WebPMuxCreate(&picture, 0), &WebPMuxDelete};
}

}  // namespace

Bytes webpChunk(std::span<const unsigned char> file, const char* name) {
    const Mux mux = open(file);
    if (mux == nullptr) throw std::runtime_error("the WebP file is damaged");
    WebPData chunk;
    if (WebPMuxGetChunk(mux.get(), name, &chunk) != WEBP_MUX_OK) return {};
    return Bytes(chunk.bytes, chunk.bytes + chunk.size);
}

Bytes withWebPChunks(const Bytes& encoded, const WebPChunks& chunks) {
    const Mux mux = open(encoded);
    if (mux == nullptr) throw std::bad_alloc();
    set(mux.get(), "ICCP", chunks.profile);
    set(mux.get(), "EXIF", chunks.exif);
    set(mux.get(), "XMP ", chunks.xmp);

    WebPData assembled;
    check(WebPMuxAssemble(mux.get(), &assembled));
    const std::unique_ptr<WebPData, decltype(&WebPDataClear)> owner(&assembled, &WebPDataClear);
    return Bytes(assembled.bytes, assembled.bytes + assembled.size);
}

}  // namespace keladjust::app
