#ifndef KELADJUST_TESTS_ODDPICTURES_H
#define KELADJUST_TESTS_ODDPICTURES_H

#include <cstdint>
#include <filesystem>
#include <vector>

/// Files that the program reads and never writes, made with the libraries themselves.
namespace keladjust::test {

/// One row of RGB samples, three per pixel.
void writeDeepPng(const std::filesystem::path& path, const std::vector<std::uint16_t>& samples);
void writeDeepTiff(const std::filesystem::path& path, const std::vector<std::uint16_t>& samples);

/// Two pixels in one row: palette entries red and half-transparent blue.
void writePalettePng(const std::filesystem::path& path);

/// One row of grey and alpha, two bytes per pixel.
void writeGreyAlphaPng(const std::filesystem::path& path, const std::vector<std::uint8_t>& samples);

/// 16 x 16 pixels of one ink mixture, stored as missing ink.
void writeCmykJpeg(const std::filesystem::path& path, const std::vector<std::uint8_t>& inks);

/// 32 x 16 pixels of one colour with multiplied alpha, in 16 x 16 tiles if `tiled`.
void writeMultipliedTiff(const std::filesystem::path& path, const std::vector<std::uint8_t>& colour,
                         bool tiled);

/// A TIFF of one grey pixel per page, each marked as a preview or not.
void writePagedTiff(const std::filesystem::path& path, const std::vector<bool>& previews);

/// A picture of which the header says that it is far larger than it is.
void writeAbsurdJpeg(const std::filesystem::path& path);

}  // namespace keladjust::test

#endif
