#ifndef KELADJUST_KELADJUST_H
#define KELADJUST_KELADJUST_H

/**
 * @file keladjust.h
 * The whole C interface of keladjust: pictures, settings, the adjustment pipeline, the colour table
 * and every stage by itself.
 *
 * Pictures are adjusted in place: a stage returns the pointer it was given. Settings are slider
 * values; none is checked or limited, and any value, NaN and infinities included, has a defined
 * result. A null image, or one without pixels, comes back as it is. A stage that runs short of
 * memory leaves its picture untouched and sets errno to ENOMEM. No function throws.
 *
 * Any number of threads may call keladjustRun() on the CPU path, keladjustBake(), the stages and
 * the building blocks at a time, each on pictures and tables of its own, while the engine runs,
 * starts or stops. The colour table of getLut3dData() and writeLut3DFile() is one for all: these
 * two, initOgreRunTime() and releaseOgre() are called by one thread at a time.
 *
 * Results do not depend on the machine, the instruction set, the number of threads or the caller's
 * floating-point environment, which every call restores.
 */

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#if defined(_MSC_VER) || (defined(__STDC_VERSION__) && __STDC_VERSION__ >= 199901L)
#include <stdbool.h>
#elif !defined(bool) /* C90 has none; a byte of 0 or 1 is what others pass */
#define bool unsigned char
#define true 1
#define false 0
#endif
#endif

#if defined(_MSC_VER) && defined(KELADJUST_BUILD)
#define KELADJUST_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(KELADJUST_BUILD) && !defined(KELADJUST_STATIC)
#define KELADJUST_API __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32) && !defined(KELADJUST_STATIC)
#define KELADJUST_API __attribute__((visibility("default")))
#else
#define KELADJUST_API
#endif

/** The version of this header; keladjustVersion() gives the library's. */
#define KELADJUST_VERSION_MAJOR 0
#define KELADJUST_VERSION_MINOR 2
#define KELADJUST_VERSION_PATCH 0

/** Order of the bytes of a pixel; see CxImage. 32 bits wide. */
typedef enum _ImagePixelFormat {
    IMAGE_FORMAT_GRAY = 0,   /**< one grey byte */
    IMAGE_FORMAT_RGB = 1,    /**< red, green, blue */
    IMAGE_FORMAT_BGR = 2,    /**< blue, green, red */
    IMAGE_FORMAT_RGBA = 3,   /**< red, green, blue, alpha */
    IMAGE_FORMAT_BGRA = 4,   /**< blue, green, red, alpha */
    IMAGE_FORMAT_UNKNOWN = 5 /**< no image */
} _ImagePixelFormat;

/** One pixel; or lightness, saturation, hue, alpha in the same order. */
typedef struct _tagMyRGBQUAD {
    unsigned char blue;
    unsigned char green;
    unsigned char red;
    unsigned char alpha;
} _tagMyRGBQUAD;

/**
 * Changes to one band of hues. Bounds are degrees, 0..360; a band with `minDegree` above
 * `maxDegree` wraps through 0. The band is left alone while its last three fields are 0.
 */
typedef struct _AdjustColourRange {
    float minDegree;
    float maxDegree;
    float hue;        /**< shift in degrees; a positive one counts 1.2 times */
    float saturation; /**< percent of the saturation, -100..100 */
    float brightness; /**< eighths of a percent of the lightness, -100..100 */
} _AdjustColourRange;

/** Places of the colour ranges in `_AdjustParam::range`, the order in which they are applied. */
enum {
    KELADJUST_RANGE_RED,
    KELADJUST_RANGE_ORANGE,
    KELADJUST_RANGE_YELLOW,
    KELADJUST_RANGE_GREEN,
    KELADJUST_RANGE_MAGENTA,
    KELADJUST_RANGE_PURPLE,
    KELADJUST_RANGE_BLUE,
    KELADJUST_RANGE_AQUA,
    KELADJUST_RANGE_COUNT
};

/** The slots of `_AdjustParam`. */
enum { KELADJUST_SLOT_COUNT = 65 };

