// A strip of black-body colours, which a host shows beside its temperature slider.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "filters/temperature/BlackBody.h"
#include "platform/FloatingPoint.h"
#include "walks/Picture.h"

CxImage* createTemperateColor(int width, int height) {
    const keladjust::platform::DefaultFloatingPoint scope;
    auto strip = std::unique_ptr<CxImage>(new (std::nothrow) CxImage());
    if (strip == nullptr || width < 1 || height < 1) return strip.release();

    strip->Create(static_cast<unsigned>(width), static_cast<unsigned>(height), 24,
                  IMAGE_FORMAT_BGR);
    const auto picture = keladjust::pictureOf(strip.get());
    if (!picture) return strip.release();
    std::uint8_t* const first = picture->row(0);
    for (std::int64_t i = 0; i < width; ++i) {
        const keladjust::BlackBody body(30000 - 100 * i);
        first[3 * i] = keladjust::BlackBody::toByte(body.blue);
        first[3 * i + 1] = keladjust::BlackBody::toByte(body.green);
        first[3 * i + 2] = keladjust::BlackBody::toByte(body.red);
    }
    for (std::size_t y = 1; y < picture->height; ++y) {
        std::copy_n(first, picture->stride, picture->row(y));
    }
    return strip.release();
}
