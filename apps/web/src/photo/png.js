// PNG files, read and written here rather than by the browser, whose canvas keeps the colours of
// transparent pixels only roughly and has sixteen bits rounded its own way.

import { bigEndian32, compress, decompress, join, viewOf } from "./bytes.js";
import { crc32 } from "./crc32.js";
import { expandRows } from "./png-pixels.js";
import { filterRows, unfilter } from "./png-filters.js";

/** @typedef {import("./header.js").Header} Header */
/** @typedef {import("./pixels.js").Pixels} Pixels */

const signature = "\x89PNG\r\n\x1a\n";

/** Channels of each colour type. */
const channelsOf = new Map([[0, 1], [2, 3], [3, 1], [4, 2], [6, 4]]);

/**
 * @typedef {object} PngForm
 * @property {number} width
 * @property {number} height
 * @property {number} depth      bits per sample
 * @property {number} colour     colour type
 * @property {number} channels
 * @property {boolean} interlaced
 * @property {Uint8Array | null} palette
 * @property {Uint8Array | null} transparent
 */

/** @param {Uint8Array} file */
function* chunksOf(file) {
    const view = viewOf(file);
    let at = signature.length;
    while (at + 12 <= file.length) {
        const length = view.getUint32(at);
        const end = at + 12 + length;
        if (end > file.length) throw new Error("it ends too early");
        const name = String.fromCharCode(...file.subarray(at + 4, at + 8));
        // What begins with a capital letter is needed to show the picture.
        const isCritical = name[0] <= "Z";
        if (isCritical && crc32(file.subarray(at + 4, end - 4)) !== view.getUint32(end - 4)) {
            throw new Error(`the check sum of "${name}" is wrong`);
        }
        yield { name, at, payload: file.subarray(at + 8, end - 4) };
        if (name === "IEND") return;
        at = end;
    }
    throw new Error("it ends too early");
}

/**
 * @param {Uint8Array} file
 */
function readChunks(file) {
    /** @type {PngForm | null} */
    let form = null;
    /** @type {Uint8Array[]} */
    const data = [];
    /** @type {Uint8Array | null} */
    let exif = null;
    /** @type {Uint8Array | null} */
    let packedProfile = null;
    /** @type {number[]} */
    const marks = [];
    for (const { name, at, payload } of chunksOf(file)) {
        if (name === "IHDR") form = formOf(payload);
        else if (!form) throw new Error("it does not begin with a header");
        else if (name === "PLTE") form.palette = payload;
        else if (name === "tRNS") form.transparent = payload;
        else if (name === "IDAT") data.push(payload);
        else if (name === "eXIf") exif = payload.slice();
        else if (name === "iCCP") packedProfile = payload.subarray(payload.indexOf(0) + 2);
        if (name === "eXIf" || name === "iCCP") marks.push(at + 4);
    }
    if (!form || data.length === 0) throw new Error("it holds no picture");
    if (form.colour === 3 && !form.palette) throw new Error("it has no palette");
    return { form, data, exif, packedProfile, marks };
}

/**
 * @param {Uint8Array} payload
 * @returns {PngForm}
 */
function formOf(payload) {
    if (payload.length !== 13) throw new Error("its header has the wrong length");
    const view = viewOf(payload);
    const [width, height] = [view.getUint32(0), view.getUint32(4)];
    const [depth, colour, compression, filter, interlace] = payload.subarray(8);
    const channels = channelsOf.get(colour);
    const depthFits =
        colour === 0 ? [1, 2, 4, 8, 16].includes(depth)
        : colour === 3 ? [1, 2, 4, 8].includes(depth)
        : [8, 16].includes(depth);
    if (!width || !height || !channels || !depthFits || compression || filter || interlace > 1) {
        throw new Error("its header makes no sense");
    }
    const interlaced = interlace === 1;
    return { width, height, depth, colour, channels, interlaced, palette: null, transparent: null };
}