/**
 * One setting per slider: KELADJUST_SLOT_COUNT slots of four bytes.
 *
 * Later versions may add slots at the end. keladjustRun() and keladjustBake() are told how many a
 * host has; functions that take the record by value use the 65 of version 0.2.
 *
 * Every stage leaves the picture alone at its identity value, which is 11500 for `temperature` and
 * 0 for all others. Ranges in the comments are the useful ones.
 */
typedef struct _AdjustParam {
    /**
     * 1700..16400; identity 11500, warmer above, cooler below. Warmth ends at 16400: its black body
     * has 1700 kelvin there and is not let cool down any further. Cold has no such end, only
     * colours that are cut off more and more.
     */
    int32_t temperature;
    float tint;       /**< -100..100, green to magenta */
    float exposure;   /**< -100..100; 50 is a factor of 2^0.6 */
    float brightness; /**< -100..100 */
    float contrast;   /**< -100..100 */
    float vibrance;   /**< -100..100 */
    float saturation; /**< -100..100 */
    float highlights; /**< -100..100 */
    float shadows;    /**< -100..100 */
    float whites;     /**< -100..100 */
    float blacks;     /**< -100..100 */
    float clarity;    /**< -100..100 */
    float sharpen;    /**< 0..255 */

    _AdjustColourRange range[KELADJUST_RANGE_COUNT];

    float vignetteAmount;          /**< -100..100; darkens the border when negative */
    float vignetteSize;            /**< 0..100 */
    float vignetteRoundness;       /**< 0..100 */
    float vignetteFeather;         /**< 0..100 */
    float vignetteExposure;        /**< -100..100, of the inside */
    float vignetteHighlights;      /**< 0..100; 50 is neutral */
    float distortion;              /**< -100..100 */
    float fringing;                /**< -100..100 */
    float dehaze;                  /**< -100..100 */
    float diffuse;                 /**< -100..100 */
    float colourNoiseReduction;    /**< 0..100 */
    float luminanceNoiseReduction; /**< 0..100 */
} _AdjustParam;

