#ifndef KELADJUST_TESTS_GOLDEN_DIGESTBYDEPTH_H
#define KELADJUST_TESTS_GOLDEN_DIGESTBYDEPTH_H

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "golden/Pictures.h"
#include "golden/Results.h"

namespace keladjust::test {

/// What `stage(CxImage*)` makes of the golden pictures of `bpp` bits, padding of rows included.
template <class Stage>
std::uint64_t digestOfPictures(unsigned bpp, Stage stage) {
    Digest digest;
    for (const HostPicture& original : goldenPictures(bpp)) {
        HostPicture picture(original);
        stage(picture.image());
        EXPECT_TRUE(picture.guardsIntact());
        digest.add({picture.bits(), picture.size()});
    }
    return digest.value();
}

/// The same for pictures of 8, 16, 24 and 32 bits.
template <class Stage>
std::array<std::uint64_t, 4> digestByDepth(Stage stage) {
    return {digestOfPictures(8, stage), digestOfPictures(16, stage), digestOfPictures(24, stage),
            digestOfPictures(32, stage)};
}

}  // namespace keladjust::test

#endif