/** @param {PngForm} form */
function isGrey({ colour, transparent }) {
    return colour === 0 && !transparent;
}

// A profile is a few kilobytes, a few hundred where it is made of tables.
const longestProfile = 8 << 20;

/**
 * @param {Uint8Array} file
 * @returns {Promise<Header>}
 */
export async function readPngHeader(file) {
    const { form, exif, packedProfile, marks } = readChunks(file);
    let icc = null;
    if (packedProfile) {
        try {
            icc = await decompress([packedProfile], longestProfile);
        } catch {
            // A picture without its profile is better than none.
        }
    }
    const { width, height } = form;
    return { kind: "png", width, height, isGrey: isGrey(form), exif, icc, marks };
}

/**
 * The parts in which an interlaced picture is stored, or the one of any other: where each begins
 * and how far its pixels are from one another.
 * @param {PngForm} form
 */
function passesOf({ width, height, interlaced }) {
    const passes = interlaced
        ? [[0, 0, 8, 8], [4, 0, 8, 8], [0, 4, 4, 8], [2, 0, 4, 4], [0, 2, 2, 4], [1, 0, 2, 2], [0, 1, 1, 2]]
        : [[0, 0, 1, 1]];
    return passes
        .map(([x, y, stepX, stepY]) => ({
            x, y, stepX, stepY,
            columns: Math.ceil((width - x) / stepX),
            rows: Math.ceil((height - y) / stepY),
        }))
        .filter(({ columns, rows }) => columns > 0 && rows > 0);
}

/**
 * The pixels as stored, not yet turned upright.
 * @param {Uint8Array} file
 * @returns {Promise<Pixels>}
 */
export async function readPngPixels(file) {
    const { form, data } = readChunks(file);
    const bits = form.depth * form.channels;
    const passes = passesOf(form).map((pass) => ({ ...pass, stride: Math.ceil((pass.columns * bits) / 8) }));
    const length = passes.reduce((sum, { rows, stride }) => sum + rows * (stride + 1), 0);
    const packed = await decompress(data, length);
    if (packed.length < length) throw new Error("it ends too early");

    const grey = isGrey(form);
    const channels = grey ? 1 : 4;
    const target = new Uint8Array(form.width * form.height * channels);
    let at = 0;
    for (const pass of passes) {
        const end = at + pass.rows * (pass.stride + 1);
        const rows = unfilter(packed.subarray(at, end), pass.stride, Math.max(1, bits >> 3));
        expandRows(form, pass, rows, target, grey);
        at = end;
    }
    const hasAlpha = [4, 6].includes(form.colour) || form.transparent !== null;
    return { data: target, width: form.width, height: form.height, channels, hasAlpha };
}

/**
 * @param {Pixels} pixels
 * @param {{exif: Uint8Array | null, icc: Uint8Array | null}} metadata
 * @returns {Promise<Uint8Array<ArrayBuffer>>}
 */
export async function writePng({ data, width, height, channels, hasAlpha }, { exif, icc }) {
    const written = channels === 1 ? 1 : hasAlpha ? 4 : 3;
    const colour = channels === 1 ? 0 : hasAlpha ? 6 : 2;
    const filtered = filterRows(data, width, height, channels, written);
    const header = join(bigEndian32(width), bigEndian32(height), [8, colour, 0, 0, 0]);
    return join(
        signature,
        chunk("IHDR", header),
        icc ? chunk("iCCP", join("ICC profile\0", [0], await compress([icc]))) : [],
        exif ? chunk("eXIf", exif) : [],
        chunk("IDAT", await compress([filtered])),
        chunk("IEND", new Uint8Array()),
    );
}

/**
 * @param {string} name
 * @param {Uint8Array} payload
 */
function chunk(name, payload) {
    const body = join(name, payload);
    return join(bigEndian32(payload.length), body, bigEndian32(crc32(body)));
}
