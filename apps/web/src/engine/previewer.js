// The preview while something moves. A frame is adjusted by several workers, each a band of rows, as
// long as no setting in use looks beyond a pixel; else by one that has all rows. One frame is under
// way at a time: what is asked for meanwhile waits, only the last of it, so that no frame is more than
// one behind.

import { Remote } from "./remote.js";

/** @typedef {import("../model/record.js").Values} Values */
/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../photo/profile.js").Space} Space */

/**
 * @typedef {object} Frame
 * @property {number} width
 * @property {number} height
 * @property {{rgba: Uint8ClampedArray<ArrayBuffer>, first: number}[]} parts
 * @property {Uint32Array} counts levels of three channels
 */

// The library is fast enough that more than a few have little to do.
const mostWorkers = 4;

export class Previewer {
    #script = new URL("./preview-worker.js", import.meta.url);
    /** @type {Remote[]} each with a band, but for the last, which has the whole preview */
    #workers;
    #onFrame;
    #onFailure;
    /** @type {{pixels: Pixels, space: Space} | null} */
    #preview = null;
    #whole;
    /** @type {Values | null} */
    #waiting = null;
    #busy = false;
    #generation = 0;
    /** @type {ArrayBuffer[]} */
    #spare = [];

    /**
     * @param {Set<string>} whole settings that look beyond a pixel, or at where it lies
     * @param {(frame: Frame) => void} onFrame
     * @param {(error: unknown) => void} onFailure
     */
    constructor(whole, onFrame, onFailure) {
        this.#whole = whole;
        this.#onFrame = onFrame;
        this.#onFailure = onFailure;
        const count = Math.min(Math.max(navigator.hardwareConcurrency, 1), mostWorkers);
        this.#workers = Array.from({ length: count + 1 }, () => new Remote(this.#script));
    }

    /**
     * Another picture, of which frames are made from now on.
     * @param {Pixels} pixels
     * @param {Space} space
     */
    async load(pixels, space) {
        const generation = ++this.#generation;
        this.#preview = { pixels, space };
        this.#waiting = null;
        this.#spare = [];
        await this.#loadAll();
        return generation === this.#generation;
    }

    async #loadAll() {
        if (!this.#preview) return;
        const { pixels, space } = this.#preview;
        const { width, height, channels } = pixels;
        const bands = this.#workers.length - 1;
        await Promise.all(
            this.#workers.map((worker, i) => {
                const first = i < bands ? Math.floor((height * i) / bands) : 0;
                const end = i < bands ? Math.floor((height * (i + 1)) / bands) : height;
                const bytes = width * channels;
                const data = pixels.data.slice(first * bytes, end * bytes);
                const band = { ...pixels, data, height: end - first };
                return worker.ask("load", { pixels: band, first, space }, [data.buffer]);
            }),
        );
    }

    /** @param {Values} values which differ from the usual ones */
    request(values) {
        this.#waiting = values;
        if (!this.#busy) void this.#run();
    }

    async #run() {
        this.#busy = true;
        try {
            while (this.#waiting && this.#preview) {
                const values = this.#waiting;
                const generation = this.#generation;
                this.#waiting = null;
                const frame = await this.#adjust(values, this.#preview.pixels);
                if (generation === this.#generation) this.#onFrame(frame);
            }
        } catch (error) {
            this.#onFailure(error);
            await this.#mend();
        } finally {
            this.#busy = false;
        }
    }

    /**
     * @param {Values} values
     * @param {Pixels} pixels
     * @returns {Promise<Frame>}
     */
    async #adjust(values, { width, height }) {
        /** @type {Record<string, number>} */
        const points = {};
        /** @type {Record<string, number>} */
        const whole = {};
        for (const [name, value] of Object.entries(values)) {
            (this.#whole.has(name) ? whole : points)[name] = value;
        }
        const isWhole = Object.keys(whole).length > 0;
        const workers = isWhole ? this.#workers.slice(-1) : this.#workers.slice(0, -1);
        const parts = await Promise.all(
            workers.map((worker) => {
                const spare = this.#spare.shift();
                return worker.ask("adjust", { points, whole, spare }, spare ? [spare] : []);
            }),
        );
        const counts = parts[0].counts;
        for (const part of parts.slice(1)) {
            for (let i = 0; i < counts.length; ++i) counts[i] += part.counts[i];
        }
        return { width, height, parts, counts };
    }

    /**
     * Memory of a frame that has been shown, for another.
     * @param {Frame} frame
     */
    reuse({ parts }) {
        this.#spare = parts.map(({ rgba }) => rgba.buffer);
    }

    /** Puts new workers in the place of those that ended. */
    async #mend() {
        this.#waiting = null;
        this.#workers = this.#workers.map((worker) =>
            worker.isAlive ? worker : new Remote(this.#script),
        );
        await this.#loadAll();
    }

    /**
     * @param {Values} values
     * @param {number} size
     * @returns {Promise<Blob>}
     */
    table(values, size) {
        return this.#workers[0].ask("table", { values, size });
    }
}
