// The photograph in full, in a worker of its own: the exact picture once nothing moves any more,
// thumbnails, files. Work that has become useless is ended with its worker, and another one opens the
// photograph again.

import { Cancelled, Remote } from "./remote.js";

/** @typedef {import("../model/record.js").Values} Values */
/** @typedef {import("../photo/profile.js").Space} Space */

/**
 * @typedef {object} Opened
 * @property {number} width
 * @property {number} height
 * @property {number} channels
 * @property {boolean} hasAlpha
 * @property {Space} space
 */

/** @typedef {{rgba: Uint8ClampedArray<ArrayBuffer>, width: number, height: number, counts: Uint32Array}} Picture */

const script = new URL("./photo-worker.js", import.meta.url);

// Opening the photograph again takes about as long; what has run for less is let run on.
const worthEnding = 400;

export class Darkroom {
    #worker = new Remote(script);
    #file;
    #most;
    /** @type {Promise<Opened>} */
    #opened;
    #started = 0;
    #running = false;
    #closed = false;

    /**
     * @param {File} file
     * @param {number} most pixels; a picture that has more is made smaller
     */
    constructor(file, most) {
        this.#file = file;
        this.#most = most;
        this.#opened = this.#open();
    }

    /** @returns {Promise<Opened>} */
    #open() {
        return this.#worker.ask("open", { blob: this.#file, name: this.#file.name, most: this.#most });
    }

    get opened() {
        return this.#opened;
    }

    /**
     * @param {string} name
     * @param {unknown} argument
     * @returns {Promise<any>}
     */
    async #ask(name, argument) {
        if (!this.#worker.isAlive && !this.#closed) this.#restart();
        try {
            await this.#opened;
            return await this.#worker.ask(name, argument);
        } catch (error) {
            // What was given up was the full picture; the rest goes on in the next worker.
            if (!(error instanceof Cancelled) || this.#closed || name === "full") throw error;
            return this.#ask(name, argument);
        }
    }

    #restart() {
        this.#worker = new Remote(script);
        this.#opened = this.#open();
    }

    /**
     * @param {number} width
     * @param {number} height
     * @returns {Promise<import("../photo/pixels.js").Pixels>}
     */
    preview(width, height) {
        return this.#ask("preview", { width, height });
    }

    /**
     * @param {number} width
     * @param {number} height
     * @returns {Promise<Picture>}
     */
    before(width, height) {
        return this.#ask("before", { width, height });
    }

    /**
     * @param {Values} values
     * @returns {Promise<Picture>}
     */
    async full(values) {
        this.#running = true;
        this.#started = performance.now();
        try {
            return await this.#ask("full", { values });
        } finally {
            this.#running = false;
        }
    }

    /** The picture that full() is making is not wanted any more. */
    giveUp() {
        if (this.#running && performance.now() - this.#started > worthEnding) this.#worker.cancel();
    }

    /**
     * @param {Values} values
     * @param {number} width
     * @param {number} height
     * @returns {Promise<Picture>}
     */
    thumbnail(values, width, height) {
        return this.#ask("thumbnail", { values, width, height });
    }

    /**
     * @param {Values} values
     * @param {import("../photo/encode.js").FileKind} kind
     * @param {number} quality
     * @returns {Promise<Blob>}
     */
    file(values, kind, quality) {
        return this.#ask("file", { values, kind, quality });
    }

    close() {
        this.#closed = true;
        this.#worker.cancel();
    }
}

/**
 * The size of a file's picture before it is opened; null where only opening it tells.
 * @param {File} file
 * @returns {Promise<{width: number, height: number} | null>}
 */
export function sizeOf(file) {
    return askOnce("size", { blob: file, name: file.name });
}

/**
 * A colour table of this many colours along each edge, as a cube file.
 * @param {Values} values
 * @param {number} size
 * @returns {Promise<Blob>}
 */
export function tableOf(values, size) {
    return askOnce("table", { values, size });
}

/**
 * Asks a worker that has no photograph, so that nothing waits for the answer but who asked.
 * @param {string} name
 * @param {unknown} argument
 * @returns {Promise<any>}
 */
async function askOnce(name, argument) {
    const worker = new Remote(script);
    try {
        return await worker.ask(name, argument);
    } finally {
        worker.cancel();
    }
}
