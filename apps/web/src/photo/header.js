// What a picture file says about itself before any pixel is decoded.

import { Refusal } from "../model/refusal.js";
import { readJpegHeader } from "./jpeg.js";
import { readPngHeader } from "./png.js";
import { readWebpHeader } from "./webp.js";
import { hasText } from "./bytes.js";

/**
 * @typedef {object} Header
 * @property {"jpeg" | "png" | "webp" | "other"} kind
 * @property {number} width   as stored, before it is turned upright; 0 where only decoding tells
 * @property {number} height
 * @property {boolean} isGrey one channel, without transparency
 * @property {Uint8Array | null} exif a TIFF structure
 * @property {Uint8Array | null} icc
 * @property {number[]} marks  where the four letters stand that announce either
 */

/**
 * @param {Uint8Array} file
 * @param {string} name for messages
 * @returns {Promise<Header>}
 */
export async function readHeader(file, name) {
    try {
        if (hasText(file, 0, "\xff\xd8\xff")) return readJpegHeader(file);
        if (hasText(file, 0, "\x89PNG\r\n\x1a\n")) return await readPngHeader(file);
        if (hasText(file, 0, "RIFF") && hasText(file, 8, "WEBP")) return readWebpHeader(file);
    } catch (error) {
        throw new Refusal(`${name} is damaged: ${/** @type {Error} */ (error).message}`);
    }
    return { kind: "other", width: 0, height: 0, isGrey: false, exif: null, icc: null, marks: [] };
}
