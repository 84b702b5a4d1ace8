// Pixels go through the library here, and come out as a canvas shows them.

import { swapRedAndBlue } from "../photo/pixels.js";

/** @typedef {import("../photo/pixels.js").Pixels} Pixels */

/** Counts of the 256 levels of red, green and blue, one after the other. */
export const histogramLength = 3 * 256;

/**
 * Pixels in the order of bytes that the library is given.
 * @param {Pixels} pixels which are used up
 */
export function forLibrary(pixels) {
    if (pixels.channels === 4) swapRedAndBlue(pixels.data);
    return pixels;
}

/**
 * From the library's order of bytes to the canvas's, counting levels on the way. Where alpha means
 * nothing, it is 255, whatever settings that move bytes have made of it.
 * @param {Pixels} pixels       as the library leaves them
 * @param {Uint32Array} target  red, green, blue, alpha
 * @param {Uint32Array} counts  see histogramLength
 * @param {Uint32Array} [weights] how often each pixel counts; once if not given
 */
export function toCanvas({ data, channels, hasAlpha }, target, counts, weights) {
    if (channels === 1) {
        for (let i = 0; i < data.length; ++i) {
            const level = data[i];
            counts[level] += weights ? weights[i] : 1;
            target[i] = 0xff000000 | (level * 0x010101);
        }
        counts.copyWithin(256, 0, 256);
        counts.copyWithin(512, 0, 256);
        return;
    }
    const opaque = hasAlpha ? 0 : 0xff000000;
    const words = new Uint32Array(data.buffer, data.byteOffset, data.length >> 2);
    for (let i = 0; i < words.length; ++i) {
        const word = words[i];
        const blue = word & 255;
        const green = (word >>> 8) & 255;
        const red = (word >>> 16) & 255;
        const weight = weights ? weights[i] : 1;
        counts[red] += weight;
        counts[256 + green] += weight;
        counts[512 + blue] += weight;
        target[i] = (word & 0xff00ff00) | red | (blue << 16) | opaque;
    }
}
