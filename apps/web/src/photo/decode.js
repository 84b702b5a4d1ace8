// From a file to pixels.

import { Refusal } from "../model/refusal.js";
import { orientationOf } from "./exif.js";
import { readHeader } from "./header.js";
import { upright } from "./pixels.js";
import { readPngPixels } from "./png.js";
import { spaceOf } from "./profile.js";

/** @typedef {import("./pixels.js").Pixels} Pixels */
/** @typedef {import("./profile.js").Space} Space */

/**
 * @typedef {object} Photograph
 * @property {Pixels} pixels           upright
 * @property {Uint8Array | null} exif  as in the file
 * @property {Uint8Array | null} icc
 * @property {Space} space
 */

// Beyond this no browser's canvas reaches, and a page has no memory for it.
const mostPixels = 268435456;

/**
 * The size of a picture as it will stand upright; null where only decoding tells.
 * @param {Blob} blob
 * @param {string} name
 */
export async function sizeOf(blob, name) {
    const header = await readHeader(new Uint8Array(await blob.arrayBuffer()), name);
    if (header.kind === "other") return null;
    if (header.width * header.height > mostPixels) {
        throw new Refusal(
            `${name} claims ${header.width} × ${header.height} pixels, which is more than a page can hold`,
        );
    }
    return orientationOf(header.exif) > 4
        ? { width: header.height, height: header.width }
        : { width: header.width, height: header.height };
}

/**
 * @param {Blob} blob
 * @param {string} name for messages
 * @param {number} most pixels; a picture that has more is made smaller
 * @returns {Promise<Photograph>}
 */
export async function decode(blob, name, most) {
    const file = new Uint8Array(await blob.arrayBuffer());
    const header = await readHeader(file, name);
    const orientation = header.kind === "other" ? 1 : orientationOf(header.exif);
    const share = Math.sqrt(most / Math.max(1, header.width * header.height));
    let stored;
    if (header.kind === "png" && share >= 1) {
        try {
            stored = await readPngPixels(file);
        } catch (error) {
            if (error instanceof RangeError && /alloc/i.test(error.message)) throw error;
            throw new Refusal(`${name} is damaged: ${/** @type {Error} */ (error).message}`);
        }
    } else {
        stored = await decodeByBrowser(untagged(file, header.marks), name, header, share);
    }
    const pixels = upright(stored, orientation);
    return { pixels, exif: header.exif, icc: header.icc, space: spaceOf(header.icc) };
}

/**
 * The file as if it had neither EXIF data nor a profile. Browsers turn a picture upright by the one,
 * some formats' and not others', and convert its numbers by the other, whatever they are asked.
 * @param {Uint8Array} file
 * @param {number[]} marks see Header
 */
function untagged(file, marks) {
    // Files are as large as photographs are, and are not copied for this.
    const parts = [];
    let from = 0;
    for (const mark of marks) {
        parts.push(file.subarray(from, mark), "none");
        from = mark + 4;
    }
    return new Blob(/** @type {BlobPart[]} */ ([...parts, file.subarray(from)]));
}

/**
 * @param {Blob} blob
 * @param {string} name
 * @param {import("./header.js").Header} header
 * @param {number} share of its width and height that is kept; 1 or more: all
 * @returns {Promise<Pixels>}
 */
async function decodeByBrowser(blob, name, header, share) {
    /** @type {ImageBitmapOptions} */
    const options = { premultiplyAlpha: "none" };
    if (share < 1) {
        options.resizeWidth = Math.max(1, Math.round(header.width * share));
        options.resizeHeight = Math.max(1, Math.round(header.height * share));
        options.resizeQuality = "high";
    }
    let bitmap;
    try {
        bitmap = await createImageBitmap(blob, options);
    } catch {
        throw new Refusal(
            header.kind === "other"
                ? `${name} is not a picture that this browser can read`
                : `${name} is damaged: the browser cannot decode it`,
        );
    }
    const { width, height } = bitmap;
    const context = new OffscreenCanvas(width, height).getContext("2d", { willReadFrequently: true });
    if (!context) throw new RangeError("not enough memory for the picture");
    context.drawImage(bitmap, 0, 0);
    bitmap.close();
    const { data } = context.getImageData(0, 0, width, height);
    const rgba = new Uint8Array(data.buffer);
    if (header.isGrey) {
        const grey = new Uint8Array(width * height);
        for (let i = 0; i < grey.length; ++i) grey[i] = rgba[4 * i];
        return { data: grey, width, height, channels: 1, hasAlpha: false };
    }
    const hasAlpha = header.kind !== "jpeg" && rgba.some((value, i) => i % 4 === 3 && value < 255);
    return { data: rgba, width, height, channels: 4, hasAlpha };
}
