// From pixels to a file, with what the original said about itself.

import { uprightExif } from "./exif.js";
import { withJpegMetadata } from "./jpeg.js";
import { forCanvas } from "./pixels.js";
import { writePng } from "./png.js";
import { withWebpMetadata } from "./webp.js";

/** @typedef {import("./decode.js").Photograph} Photograph */
/** @typedef {import("./pixels.js").Pixels} Pixels */
/** @typedef {"png" | "jpeg" | "webp"} FileKind */

/**
 * @param {Pixels} pixels
 * @param {Photograph} original
 * @param {FileKind} kind
 * @param {number} quality 0..1, for JPEG and WebP
 */
export async function encode(pixels, original, kind, quality) {
    const exif = uprightExif(original.exif, pixels.width, pixels.height);
    const metadata = { exif, icc: original.icc };
    const bytes =
        kind === "png"
            ? await writePng(pixels, metadata)
            : await encodeByBrowser(pixels, metadata, kind, quality);
    return new Blob([/** @type {Uint8Array<ArrayBuffer>} */ (bytes)], { type: `image/${kind}` });
}

/**
 * @param {Pixels} pixels
 * @param {{exif: Uint8Array | null, icc: Uint8Array | null}} metadata
 * @param {"jpeg" | "webp"} kind
 * @param {number} quality
 */
async function encodeByBrowser(pixels, metadata, kind, quality) {
    const { width, height } = pixels;
    const rgba = forCanvas(pixels);
    // JPEG knows no transparency, and a canvas would make it black: pixels keep their colours.
    // Nor does alpha count where the photograph has none.
    if (kind === "jpeg" || !pixels.hasAlpha) for (let i = 3; i < rgba.length; i += 4) rgba[i] = 255;
    const canvas = new OffscreenCanvas(width, height);
    const context = canvas.getContext("2d");
    if (!context) throw new RangeError("not enough memory for the picture");
    context.putImageData(new ImageData(rgba, width, height), 0, 0);
    const blob = await canvas.convertToBlob({ type: `image/${kind}`, quality });
    if (blob.type !== `image/${kind}`) {
        throw new Error(`this browser does not write ${kind === "webp" ? "WebP" : "JPEG"}`);
    }
    const bytes = new Uint8Array(await blob.arrayBuffer());
    return kind === "jpeg" ? withJpegMetadata(bytes, metadata) : withWebpMetadata(bytes, metadata);
}
