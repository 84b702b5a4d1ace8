#ifndef KELADJUST_CXIMAGE_H
#define KELADJUST_CXIMAGE_H

#include <keladjust/keladjust.h>

/// A rectangle of pixels in one packed buffer: the type that every image stage takes and returns.
///
/// Rows are stored first row first, each padded to a multiple of four bytes; pixel (x, y) starts
/// `effWidth * y + bytesPerPixel * x` bytes after the first. The image either owns its buffer
/// (allocated with `calloc`, released with `free`) or has adopted one of the host's, which it never
/// frees except in Copy().
///
/// | format               | bytes | order in memory | notes                                       |
/// |----------------------|-------|-----------------|---------------------------------------------|
/// | IMAGE_FORMAT_GRAY    | 1     | grey            | reads fill the whole quad, writes take red  |
/// | IMAGE_FORMAT_RGB     | 3, 2  | R, G, B         | 2 bytes: a word red << 11, green << 5, blue |
/// | IMAGE_FORMAT_BGR     | 3, 2  | B, G, R         | 2 bytes: a word blue << 11, green << 5, red |
/// | IMAGE_FORMAT_RGBA    | 4     | R, G, B, A      |                                             |
/// | IMAGE_FORMAT_BGRA    | 4     | B, G, R, A      |                                             |
/// | IMAGE_FORMAT_UNKNOWN | -     | -               | no image: pixels read as zero, writes lost  |
///
/// Any other pair of format and depth reads as zero and ignores writes. The layout of the members
/// is part of the binary interface.
class KELADJUST_API CxImage {
public:
    /// An empty image: no pixels, every size 0, IMAGE_FORMAT_UNKNOWN.
    CxImage();

    /// An empty image on which Create() has been called with the same arguments.
    CxImage(unsigned int width, unsigned int height, unsigned int bpp, _ImagePixelFormat format);

    /// Adopts the host's buffer `*ppBits` without copying; a null `ppBits` gives an image without
    /// pixels. The buffer must hold GetSize() bytes and outlive the image. If Copy() may change the
    /// geometry of this image, the buffer must come from `malloc`, because Copy() then frees it.
    CxImage(unsigned char** ppBits, unsigned int width, unsigned int height, unsigned int bpp,
            _ImagePixelFormat format);

    /// Shallow: both objects then name the same buffer, ownership included.
    CxImage(const CxImage&) = default;
    CxImage& operator=(const CxImage&) = default;

    /// Frees the buffer if the image owns it.
    virtual ~CxImage();

    /// Gives the image a new geometry and, if it owns its pixels, a new zero-filled buffer.
    ///
    /// An image that has adopted a buffer keeps it and takes only the geometry.
    /// @param bpp bits per pixel; 8, 16, 24 and 32 are meaningful. 8 forces IMAGE_FORMAT_GRAY.
    /// @return the image; null, and the image empty, if a size is 0, if the buffer size does not
    ///         fit in 32 bits, or if memory is short.
    void* Create(unsigned int width, unsigned int height, unsigned int bpp,
                 _ImagePixelFormat format);

    /// Makes the image empty, freeing an owned buffer. An adopted one stays where GetBits() shows
    /// it.
    void Destroy();

    unsigned char* GetBits();
    unsigned int GetWidth() const;
    unsigned int GetHeight() const;
    unsigned int GetBpp() const;
    /// Bytes per row: `((width * bpp + 31) >> 5) * 4`.
    unsigned int GetEffWidth() const;
    /// Bytes in the buffer: GetEffWidth() * GetHeight().
    long GetSize();
    _ImagePixelFormat getFormat();

    /// The pixel at column `x` of row `y`, zero outside the image.
    ///
    /// @param getAlpha false reads a 32-bit pixel's alpha as 0. A grey pixel's alpha is always the
    ///        grey value, a 24- or 16-bit pixel's always 0.
    ///
    /// Channels of 16-bit pixels are the unscaled fields of the word read as a signed number: the
    /// low five bits, the eight bits above bit 5 (two of the highest field among them), and the
    /// sign-extended top five.
    _tagMyRGBQUAD GetPixelColor(int x, int y, bool getAlpha);

    /// Writes the pixel at column `x` of row `y`; ignored outside the image. Alpha is always
    /// written where the format has one. A 16-bit word is (high * 64 + green) * 32 + low, cut to 16
    /// bits, from channels that are not scaled down.
    void SetPixelColor(int x, int y, _tagMyRGBQUAD colour);

    /// Takes geometry and pixels of `source`; a null pointer is ignored.
    ///
    /// A buffer of another geometry, owned or adopted, is freed; the host's pointer to an adopted
    /// one is set to null, unless it names another buffer by now, and the adopted one then left
    /// alone. With equal geometry the buffer is reused. Ownership is taken over from `source`,
    /// unless a new buffer was allocated: that one is owned.
    void Copy(const CxImage* source);
    /// The same; ignored if `source` has no pixels.
    void Copy(const CxImage& source);

    /// Splits the image into 8-bit planes, which are destroyed and created anew.
    /// @param a may be null.
    /// @return false, and the planes untouched, for an image without pixels, grey or of unknown
    ///         format, or if a plane is missing.
    bool SplitRGBA(CxImage* r, CxImage* g, CxImage* b, CxImage* a);
    /// As SplitRGBA(), into hue, saturation and lightness of RGBtoHSL().
    bool SplitHSLA(CxImage* h, CxImage* s, CxImage* l, CxImage* a);

    /// Joins 8-bit planes into this image, which keeps its own depth and format.
    ///
    /// Planes that differ in size or are not 8 bits deep are a programming error: the platform's
    /// assertion report, release builds included.
    /// @param a may be null: alpha is then this image's own, 0 in a new buffer.
    /// @param colorSpace 1: the planes are hue, saturation and lightness; else red, green and blue.
    /// @return false if `r`, `g` or `b` is null or an adopted buffer is too small.
    bool Combine(CxImage* r, CxImage* g, CxImage* b, CxImage* a, int colorSpace);

    /// RGB to 8-bit HSL in integers: hue (0..255 for the full circle, 170 for greys) in `red`,
    /// saturation in `green`, lightness in `blue`, 0 in `alpha`.
    static _tagMyRGBQUAD RGBtoHSL(_tagMyRGBQUAD rgb);
    /// The way back, in single precision, truncating; `alpha` is 0. The round trip is not exact.
    static _tagMyRGBQUAD HSLtoRGB(_tagMyRGBQUAD hsl);
    /// One channel of an HSL colour: `m1` at hues 240..360 degrees, `m2` at 60..180, linear
    /// between.
    static float HueToRGB(float m1, float m2, float hue);

    // Public so that hosts can check the layout; change the image through the operations above.
    unsigned char* pBits;        ///< first byte of row 0, null without pixels
    unsigned char** ppHostBits;  ///< the host's own pointer to an adopted buffer, else null
    bool ownsBits;               ///< true if the image allocated `pBits`
    unsigned int width;          ///< pixels per row
    unsigned int height;         ///< rows
    unsigned int bpp;            ///< bits per pixel
    unsigned int bytesPerPixel;  ///< 1, 2, 3, 4; 0 for any other `bpp`
    unsigned int effWidth;       ///< bytes per row
    unsigned int size;           ///< bytes in the buffer
    _ImagePixelFormat format;    ///< IMAGE_FORMAT_GRAY whenever `bytesPerPixel` is 1
};

#endif
