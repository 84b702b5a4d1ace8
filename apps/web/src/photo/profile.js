// What a picture's colour profile means for showing it. The library is given the numbers as they
// stand in the file, and what is exported carries the profile on; only the screen needs colours.

import { hasText, viewOf } from "./bytes.js";
import { wordsOf } from "./pixels.js";

/** @typedef {"srgb" | "display-p3"} CanvasSpace */

/**
 * @typedef {object} Space
 * @property {CanvasSpace} canvas          the canvas that shows the picture best
 * @property {Conversion | null} conversion from the picture's numbers to the canvas's; null: none
 */

/**
 * @typedef {object} Conversion
 * @property {number[]} matrix  from linear light to the canvas's linear light, by rows
 * @property {number[][]} curves linear light of each of 256 levels, for red, green and blue
 */

/** Columns: red, green, blue under the profiles' common white, D50. */
const srgb = [0.43607, 0.38515, 0.14307, 0.22249, 0.71687, 0.06061, 0.01392, 0.09708, 0.7141];
const displayP3 = [0.51512, 0.29198, 0.1571, 0.2412, 0.69225, 0.06657, -0.00105, 0.04189, 0.78407];

/** @param {number} level 0..1, as sRGB and Display P3 have it */
function linear(level) {
    return level <= 0.04045 ? level / 12.92 : ((level + 0.055) / 1.055) ** 2.4;
}

/** @param {number} light 0..1 */
function encoded(light) {
    return light <= 0.0031308 ? light * 12.92 : 1.055 * light ** (1 / 2.4) - 0.055;
}

/** @type {Space} */
const asItIs = { canvas: "srgb", conversion: null };

/**
 * @param {Uint8Array | null} icc
 * @returns {Space}
 */
export function spaceOf(icc) {
    if (!icc || !hasText(icc, 36, "acsp") || !hasText(icc, 16, "RGB ")) return asItIs;
    try {
        const tags = tagsOf(icc);
        const columns = ["rXYZ", "gXYZ", "bXYZ"].map((name) => tristimulus(tags.get(name)));
        const matrix = [0, 1, 2].flatMap((row) => columns.map((column) => column[row]));
        const curves = ["rTRC", "gTRC", "bTRC"].map((name) => curveOf(tags.get(name)));
        if (curves.every((curve) => isNear(curve, levels.map(linear), 0.005))) {
            if (isNear(matrix, srgb, 0.003)) return asItIs;
            if (isNear(matrix, displayP3, 0.003)) return { canvas: "display-p3", conversion: null };
        }
        const conversion = { matrix: multiply(inverse(displayP3), matrix), curves };
        return { canvas: "display-p3", conversion };
    } catch (error) {
        // Profiles made of tables, which few photographs have, and damaged ones.
        if (error instanceof RangeError) return asItIs;
        throw error;
    }
}

const levels = Array.from({ length: 256 }, (_, level) => level / 255);

/** @param {Uint8Array} icc */
function tagsOf(icc) {
    const view = viewOf(icc);
    /** @type {Map<string, Uint8Array>} */
    const tags = new Map();
    for (let i = 0; i < view.getUint32(128); ++i) {
        const at = 132 + 12 * i;
        const name = String.fromCharCode(...icc.subarray(at, at + 4));
        const start = view.getUint32(at + 4);
        tags.set(name, icc.subarray(start, start + view.getUint32(at + 8)));
    }
    return tags;
}

/** @param {Uint8Array | undefined} tag */
function tristimulus(tag) {
    if (!tag || !hasText(tag, 0, "XYZ ")) throw new RangeError("no such tag");
    return [8, 12, 16].map((at) => viewOf(tag).getInt32(at) / 65536);
}

/**
 * The linear light of each of 256 levels.
 * @param {Uint8Array | undefined} tag
 */
function curveOf(tag) {
    if (!tag) throw new RangeError("no such tag");
    const view = viewOf(tag);
    if (hasText(tag, 0, "curv")) {
        const count = view.getUint32(8);
        if (count === 0) return levels;
        if (count === 1) return levels.map((level) => level ** (view.getUint16(12) / 256));
        return levels.map((level) => {
            const place = level * (count - 1);
            const before = Math.min(Math.floor(place), count - 2);
            const low = view.getUint16(12 + 2 * before);
            const high = view.getUint16(14 + 2 * before);
            return (low + (high - low) * (place - before)) / 65535;
        });
    }
    if (hasText(tag, 0, "para")) {
        const kind = view.getUint16(8);
        const count = [1, 3, 4, 5, 7][kind];
        if (!count) throw new RangeError("an unknown kind of curve");
        const [g, a = 1, b = 0, c = 0, d = -Infinity, e = 0, f = 0] = Array.from(
            { length: count },
            (_, i) => view.getInt32(12 + 4 * i) / 65536,
        );
        // Kinds 1 and 2 end where the base of their power would fall below 0; below that, 2 has c.
        if (kind === 1) return levels.map((x) => (a * x + b < 0 ? 0 : (a * x + b) ** g));
        if (kind === 2) return levels.map((x) => (a * x + b < 0 ? 0 : (a * x + b) ** g) + c);
        return levels.map((x) => (x >= d ? (a * x + b) ** g + e : c * x + f));
    }
    throw new RangeError("an unknown kind of curve");
}

/**
 * @param {number[]} some
 * @param {number[]} others
 * @param {number} distance
 */
function isNear(some, others, distance) {
    return some.every((value, i) => Math.abs(value - others[i]) <= distance);
}

/**
 * @param {number[]} a
 * @param {number[]} b
 */
function multiply(a, b) {
    return [0, 3, 6].flatMap((row) =>
        [0, 1, 2].map((column) =>
            a[row] * b[column] + a[row + 1] * b[column + 3] + a[row + 2] * b[column + 6]),
    );
}

/** @param {number[]} m */
function inverse(m) {
    const [a, b, c, d, e, f, g, h, i] = m;
    const cofactors = [
        e * i - f * h, c * h - b * i, b * f - c * e,
        f * g - d * i, a * i - c * g, c * d - a * f,
        d * h - e * g, b * g - a * h, a * e - b * d,
    ];
    const determinant = a * cofactors[0] + b * cofactors[3] + c * cofactors[6];
    return cofactors.map((value) => value / determinant);
}

const fineness = 4095;
const encodedLevels = Uint8Array.from({ length: fineness + 1 }, (_, i) =>
    Math.round(255 * encoded(i / fineness)),
);

/**
 * Changes red, green, blue, alpha in place.
 * @param {Conversion} conversion
 * @param {Uint8ClampedArray} rgba
 */
export function convert({ matrix, curves }, rgba) {
    const [red, green, blue] = curves.map((curve) => Float32Array.from(curve, (x) => x * fineness));
    const words = wordsOf(new Uint8Array(rgba.buffer, rgba.byteOffset, rgba.length));
    /** @param {number} light */
    const encode = (light) =>
        encodedLevels[light <= 0 ? 0 : light >= fineness ? fineness : (light + 0.5) | 0];
    for (let i = 0; i < words.length; ++i) {
        const word = words[i];
        const r = red[word & 255];
        const g = green[(word >>> 8) & 255];
        const b = blue[(word >>> 16) & 255];
        words[i] =
            (word & 0xff000000) |
            (encode(matrix[6] * r + matrix[7] * g + matrix[8] * b) << 16) |
            (encode(matrix[3] * r + matrix[4] * g + matrix[5] * b) << 8) |
            encode(matrix[0] * r + matrix[1] * g + matrix[2] * b);
    }
}
