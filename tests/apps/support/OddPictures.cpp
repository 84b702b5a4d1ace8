#include "support/OddPictures.h"

#include <png.h>
#include <tiffio.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include <jpeglib.h>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "support/Pictures.h"

namespace keladjust::test {

namespace {

void writePng(const std::filesystem::path& path, png_uint_32 width, png_uint_32 format,
              const void* pixels, const void* palette = nullptr, png_uint_32 entries = 0) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = 1;
    image.format = format;
    image.colormap_entries = entries;
    if (!png_image_write_to_file(&image, path.string().c_str(), 0, pixels, 0, palette)) {
        throw std::runtime_error(image.message);
    }
}

}  // namespace

void writeDeepPng(const std::filesystem::path& path, const std::vector<std::uint16_t>& samples) {
    writePng(path, static_cast<png_uint_32>(samples.size() / 3), PNG_FORMAT_LINEAR_RGB,
             samples.data());
}

void writePalettePng(const std::filesystem::path& path) {
    const std::array<std::uint8_t, 8> palette = {255, 0, 0, 255, 0, 0, 255, 128};
    const std::array<std::uint8_t, 2> pixels = {0, 1};
    writePng(path, 2, PNG_FORMAT_RGBA | PNG_FORMAT_FLAG_COLORMAP, pixels.data(), palette.data(), 2);
}

void writeGreyAlphaPng(const std::filesystem::path& path,
                       const std::vector<std::uint8_t>& samples) {
    writePng(path, static_cast<png_uint_32>(samples.size() / 2), PNG_FORMAT_GA, samples.data());
}

void writeDeepTiff(const std::filesystem::path& path, const std::vector<std::uint16_t>& samples) {
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(path.string().c_str(), "w"),
                                                           &TIFFClose);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(samples.size() / 3));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    std::vector<std::uint16_t> row = samples;
    TIFFWriteScanline(tiff.get(), row.data(), 0);
}

void writeCmykJpeg(const std::filesystem::path& path, const std::vector<std::uint8_t>& inks) {
    constexpr JDIMENSION side = 16;
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &buffer, &size);
    jpeg.image_width = side;
    jpeg.image_height = side;
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    std::vector<JSAMPLE> row;
    for (JDIMENSION x = 0; x < side; ++x) row.insert(row.end(), inks.begin(), inks.end());
    JSAMPROW rows = row.data();
    for (JDIMENSION y = 0; y < side; ++y) jpeg_write_scanlines(&jpeg, &rows, 1);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(buffer, &std::free);
    app::writeFile(path, std::span<const unsigned char>(buffer, size));
}

void writeMultipliedTiff(const std::filesystem::path& path, const std::vector<std::uint8_t>& colour,
                         bool tiled) {
    constexpr std::uint32_t side = 16;
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(path.string().c_str(), "w"),
                                                           &TIFFClose);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, 2 * side);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, side);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    const std::uint16_t kind = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tiff.get(), TIFFTAG_EXTRASAMPLES, 1, &kind);
    std::vector<std::uint8_t> pixels;
    for (std::uint32_t index = 0; index < side * side; ++index) {
        pixels.insert(pixels.end(), colour.begin(), colour.end());
    }
    if (tiled) {
        TIFFSetField(tiff.get(), TIFFTAG_TILEWIDTH, side);
        TIFFSetField(tiff.get(), TIFFTAG_TILELENGTH, side);
        TIFFWriteTile(tiff.get(), pixels.data(), 0, 0, 0, 0);
        TIFFWriteTile(tiff.get(), pixels.data(), side, 0, 0, 0);
    } else {
        for (std::uint32_t y = 0; y < side; ++y) TIFFWriteScanline(tiff.get(), pixels.data(), y);
    }
}

void writePagedTiff(const std::filesystem::path& path, const std::vector<bool>& previews) {
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(path.string().c_str(), "w"),
                                                           &TIFFClose);
    for (const bool preview : previews) {
        TIFFSetField(tiff.get(), TIFFTAG_SUBFILETYPE, preview ? FILETYPE_REDUCEDIMAGE : 0);
        TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, 1);
        TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 1);
        TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        std::uint8_t pixel = 7;
        TIFFWriteScanline(tiff.get(), &pixel, 0);
        TIFFWriteDirectory(tiff.get());
    }
}

void writeAbsurdJpeg(const std::filesystem::path& path) {
    app::Bytes jpeg = app::jpegCodec().encode(noise(16, 16, app::ChannelLayout::bgra), {});
    // The frame header: marker FF C0, length, precision, then height and width in two bytes each.
    for (std::size_t index = 2; index + 9 < jpeg.size(); ++index) {
        if (jpeg[index] == 0xFF && jpeg[index + 1] == 0xC0) {
            for (std::size_t size = 5; size < 9; ++size) jpeg[index + size] = 0xFE;
            break;
        }
    }
    app::writeFile(path, std::span<const unsigned char>(jpeg));
}

}  // namespace keladjust::test