#ifdef __cplusplus
class CxImage;
extern "C" {
#else
/** A picture; C++ hosts see its members in CxImage.h. */
typedef struct CxImage CxImage;
#endif

/**
 * @name Life of the library
 * @{
 */

/**
 * Starts the rendering engine; optional, and needed for the colour table.
 *
 * @param resourcePrefix text that stands directly before "resources.cfg"; null is empty
 * @param pluginPrefix   text that stands directly before "plugins.cfg"; null is empty
 * @return true if the engine came up. Otherwise every adjustment runs on the CPU; calling again
 *         tries again. While the engine runs, true and nothing else happens.
 *
 * The engine is a file of its own beside the library's, which is loaded here and unloaded by
 * releaseOgre(). An adjustment that another thread asks for meanwhile waits until the start is
 * over.
 */
KELADJUST_API bool initOgreRunTime(const char* resourcePrefix, const char* pluginPrefix);

/** Stops the engine and frees the colour table. Harmless at any time. */
KELADJUST_API void releaseOgre(void);

/**
 * Sets the text that stands directly before "Ogre.log" in the name of the engine's log; call it
 * before initOgreRunTime().
 *
 * @param path at most 511 characters, the rest is cut off; null is empty
 * @return the library's own copy
 */
KELADJUST_API const char* setLogPath(const char* path);

/** Bounds the threads that one call may use, the caller's included; 0 or less: as many as cores. */
KELADJUST_API void setMaxThreads(int count);

/** The library's version, such as "0.2.0". */
KELADJUST_API const char* keladjustVersion(void);

/** @} */

/**
 * @name The record describes itself
 * @{
 */

/**
 * One slot of `_AdjustParam`, as options, sliders, properties and help show it.
 *
 * A record with the `identity` of every slot leaves pictures alone. Slots that only say how others
 * act, which are the bounds of the colour ranges and the shape of the vignette, do so at any value;
 * their identity is their `usual` value, at which a slider that is moved does what its name says. A
 * front end starts from `usual`.
 */
typedef struct KeladjustSetting {
    const char* name;  /**< in kebab-case: "exposure", "red-hue", "vignette-amount" */
    const char* label; /**< "Exposure" */
    const char* group; /**< heading over neighbours: "Basic" */
    const char* help;  /**< one line, without a full stop */
    int32_t slot;      /**< 0..64: the value stands 4 * slot bytes into the record */
    int32_t isInteger; /**< 1: an int32_t (temperature); 0: a float */
    float identity;
    float lowest; /**< of the useful range; any value works */
    float highest;
    float usual; /**< what a front end starts from */
} KeladjustSetting;

/**
 * Every slot of the record, in its order.
 *
 * @param count how many there are; may be null
 * @return a table that lives as long as the library is loaded
 */
KELADJUST_API const KeladjustSetting* keladjustSettings(int* count);

/** @} */

/**
 * @name Pictures
 * @{
 */

/**
 * Wraps a picture of the host's, without copying it.
 *
 * @param ppBits address of the host's pointer to the first row; rows are padded to a multiple of
 *               four bytes. The buffer stays the host's and must outlive the image.
 * @param width  pixels per row
 * @param height rows
 * @param bpp    8, 16, 24 or 32 bits per pixel; 8 forces IMAGE_FORMAT_GRAY
 * @param format order of a pixel's bytes; see CxImage for the pairs that have a meaning. A picture
 *               of any other pair stays as it is.
 * @return an image for releaseCxImage(); null only if memory is short
 */
KELADJUST_API CxImage* createCxImage(unsigned char** ppBits, unsigned int width,
                                     unsigned int height, unsigned int bpp,
                                     _ImagePixelFormat format);

/**
 * Loads a picture file through the engine. Its pixels belong to the library and live until the next
 * load.
 *
 * @return an image for releaseCxImage(). Without a running engine, or if the file cannot be loaded,
 *         one without pixels: null bits, 0 x 0, IMAGE_FORMAT_UNKNOWN.
 */
KELADJUST_API CxImage* createCxImageFromFile(const char* fileName);

/** Ends an image; an adopted buffer stays as it is. Null is ignored. */
KELADJUST_API void releaseCxImage(CxImage* image);

/** @} */

/**
 * @name Adjustment
 * @{
 */

/**
 * Applies every setting, in a fixed order, in place. From initOgreRunTime() to releaseOgre() calls
 * wait for one another, on whichever path; without the engine any number of threads may call it at
 * a time, as they always may keladjustRun() on the CPU.
 *
 * @return `image`
 */
KELADJUST_API CxImage* doAdjust(CxImage* image, _AdjustParam parameters);

/** Where keladjustRun() works. */
typedef enum KeladjustPath {
    KELADJUST_AUTO = 0, /**< as doAdjust() would: on the GPU if it can, else on the CPU */
    KELADJUST_CPU = 1,
    KELADJUST_GPU = 2 /**< on the GPU or not at all */
} KeladjustPath;

/** What a host wants from keladjustRun() beside the result, and what it is told. */
typedef struct KeladjustRun {
    uint32_t size;      /**< sizeof(KeladjustRun); what lies behind counts as 0, is not written */
    int32_t path;       /**< a KeladjustPath */
    int32_t maxThreads; /**< of this call; 0 or less: as setMaxThreads() says */
    /**
     * Called every few milliseconds on the calling thread, with the share of the work that is done:
     * it begins at 0, never falls, and is 1 once all is done. May be null. A result other than 0
     * cancels, and so does a C++ exception, which goes no further; at 1 it is too late for that. It
     * may adjust other pictures with this library on the CPU, but must neither start nor stop the
     * engine nor call doAdjust(). Sees the default floating-point environment.
     */
    int32_t (*progress)(void* user, float share);
    void* user;           /**< for `progress` */
    int32_t pathTaken;    /**< out: KELADJUST_CPU or KELADJUST_GPU; KELADJUST_AUTO if refused */
    char reason[128];     /**< out: why not the path asked for, or why refused; "" otherwise */
    int32_t hardwareOnly; /**< KELADJUST_AUTO: if not 0, a driver without hardware counts as none */
} KeladjustRun;

/** How keladjustRun() ended. */
typedef enum KeladjustResult {
    KELADJUST_DONE = 0,
    KELADJUST_CANCELLED = 1, /**< the picture is adjusted in part */
    KELADJUST_REFUSED = 2    /**< the picture is as it was */
} KeladjustResult;

/**
 * Applies every setting, in a fixed order, in place, as doAdjust() does, and tells how it went.
 *
 * On the CPU any number of threads may call it at a time, for pictures of their own, while the
 * engine is running or not. On the GPU calls wait for one another and for doAdjust().
 *
 * What KELADJUST_AUTO finds the GPU unable to adjust is adjusted on the CPU as a whole. Cancelling
 * takes effect within some 20 ms of work on a picture of 12 megapixels; hosts that cancel work on a
 * copy.
 *
 * @param image       null is refused
 * @param record      null is refused
 * @param recordBytes sizeof(_AdjustParam) of the host's header. Slots that are missing from a
 *                    shorter record are at identity; a longer one is refused unless what this
 *                    library does not know is 0.
 * @param run         may be null: KELADJUST_AUTO, nothing else
 */
KELADJUST_API KeladjustResult keladjustRun(CxImage* image, const _AdjustParam* record,
                                           size_t recordBytes, KeladjustRun* run);

/**
 * Bakes the per-pixel settings into a cubic colour table of any size, in the host's memory. Unlike
 * getLut3dData() it needs no initOgreRunTime() and any number of threads may call it at a time.
 *
 * @param recordBytes as in keladjustRun()
 * @param dimension   colours along each axis, 2..256; colour i of n has the level i / (n - 1)
 * @param redFastest  true: red varies fastest, then green, as in cube files; false: blue
 * @param points      dimension^3 triples red, green, blue in 0..1
 * @return false if the record is refused, an argument is out of range or null, or memory is short;
 *         `points` are then untouched
 */
KELADJUST_API bool keladjustBake(const _AdjustParam* record, size_t recordBytes, int dimension,
                                 bool redFastest, float* points);

/**
 * Bakes the per-pixel settings into a 32 x 32 x 32 colour table. `clarity`, `sharpen`, the vignette
 * and everything after it have no part in it.
 *
 * @return 32768 triples red, green, blue in 0..1, owned by the library and valid until the next
 *         bake or releaseOgre(). Input colour (r, g, b), each 0..31, is triple
 *         `8192 * (r / 8) + 256 * g + 32 * (r % 8) + b`: a picture of 256 x 128 in 8 x 4 tiles, one
 *         for each red. Null before initOgreRunTime() and after releaseOgre().
 */
KELADJUST_API float* getLut3dData(_AdjustParam parameters);

/**
 * Bakes the settings and writes them as a text cube file, blue varying fastest.
 *
 * @return false, with a line on standard output, if `path` is null or cannot be opened
 */
KELADJUST_API bool writeLut3DFile(_AdjustParam parameters, const char* path);

/** @} */

/**
 * @name Stages on a picture
 * Each returns `image` at once if its setting is the identity value. None keeps anything between
 * calls.
 *
 * Some work on the raw buffer: along it from its first byte, pixel by pixel, as if rows had no
 * padding. Where they have some, it is changed like pixels, and as many pixels at the end are left
 * as they were.
 * @{
 */

/** Warms (above 11500) or cools (below) by a black-body colour, keeping each pixel's lightness. */
KELADJUST_API CxImage* temperatureAdjustment(CxImage* image, long temperature);
/** Shifts along green (negative) to magenta (positive) in proportion to the grey level. */
KELADJUST_API CxImage* tintAdjustment(CxImage* image, float tint);
/** Multiplies every channel by 2^(exposure / 50 * 0.6). */
KELADJUST_API CxImage* exposureAdjustment(CxImage* image, float exposure);
/** A gain for positive settings, an offset for negative ones. Works on the raw buffer. */
KELADJUST_API CxImage* brightnessAdjustment(CxImage* image, float brightness);
/** Stretches the channels about the middle, or squeezes them towards it. */
KELADJUST_API CxImage* contrastAdjustment(CxImage* image, float contrast);
/** Saturation, the more the duller a colour is. */
KELADJUST_API CxImage* vibranceAdjustment(CxImage* image, float vibrance);
/** Rotates colours about the grey axis by `angle` degrees. Works on the raw buffer. */
KELADJUST_API CxImage* hueAdjustment(CxImage* image, float angle);
/** Saturation in percent; -100 is grey. */
KELADJUST_API CxImage* saturationAdjustment(CxImage* image, float saturation);
/** Lifts or lowers bright pixels. Outside -100..100 results wrap round. */
KELADJUST_API CxImage* hdrHighlight(CxImage* image, float highlight);
/** Lifts or lowers dark pixels. Outside -100..100 results wrap round. */
KELADJUST_API CxImage* hdrShadow(CxImage* image, float shadow);
/** Lifts (twice as strongly) or lowers the brightest pixels. */
KELADJUST_API CxImage* hdrWhiteLevel(CxImage* image, float level);
/** Lifts or lowers the darkest pixels. */
KELADJUST_API CxImage* hdrBlackLevel(CxImage* image, float level);

/** Shifts the hue of one band of hues; see _AdjustColourRange for the units. */
KELADJUST_API CxImage* adjustHueFilter(CxImage* image, float minDegree, float maxDegree, float hue);
/** Changes the saturation of one band of hues. */
KELADJUST_API CxImage* adjustSaturationFilter(CxImage* image, float minDegree, float maxDegree,
                                              float saturation);
/** Changes the lightness of one band of hues. */
KELADJUST_API CxImage* adjustBrightnessFilter(CxImage* image, float minDegree, float maxDegree,
                                              float brightness);
/** The three above in one, with one weight from the incoming hue. */
KELADJUST_API CxImage* doHSLAdjustFilter(CxImage* image, float minDegree, float maxDegree,
                                         float hue, float saturation, float brightness);

/** Darkens or brightens the border of an ellipse and exposes its inside. All in percent. */
KELADJUST_API CxImage* vignetteAdjustFilter(CxImage* image, float amount, float feather,
                                            float highlights, float size, float roundness,
                                            float exposure);
/** Local contrast against a Stack Blur. */
KELADJUST_API CxImage* clarity(CxImage* image, float amount);
/** Laplacian sharpening of strength amount / 255; the result lies one pixel to the right. */
KELADJUST_API CxImage* sharpen(CxImage* image, float amount);
/** Barrel or pincushion correction in percent. */
KELADJUST_API CxImage* distortFilter(CxImage* image, float distortion);
/** Lateral chromatic aberration in percent. */
KELADJUST_API CxImage* fringingFilter(CxImage* image, float fringing);
/** Removes haze; negative settings lay a veil over the picture. */
KELADJUST_API CxImage* dehaze(CxImage* image, float amount);
/** Brightens and, for positive settings, softens. */
KELADJUST_API CxImage* diffuse(CxImage* image, float amount);
/** Noise reduction of the red, green and blue planes; 0..100. */
KELADJUST_API CxImage* deNoiseRGB(CxImage* image, float amount);
/** Noise reduction of the hue, saturation and lightness planes; 0..100. */
KELADJUST_API CxImage* deNoiseLumiance(CxImage* image, float amount);
/** Grey grain; the pattern is the same in every call. `amount` and `size` in percent. */
KELADJUST_API CxImage* addNoiseFilter(CxImage* image, float amount, float size);
/** White balance by the brightest amount / 500 of the pixels. */
KELADJUST_API CxImage* whiteBalanceAdjustment(CxImage* image, float amount);

/**
 * A strip of black-body colours: column i has the colour of 30000 - 100 i kelvin.
 *
 * @return a 24-bit BGR image for releaseCxImage(), empty if a size is below 1 or memory is too
 * short for its pixels; null only if it is too short for the image itself
 */
KELADJUST_API CxImage* createTemperateColor(int width, int height);

/** @} */

/**
 * @name Stages on a colour table
 * Each changes the first three floats, red, green and blue in 0..1, of `count` entries that begin
 * `stride` floats apart, and returns `lut`. Settings are those of the picture stages. A null `lut`
 * is returned at once. Entries that overlap, since they are less than three floats apart, are
 * changed one after the other.
 * @{
 */
KELADJUST_API float* lut3d_temperatureAdjustment(float* lut, unsigned long count, int stride,
                                                 long temperature);
KELADJUST_API float* lut3d_tintAdjustment(float* lut, unsigned long count, int stride, float tint);
KELADJUST_API float* lut3d_exposureAdjustment(float* lut, unsigned long count, int stride,
                                              float exposure);
KELADJUST_API float* lut3d_brightnessAdjustment(float* lut, unsigned long count, int stride,
                                                float brightness);
KELADJUST_API float* lut3d_contrastAdjustment(float* lut, unsigned long count, int stride,
                                              float contrast);
KELADJUST_API float* lut3d_vibranceAdjustment(float* lut, unsigned long count, int stride,
                                              float vibrance);
KELADJUST_API float* lut3d_saturationAdjustment(float* lut, unsigned long count, int stride,
                                                float saturation);
KELADJUST_API float* lut3d_hdrHighlight(float* lut, unsigned long count, int stride,
                                        float highlight);
KELADJUST_API float* lut3d_hdrShadow(float* lut, unsigned long count, int stride, float shadow);
KELADJUST_API float* lut3d_hdrWhiteLevel(float* lut, unsigned long count, int stride, float level);
KELADJUST_API float* lut3d_hdrBlackLevel(float* lut, unsigned long count, int stride, float level);
KELADJUST_API float* lut3d_adjustHueFilter(float* lut, unsigned long count, int stride,
                                           float minDegree, float maxDegree, float hue);
KELADJUST_API float* lut3d_adjustSaturationFilter(float* lut, unsigned long count, int stride,
                                                  float minDegree, float maxDegree,
                                                  float saturation);
KELADJUST_API float* lut3d_adjustBrightnessFilter(float* lut, unsigned long count, int stride,
                                                  float minDegree, float maxDegree,
                                                  float brightness);
KELADJUST_API float* lut3d_doHSLAdjustFilter(float* lut, unsigned long count, int stride,
                                             float minDegree, float maxDegree, float hue,
                                             float saturation, float brightness);
/** @} */

/**
 * @name Building blocks of the spatial stages
 * @{
 */

/**
 * Stack Blur (M. Klingemann) in place: a triangular kernel, edges repeated.
 *
 * @param bits          rows padded to a multiple of four bytes; null is ignored
 * @param width         pixels per row; below 1 is ignored
 * @param height        rows; below 1 is ignored
 * @param bytesPerPixel 1, 3 or 4, others are ignored; 4 limits colour to the pixel's own alpha
 * @param radius        1..254, others are ignored
 */
KELADJUST_API void stackBlur(unsigned char* bits, int width, int height, int bytesPerPixel,
                             int radius);
/** One pass of stackBlur(): 1 along rows, 2 along columns; others are ignored. */
KELADJUST_API void stackBlurPass(unsigned char* bits, int width, int height, int bytesPerPixel,
                                 int radius, int pass);
/**
 * Mean of the 15 x 15 window about each byte, cropped at the borders; maps are unpadded. Nothing
 * happens if a map is null, if the two overlap or if a size is below 1.
 */
KELADJUST_API void meanFilter15(const unsigned char* source, unsigned char* destination, int width,
                                int height);
/**
 * The smaller of each byte of `minimum` and the truncated product of `mean` and `factor`.
 * @return a new map of width x height bytes for keladjustFree(); null if memory is short or a map
 * is missing
 */
KELADJUST_API unsigned char* estimateVeil(const unsigned char* minimum, const unsigned char* mean,
                                          int width, int height, float factor);
/**
 * Frees what estimateVeil() gave, whatever run-time library the host has; null is ignored.
 */
KELADJUST_API void keladjustFree(void* memory);
/** The largest byte of a map; 0 for an empty one. */
KELADJUST_API unsigned char mapMaximum(const unsigned char* map, int width, int height);
/**
 * Sliding-window 8 x 8 DCT hard thresholding at 3 sigma of one 8-bit plane.
 *
 * @param source      null is ignored
 * @param destination null is ignored; may be `source`
 * @param width       bytes of a row that are filtered; below 1 is ignored
 * @param height      rows; below 1 is ignored
 * @param stride      bytes from row to row of both planes; below `width` is ignored
 * @param sigma       deviation of the noise; frequencies weaker than 3 sigma are dropped
 */
KELADJUST_API void dctDenoisePlane(const unsigned char* source, unsigned char* destination,
                                   int width, int height, int stride, float sigma);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
