// Rows of the preview, adjusted again for every movement of a slider.

import { convert } from "../photo/profile.js";
import { histogramLength, toCanvas } from "./adjusted.js";
import { cubeFile } from "./cube.js";
import { adjust, library } from "./library.js";
import { serve } from "./worker.js";

/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../photo/profile.js").Space} Space */
/** @typedef {import("../model/record.js").Values} Values */

/** @type {Pixels} */
let source;
/** @type {Space} */
let space;
/** @type {Uint8Array} */
let work;

serve({
    /** @param {{pixels: Pixels, space: Space}} preview */
    async load(preview) {
        ({ pixels: source, space } = preview);
        work = new Uint8Array(source.data.length);
        return { result: null };
    },

    /**
     * @param {object} what
     * @param {Values} what.values
     * @param {number} what.first  row
     * @param {number} what.end    row behind the last
     * @param {ArrayBuffer} [what.spare] memory of an earlier answer
     */
    async adjust({ values, first, end, spare }) {
        const { data, width, channels, hasAlpha } = source;
        const rows = { width, height: end - first, channels, hasAlpha };
        const bytes = width * channels;
        const band = work.subarray(0, rows.height * bytes);
        band.set(data.subarray(first * bytes, end * bytes));
        adjust(await library(), { ...rows, data: band }, values);

        const length = 4 * width * rows.height;
        const buffer = spare?.byteLength === length ? spare : new ArrayBuffer(length);
        const counts = new Uint32Array(histogramLength);
        toCanvas(band, channels, new Uint32Array(buffer), counts);
        const rgba = new Uint8ClampedArray(buffer);
        if (space.conversion) convert(space.conversion, rgba);
        return { result: { rgba, first, counts }, transfer: [buffer] };
    },

    /** @param {{values: Values, size: number}} what */
    async table({ values, size }) {
        return { result: cubeFile((await library()).lut(values, size), size) };
    },
});
