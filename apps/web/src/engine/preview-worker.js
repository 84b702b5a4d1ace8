// A band of the preview, adjusted again for every movement of a slider.

import { convert } from "../photo/profile.js";
import { histogramLength, toCanvas } from "./adjusted.js";
import { cubeFile } from "./cube.js";
import { adjust, library } from "./library.js";
import { paletteOf, spread } from "./palette.js";
import { serve } from "./worker.js";

/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../photo/profile.js").Space} Space */
/** @typedef {import("../model/record.js").Values} Values */

/** @type {Pixels} */
let band;
/** @type {number} */
let first;
/** @type {Space} */
let space;
/** @type {import("./palette.js").Palette} */
let palette;

/**
 * The band's colours, adjusted, as a picture of one row.
 * @param {Values} values
 * @returns {Promise<Pixels>}
 */
async function adjustedColours(values) {
    const { channels, hasAlpha } = band;
    const { colours } = palette;
    // Grey pixels are spread over words to be counted, and are bytes again for the library.
    const data = channels === 1 ? Uint8Array.from(colours) : new Uint8Array(colours.slice().buffer);
    const pixels = { data, width: colours.length, height: 1, channels, hasAlpha };
    adjust(await library(), pixels, values);
    return pixels;
}

serve({
    /**
     * @param {object} preview
     * @param {Pixels} preview.pixels the band's
     * @param {number} preview.first  its row of the preview
     * @param {Space} preview.space
     */
    load(preview) {
        ({ pixels: band, first, space } = preview);
        palette = paletteOf(
            band.channels === 1 ? Uint32Array.from(band.data) : new Uint32Array(band.data.buffer),
        );
        return { result: null };
    },

    /**
     * @param {object} what
     * @param {Values} what.points what looks at colours alone
     * @param {Values} what.whole  what looks at the whole picture, which the band then is
     * @param {ArrayBuffer} [what.spare] memory of an earlier answer
     */
    async adjust({ points, whole, spare }) {
        const { width, height, channels, hasAlpha } = band;
        const length = 4 * width * height;
        const buffer = spare?.byteLength === length ? spare : new ArrayBuffer(length);
        const target = new Uint32Array(buffer);
        const counts = new Uint32Array(histogramLength);
        const colours = await adjustedColours(points);
        if (Object.keys(whole).length === 0) {
            const shown = new Uint32Array(colours.width);
            toCanvas(colours, shown, counts, palette.weights);
            if (space.conversion) convert(space.conversion, new Uint8ClampedArray(shown.buffer));
            spread(palette, shown, target);
        } else {
            const data = new Uint8Array(width * height * channels);
            if (channels === 1) palette.places.forEach((place, i) => (data[i] = colours.data[place]));
            else spread(palette, new Uint32Array(colours.data.buffer), new Uint32Array(data.buffer));
            const picture = { data, width, height, channels, hasAlpha };
            adjust(await library(), picture, whole);
            toCanvas(picture, target, counts);
            if (space.conversion) convert(space.conversion, new Uint8ClampedArray(buffer));
        }
        return { result: { rgba: new Uint8ClampedArray(buffer), first, counts }, transfer: [buffer] };
    },

    /** @param {{values: Values, size: number}} what */
    async table({ values, size }) {
        return { result: cubeFile((await library()).lut(values, size), size) };
    },
});
