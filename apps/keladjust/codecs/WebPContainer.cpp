#include "codecs/WebPContainer.h"

#include <webp/mux.h>

#include <memory>
#include <new>

namespace keladjust::app {

namespace {

void set(WebPMux* mux, const char* name, std::span<const unsigned char> bytes) {
    if (bytes.empty()) return;
    const WebPData data{bytes.data(), bytes.size()};
    if (WebPMuxSetChunk(mux, name, &data, 0) != WEBP_MUX_OK) throw std::bad_alloc();
}

}  // namespace

Bytes withWebPChunks(const Bytes& encoded, const WebPChunks& chunks) {
    const WebPData picture{encoded.data(), encoded.size()};
    const std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)> mux(WebPMuxCreate(&picture, 0),
                                                                 &WebPMuxDelete);
    if (mux == nullptr) throw std::bad_alloc();
    set(mux.get(), "ICCP", chunks.profile);
    set(mux.get(), "EXIF", chunks.exif);
    set(mux.get(), "XMP ", chunks.xmp);

    WebPData assembled;
    if (WebPMuxAssemble(mux.get(), &assembled) != WEBP_MUX_OK) throw std::bad_alloc();
    const std::unique_ptr<WebPData, decltype(&WebPDataClear)> owner(&assembled, &WebPDataClear);
    return Bytes(assembled.bytes, assembled.bytes + assembled.size);
}

}  // namespace keladjust::app
