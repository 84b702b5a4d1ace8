// Smaller copies of a picture, for previews and thumbnails.

import { forCanvas } from "../photo/pixels.js";

/** @typedef {import("../photo/pixels.js").Pixels} Pixels */

/**
 * A copy of this size. Red and blue may stand in either order.
 * @param {Pixels} pixels
 * @param {number} width
 * @param {number} height
 * @returns {Promise<Pixels>}
 */
export async function scaled(pixels, width, height) {
    if (width === pixels.width && height === pixels.height) {
        return { ...pixels, data: pixels.data.slice() };
    }
    const rgba = new ImageData(forCanvas(pixels), pixels.width, pixels.height);
    const bitmap = await createImageBitmap(rgba, {
        resizeWidth: width,
        resizeHeight: height,
        resizeQuality: "high",
    });
    const context = new OffscreenCanvas(width, height).getContext("2d", { willReadFrequently: true });
    if (!context) throw new RangeError("not enough memory for a preview");
    context.drawImage(bitmap, 0, 0);
    bitmap.close();
    const words = context.getImageData(0, 0, width, height).data;
    let data = new Uint8Array(words.buffer);
    if (pixels.channels === 1) data = data.filter((_, i) => i % 4 === 0);
    return { ...pixels, data, width, height };
}
