// From PNG's samples, of any depth, in a palette or not, to bytes.

/** @typedef {import("./png.js").PngForm} PngForm */

/**
 * @typedef {object} Pass
 * @property {number} x
 * @property {number} y
 * @property {number} stepX
 * @property {number} stepY
 * @property {number} columns
 * @property {number} rows
 * @property {number} stride bytes of a row without its filter's number
 */

/**
 * @param {PngForm} form
 * @param {Pass} pass
 * @param {Uint8Array} source rows, each behind one byte
 * @param {Uint8Array} target one byte a pixel if `grey`, else red, green, blue, alpha
 * @param {boolean} grey
 */
export function expandRows(form, pass, source, target, grey) {
    const { width, depth, channels, colour, palette, transparent } = form;
    const highest = 2 ** Math.min(depth, 8) - 1;
    const key = keyOf(form);
    const samples = new Uint16Array(pass.columns * channels);
    for (let row = 0; row < pass.rows; ++row) {
        readSamples(source, row * (pass.stride + 1) + 1, depth, samples);
        const first = ((pass.y + row * pass.stepY) * width + pass.x) * (grey ? 1 : 4);
        const step = pass.stepX * (grey ? 1 : 4);
        for (let column = 0, at = first; column < pass.columns; ++column, at += step) {
            const sample = column * channels;
            if (colour === 3) {
                const entry = samples[sample];
                if (!palette || 3 * entry + 2 >= palette.length) {
                    throw new Error("a pixel is not in the palette");
                }
                target[at] = palette[3 * entry];
                target[at + 1] = palette[3 * entry + 1];
                target[at + 2] = palette[3 * entry + 2];
                target[at + 3] = transparent?.[entry] ?? 255;
                continue;
            }
            const coloured = channels >= 3;
            for (let channel = 0; channel < (grey ? 1 : 3); ++channel) {
                target[at + channel] = byteOf(samples[sample + (coloured ? channel : 0)], depth, highest);
            }
            if (grey) continue;
            if (channels === 2 || channels === 4) {
                target[at + 3] = byteOf(samples[sample + channels - 1], depth, highest);
            } else {
                target[at + 3] = key?.every((value, i) => value === samples[sample + i]) ? 0 : 255;
            }
        }
    }
}

/**
 * The one colour that is transparent in a picture without an alpha channel.
 * @param {PngForm} form
 */
function keyOf({ colour, transparent, channels, depth }) {
    if (!transparent || (colour !== 0 && colour !== 2)) return null;
    const mask = 2 ** depth - 1;
    return Array.from({ length: channels }, (_, i) =>
        ((transparent[2 * i] << 8) | transparent[2 * i + 1]) & mask,
    );
}

/**
 * @param {Uint8Array} source
 * @param {number} at
 * @param {number} depth
 * @param {Uint16Array} samples
 */
function readSamples(source, at, depth, samples) {
    if (depth === 8) {
        for (let i = 0; i < samples.length; ++i) samples[i] = source[at + i];
    } else if (depth === 16) {
        for (let i = 0; i < samples.length; ++i) {
            samples[i] = (source[at + 2 * i] << 8) | source[at + 2 * i + 1];
        }
    } else {
        const mask = 2 ** depth - 1;
        for (let i = 0; i < samples.length; ++i) {
            const bit = i * depth;
            samples[i] = (source[at + (bit >> 3)] >> (8 - depth - (bit & 7))) & mask;
        }
    }
}

/**
 * Sixteen bits are rounded to the nearest byte, fewer than eight spread over all of it.
 * @param {number} sample
 * @param {number} depth
 * @param {number} highest
 */
function byteOf(sample, depth, highest) {
    if (depth === 8) return sample;
    return depth === 16 ? (sample * 255 + 32895) >> 16 : (sample * 255) / highest;
}
