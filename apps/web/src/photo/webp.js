// WebP files: their chunks, read and written. The browser decodes and encodes the pixels.

import { hasText, join, littleEndian32, viewOf } from "./bytes.js";

/** @typedef {import("./header.js").Header} Header */

const flags = { icc: 0x20, alpha: 0x10, exif: 0x08 };

/** @param {Uint8Array} file */
function chunksOf(file) {
    const chunks = [];
    let at = 12;
    while (at + 8 <= file.length) {
        const name = String.fromCharCode(...file.subarray(at, at + 4));
        const length = viewOf(file).getUint32(at + 4, true);
        if (at + 8 + length > file.length) throw new Error("it ends too early");
        chunks.push({ name, at, payload: file.subarray(at + 8, at + 8 + length) });
        at += 8 + length + (length & 1);
    }
    return chunks;
}

/**
 * @param {ReturnType<typeof chunksOf>} chunks
 */
function sizeOf(chunks) {
    for (const { name, payload } of chunks) {
        const view = viewOf(payload);
        if (name === "VP8X" && payload.length >= 10) {
            return {
                width: 1 + (view.getUint32(4, true) & 0xffffff),
                height: 1 + (view.getUint32(6, true) >>> 8),
                hasAlpha: (payload[0] & flags.alpha) !== 0,
            };
        }
        if (name === "VP8L" && payload.length >= 5) {
            const packed = view.getUint32(1, true);
            return {
                width: 1 + (packed & 0x3fff),
                height: 1 + ((packed >> 14) & 0x3fff),
                hasAlpha: ((packed >>> 28) & 1) === 1,
            };
        }
        if (name === "VP8 " && payload.length >= 10) {
            return {
                width: view.getUint16(6, true) & 0x3fff,
                height: view.getUint16(8, true) & 0x3fff,
                hasAlpha: false,
            };
        }
    }
    throw new Error("it holds no picture");
}

/**
 * @param {Uint8Array} file
 * @returns {Header}
 */
export function readWebpHeader(file) {
    const chunks = chunksOf(file);
    /** @param {string} wanted */
    const payloadOf = (wanted) =>
        chunks.find(({ name }) => name === wanted)?.payload.slice() ?? null;
    const { width, height } = sizeOf(chunks);
    let exif = payloadOf("EXIF");
    // Some writers put JPEG's mark before it.
    if (exif && hasText(exif, 0, "Exif\0\0")) exif = exif.slice(6);
    const icc = payloadOf("ICCP");
    const marks = chunks.filter(({ name }) => ["EXIF", "ICCP"].includes(name)).map(({ at }) => at);
    return { kind: "webp", width, height, isGrey: false, exif, icc, marks };
}

/**
 * A file as the browser's encoder made it, with this metadata in place of its own.
 * @param {Uint8Array} file
 * @param {{exif: Uint8Array | null, icc: Uint8Array | null}} metadata
 */
export function withWebpMetadata(file, { exif, icc }) {
    if (!exif && !icc) return file;
    const chunks = chunksOf(file);
    const { width, height, hasAlpha } = sizeOf(chunks);
    const flag = (icc ? flags.icc : 0) | (hasAlpha ? flags.alpha : 0) | (exif ? flags.exif : 0);
    const size = [width, height].flatMap((side) => littleEndian32(side - 1).slice(0, 3));
    const pixels = chunks.filter(({ name }) => ["ALPH", "VP8 ", "VP8L"].includes(name));
    const body = join(
        "WEBP",
        chunk("VP8X", join([flag, 0, 0, 0], size)),
        icc ? chunk("ICCP", icc) : [],
        ...pixels.map(({ name, payload }) => chunk(name, payload)),
        exif ? chunk("EXIF", exif) : [],
    );
    return join("RIFF", littleEndian32(body.length), body);
}

/**
 * @param {string} name
 * @param {Uint8Array} payload
 */
function chunk(name, payload) {
    return join(name, littleEndian32(payload.length), payload, payload.length & 1 ? [0] : []);
}
