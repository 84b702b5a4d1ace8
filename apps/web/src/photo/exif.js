// EXIF data, a TIFF structure. It is changed in place and nothing in it moves, because makers' notes
// point into it by offsets that only the camera's maker knows.

import { hasText, viewOf } from "./bytes.js";

const tags = {
    width: 0x0100,
    height: 0x0101,
    orientation: 0x0112,
    exifFolder: 0x8769,
    pixelWidth: 0xa002,
    pixelHeight: 0xa003,
    thumbnailAt: 0x0201,
    thumbnailLength: 0x0202,
};

const typeShort = 3;
const typeLong = 4;

/** The entries of one folder ("image file directory") that hold one number each. */
class Folder {
    /**
     * @param {DataView} view
     * @param {boolean} little
     * @param {number} at
     */
    constructor(view, little, at) {
        this.view = view;
        this.little = little;
        this.at = at;
        this.count = view.getUint16(at, little);
        this.end = at + 2 + 12 * this.count;
        view.getUint32(this.end, little);
    }

    /** @param {number} tag */
    #find(tag) {
        for (let entry = this.at + 2; entry < this.end; entry += 12) {
            if (this.view.getUint16(entry, this.little) === tag) return entry;
        }
        return 0;
    }

    /** @param {number} tag */
    get(tag) {
        const entry = this.#find(tag);
        if (!entry) return 0;
        return this.view.getUint16(entry + 2, this.little) === typeShort
            ? this.view.getUint16(entry + 8, this.little)
            : this.view.getUint32(entry + 8, this.little);
    }

    /**
     * Nothing happens where the tag is missing.
     * @param {number} tag
     * @param {number} value
     */
    set(tag, value) {
        const entry = this.#find(tag);
        if (!entry) return;
        const type = this.view.getUint16(entry + 2, this.little);
        if (type === typeShort) this.view.setUint16(entry + 8, value, this.little);
        if (type === typeLong) this.view.setUint32(entry + 8, value, this.little);
    }

    get next() {
        return this.view.getUint32(this.end, this.little);
    }

    set next(at) {
        this.view.setUint32(this.end, at, this.little);
    }
}

/**
 * @param {Uint8Array} tiff
 * @returns {Folder | null}
 */
function firstFolder(tiff) {
    const little = hasText(tiff, 0, "II*\0");
    if (!little && !hasText(tiff, 0, "MM\0*")) return null;
    try {
        const view = viewOf(tiff);
        return new Folder(view, little, view.getUint32(4, little));
    } catch (error) {
        if (error instanceof RangeError) return null;
        throw error;
    }
}

/**
 * How the picture is to be turned, 1 to 8; 1 where nothing sensible is said.
 * @param {Uint8Array | null} tiff
 */
export function orientationOf(tiff) {
    const orientation = (tiff && firstFolder(tiff)?.get(tags.orientation)) || 1;
    return orientation <= 8 ? orientation : 1;
}

/**
 * A copy for a picture that was turned upright and has this size. The thumbnail goes, because it
 * would show the old picture. Null where the data cannot be read, since it would then say something
 * wrong.
 * @param {Uint8Array | null} original
 * @param {number} width
 * @param {number} height
 */
export function uprightExif(original, width, height) {
    if (!original) return null;
    const tiff = original.slice();
    const first = firstFolder(tiff);
    if (!first) return null;
    first.set(tags.orientation, 1);
    first.set(tags.width, width);
    first.set(tags.height, height);
    try {
        const exifAt = first.get(tags.exifFolder);
        if (exifAt) {
            const exif = new Folder(first.view, first.little, exifAt);
            exif.set(tags.pixelWidth, width);
            exif.set(tags.pixelHeight, height);
        }
        if (first.next) {
            const thumbnail = new Folder(first.view, first.little, first.next);
            const at = thumbnail.get(tags.thumbnailAt);
            tiff.fill(0, at, at + thumbnail.get(tags.thumbnailLength));
            first.next = 0;
        }
    } catch (error) {
        if (!(error instanceof RangeError)) throw error;
        first.next = 0;
    }
    return tiff;
}
