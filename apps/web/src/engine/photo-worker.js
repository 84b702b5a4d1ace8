// One photograph in full: decodes it, adjusts it, makes previews, thumbnails and files of it. A worker lives as long as its photograph, so that nothing of one is left when the next comes.

import { decode, sizeOf } from "../photo/decode.js";
import { encode } from "../photo/encode.js";
import { swapRedAndBlue } from "../photo/pixels.js";
import { convert } from "../photo/profile.js";
import { forLibrary, histogramLength, toCanvas } from "./adjusted.js";
import { cubeFile } from "./cube.js";
import { adjust, library } from "./library.js";
import { scaled } from "./scaled.js";
import { serve } from "./worker.js";

/** @typedef {import("../photo/decode.js").Photograph} Photograph */
/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../model/record.js").Values} Values */

/** @type {Photograph} its pixels in the library's order of bytes */
let photograph;

/** A copy that may be changed. */
function copy() {
    return { ...photograph.pixels, data: photograph.pixels.data.slice() };
}

/**
 * As a canvas shows it.
 * @param {Pixels} pixels in the library's order of bytes
 */
function shown(pixels) {
    const { width, height } = pixels;
    const counts = new Uint32Array(histogramLength);
    const words = new Uint32Array(width * height);
    toCanvas(pixels, words, counts);
    const rgba = new Uint8ClampedArray(words.buffer);
    if (photograph.space.conversion) convert(photograph.space.conversion, rgba);
    return { rgba, width, height, counts };
}

serve({
    /** @param {{blob: Blob, name: string}} file */
    async size({ blob, name }) {
        return { result: await sizeOf(blob, name) };
    },

    /** @param {{blob: Blob, name: string, most: number}} file */
    async open({ blob, name, most }) {
        photograph = await decode(blob, name, most);
        const { width, height, channels, hasAlpha } = photograph.pixels;
        forLibrary(photograph.pixels);
        return { result: { width, height, channels, hasAlpha, space: photograph.space } };
    },

    /** @param {{width: number, height: number}} size */
    async preview({ width, height }) {
        const { data, channels, hasAlpha } = await scaled(photograph.pixels, width, height);
        return { result: { data, width, height, channels, hasAlpha }, transfer: [data.buffer] };
    },

    /** @param {{width: number, height: number}} size */
    async before({ width, height }) {
        const picture = shown(await scaled(photograph.pixels, width, height));
        return { result: picture, transfer: [picture.rgba.buffer] };
    },

    /** @param {{values: Values}} what */
    async full({ values }) {
        const pixels = copy();
        adjust(await library(), pixels, values);
        const picture = shown(pixels);
        return { result: picture, transfer: [picture.rgba.buffer] };
    },

    /** @param {{values: Values, width: number, height: number}} what */
    async thumbnail({ values, width, height }) {
        const pixels = await scaled(photograph.pixels, width, height);
        adjust(await library(), pixels, values);
        const picture = shown(pixels);
        return { result: picture, transfer: [picture.rgba.buffer] };
    },

    /** @param {{values: Values, kind: import("../photo/encode.js").FileKind, quality: number}} what */
    async file({ values, kind, quality }) {
        const pixels = copy();
        adjust(await library(), pixels, values);
        if (pixels.channels === 4) swapRedAndBlue(pixels.data);
        return { result: await encode(pixels, photograph, kind, quality) };
    },

    /** @param {{values: Values, size: number}} what */
    async table({ values, size }) {
        return { result: cubeFile((await library()).lut(values, size), size) };
    },
});
