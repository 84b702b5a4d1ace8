// The photograph at the size of the screen, adjusted again for every movement of a slider.

import { convert } from "../photo/profile.js";
import { histogramLength, toCanvas } from "./adjusted.js";
import { interpolate, latticeOf } from "./lattice.js";
import { adjust, library } from "./library.js";
import { paletteOf, spread } from "./palette.js";
import { serve } from "./worker.js";

/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../photo/profile.js").Space} Space */
/** @typedef {import("../model/record.js").Values} Values */

/** @type {Pixels} */
let preview;
/** @type {Space} */
let space;
/** @type {import("./palette.js").Palette} */
let palette;
/** @type {import("./lattice.js").Lattice | null} */
let lattice;

// So many colours are adjusted in a few milliseconds; of more, the corners of their cells are.
const mostExactColours = 24000;

/**
 * The preview's colours, adjusted, as a picture of one row.
 * @param {Values} values
 * @returns {Promise<Pixels>}
 */
async function adjustedColours(values) {
    const { channels, hasAlpha } = preview;
    const { colours } = palette;
    const words = (lattice?.nodes ?? colours).slice();
    // Grey pixels are spread over words to be counted, and are bytes again for the library.
    const data = channels === 1 ? Uint8Array.from(words) : new Uint8Array(words.buffer);
    const pixels = { data, width: words.length, height: 1, channels, hasAlpha };
    adjust(await library(), pixels, values);
    if (!lattice) return pixels;
    const between = colours.slice();
    interpolate(lattice, words, between);
    return { ...pixels, data: new Uint8Array(between.buffer), width: between.length };
}

serve({
    /** @param {{pixels: Pixels, space: Space}} what */
    load(what) {
        ({ pixels: preview, space } = what);
        palette = paletteOf(
            preview.channels === 1 ? Uint32Array.from(preview.data) : new Uint32Array(preview.data.buffer),
        );
        lattice = palette.colours.length > mostExactColours ? latticeOf(palette.colours) : null;
        return { result: null };
    },

    /**
     * @param {object} what
     * @param {Values} what.points what looks at colours alone
     * @param {Values} what.whole  what looks at the whole picture
     * @param {ArrayBuffer} [what.spare] memory of an earlier answer
     */
    async adjust({ points, whole, spare }) {
        const { width, height, channels, hasAlpha } = preview;
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
        return { result: { width, height, rgba: new Uint8ClampedArray(buffer), counts }, transfer: [buffer] };
    },
});
