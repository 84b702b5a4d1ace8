// Pixels as the page holds them: rows from top to bottom without padding, in the channels that the
// command line gives the library, too, so that both get the same picture out.

/**
 * @typedef {object} Pixels
 * @property {Uint8Array} data
 * @property {number} width
 * @property {number} height
 * @property {number} channels   1: grey; 4: red, green, blue, alpha
 * @property {boolean} hasAlpha  whether alpha means anything
 */

/**
 * Turned upright.
 * @param {Pixels} pixels
 * @param {number} orientation EXIF's, 1 to 8
 * @returns {Pixels}
 */
export function upright(pixels, orientation) {
    if (orientation === 1) return pixels;
    const { width, height, channels } = pixels;
    const turned = orientation > 4;
    const [newWidth, newHeight] = turned ? [height, width] : [width, height];
    const mirroredX = [2, 3, 7, 8].includes(orientation);
    const mirroredY = [3, 4, 6, 7].includes(orientation);
    const wide = channels === 4;
    const from = wide ? wordsOf(pixels.data) : pixels.data;
    const to = wide ? new Uint32Array(width * height) : new Uint8Array(width * height);
    for (let y = 0, at = 0; y < newHeight; ++y) {
        for (let x = 0; x < newWidth; ++x, ++at) {
            const column = turned ? y : x;
            const row = turned ? x : y;
            to[at] =
                from[
                    (mirroredY ? height - 1 - row : row) * width +
                        (mirroredX ? width - 1 - column : column)
                ];
        }
    }
    const data = new Uint8Array(to.buffer);
    return { ...pixels, data, width: newWidth, height: newHeight };
}

/**
 * Pixels of four bytes as words.
 * @param {Uint8Array} data which begins at a multiple of four
 */
export function wordsOf(data) {
    return new Uint32Array(data.buffer, data.byteOffset, data.length >> 2);
}

/**
 * Exchanges red and blue in place: between what canvases have and the order of bytes in which the
 * command line adjusts. The order matters to settings that move bytes, such as distortion.
 * @param {Uint8Array} data
 */
export function swapRedAndBlue(data) {
    const words = wordsOf(data);
    for (let i = 0; i < words.length; ++i) {
        const word = words[i];
        words[i] = (word & 0xff00ff00) | ((word >>> 16) & 0xff) | ((word & 0xff) << 16);
    }
}

/**
 * Red, green, blue, alpha for a canvas, whatever the channels are.
 * @param {Pixels} pixels
 * @returns {Uint8ClampedArray<ArrayBuffer>}
 */
export function forCanvas({ data, channels }) {
    if (channels === 4) {
        return new Uint8ClampedArray(/** @type {ArrayBuffer} */ (data.buffer), data.byteOffset, data.length);
    }
    const spread = new Uint32Array(data.length);
    for (let i = 0; i < data.length; ++i) spread[i] = 0xff000000 | (data[i] * 0x010101);
    return new Uint8ClampedArray(spread.buffer);
}
