// Pictures as JavaScript has them, and as the library has them: rows padded to four bytes.

import { checkChoice, checkObject, checkWhole, kindOf } from "./checks.js";

const channelsOf = { gray: 1, rgb: 3, bgr: 3, rgba: 4, bgra: 4 };
const mostPixelsAlong = 0x7fffffff;

/** What is known of a picture, once it is found to be one. */
export function shapeOf(picture) {
    checkObject(picture, "picture");
    const { data, width, height, order = "rgba" } = picture;
    const kind = ArrayBuffer.isView(data) ? data[Symbol.toStringTag] : kindOf(data);
    if (kind !== "Uint8ClampedArray" && kind !== "Uint8Array") {
        throw new TypeError(`picture.data must be a Uint8ClampedArray or a Uint8Array, not ${kind}`);
    }
    checkWhole(width, 0, mostPixelsAlong, "picture.width");
    checkWhole(height, 0, mostPixelsAlong, "picture.height");
    checkChoice(order, Object.keys(channelsOf), "picture.order");
    const channels = channelsOf[order];
    const rowBytes = width * channels;
    if (data.length !== rowBytes * height) {
        throw new RangeError(`picture.data must have ${rowBytes * height} bytes for ` +
            `${width} x ${height} pixels of ${channels} bytes, not ${data.length}`);
    }
    const paddedRowBytes = Math.ceil(rowBytes / 4) * 4;
    return { data, width, height, order, channels, rowBytes, paddedRowBytes };
}

/** What a picture takes in the library's memory. */
export function bytesOf({ paddedRowBytes, height }) {
    return paddedRowBytes * height;
}

/** Some of a picture's rows. */
export function rowsOf(shape, first, height) {
    const { data, rowBytes } = shape;
    return { ...shape, data: data.subarray(rowBytes * first, rowBytes * (first + height)), height };
}

/** What of a picture stays in a processor's second-level cache from one copy to the other. */
const bandBytes = 256 * 1024;

/** The first rows of a picture, as many as are best adjusted together where rows stand alone. */
export function bandOf(shape) {
    const rows = Math.max(1, Math.floor(bandBytes / shape.paddedRowBytes));
    return rowsOf(shape, 0, Math.min(rows, shape.height));
}

/** Into the library's memory; what pads a row is 0. */
export function copyIn({ data, height, rowBytes, paddedRowBytes }, memory) {
    if (rowBytes === paddedRowBytes) {
        memory.set(data);
        return;
    }
    for (let y = 0; y < height; ++y) {
        memory.set(data.subarray(rowBytes * y, rowBytes * (y + 1)), paddedRowBytes * y);
        memory.fill(0, paddedRowBytes * y + rowBytes, paddedRowBytes * (y + 1));
    }
}

export function copyOut(memory, { data, height, rowBytes, paddedRowBytes }) {
    if (rowBytes === paddedRowBytes) {
        data.set(memory);
        return;
    }
    for (let y = 0; y < height; ++y) {
        const begin = paddedRowBytes * y;
        data.set(memory.subarray(begin, begin + rowBytes), rowBytes * y);
    }
}
