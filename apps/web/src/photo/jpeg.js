// JPEG files: their segments, read and written. The browser decodes and encodes what lies between.

import { bigEndian16, hasText, join, viewOf } from "./bytes.js";

/** @typedef {import("./header.js").Header} Header */

const exifMark = "Exif\0\0";
const iccMark = "ICC_PROFILE\0";

// A segment's length counts its own two bytes.
const longestSegment = 65533;

/**
 * The segments up to the first scan, in their order.
 * @param {Uint8Array} file
 */
function* segmentsOf(file) {
    let at = 2;
    while (at + 4 <= file.length) {
        if (file[at] !== 0xff) throw new Error("a segment does not begin where it should");
        const marker = file[at + 1];
        if (marker === 0xff) {
            ++at;
            continue;
        }
        const end = at + 2 + viewOf(file).getUint16(at + 2);
        if (end > file.length) throw new Error("it ends too early");
        yield { marker, at, end, payload: file.subarray(at + 4, end) };
        if (marker === 0xda) return;
        at = end;
    }
    throw new Error("it holds no picture");
}

/** @param {number} marker */
function isFrame(marker) {
    return marker >= 0xc0 && marker <= 0xcf && ![0xc4, 0xc8, 0xcc].includes(marker);
}

/**
 * @param {Uint8Array} file
 * @returns {Header}
 */
export function readJpegHeader(file) {
    /** @type {Header} */
    const header = {
        kind: "jpeg", width: 0, height: 0, isGrey: false, exif: null, icc: null, marks: [],
    };
    /** @type {Uint8Array[]} */
    const profile = [];
    for (const { marker, payload, at, end } of segmentsOf(file)) {
        if (isFrame(marker)) {
            if (payload.length < 6) throw new Error("its frame header is too short");
            header.height = viewOf(payload).getUint16(1);
            header.width = viewOf(payload).getUint16(3);
            header.isGrey = payload[5] === 1;
        } else if (marker === 0xe1 && !header.exif && hasText(payload, 0, exifMark)) {
            header.exif = payload.slice(exifMark.length);
            header.marks.push(at + 4);
        } else if (marker === 0xe2 && hasText(payload, 0, iccMark)) {
            profile[payload[iccMark.length]] = payload.subarray(iccMark.length + 2);
            header.marks.push(at + 4);
        } else if (marker === 0xda && !isComplete(file, end)) {
            // Browsers paint what is missing grey, which nobody should take for the photograph.
            throw new Error("it ends too early");
        }
    }
    if (header.width === 0 || header.height === 0) throw new Error("it has no size");
    const parts = profile.filter(Boolean);
    if (parts.length > 0) header.icc = join(...parts);
    return header;
}

/**
 * Whether a picture that begins with the scan at `from` has an end.
 * @param {Uint8Array} file
 * @param {number} from
 */
function isComplete(file, from) {
    for (let at = file.length - 2; at >= from; --at) {
        if (file[at] === 0xff && file[at + 1] === 0xd9) return true;
    }
    return false;
}

/**
 * A file as the browser's encoder made it, with this metadata in place of its own.
 * @param {Uint8Array} file
 * @param {{exif: Uint8Array | null, icc: Uint8Array | null}} metadata
 */
export function withJpegMetadata(file, { exif, icc }) {
    const added = [];
    if (exif && exif.length + exifMark.length <= longestSegment) {
        added.push(segment(0xe1, join(exifMark, exif)));
    }
    if (icc) {
        const size = longestSegment - iccMark.length - 2;
        const count = Math.ceil(icc.length / size);
        for (let i = 0; i < count; ++i) {
            const part = icc.subarray(i * size, (i + 1) * size);
            added.push(segment(0xe2, join(iccMark, [i + 1, count], part)));
        }
    }
    const kept = [];
    let scan = file.length;
    for (const { marker, at, end, payload } of segmentsOf(file)) {
        if (marker === 0xda) scan = at;
        else if (marker === 0xe2 && hasText(payload, 0, iccMark)) continue;
        else kept.push({ marker, bytes: file.subarray(at, end) });
    }
    // JFIF wants its own segment to be the first.
    const jfif = kept.filter(({ marker }) => marker === 0xe0);
    const others = kept.filter(({ marker }) => marker !== 0xe0);
    return join(
        [0xff, 0xd8],
        ...jfif.map(({ bytes }) => bytes),
        ...added,
        ...others.map(({ bytes }) => bytes),
        file.subarray(scan),
    );
}

/**
 * @param {number} marker
 * @param {Uint8Array} payload
 */
function segment(marker, payload) {
    return join([0xff, marker], bigEndian16(payload.length + 2), payload);
}
