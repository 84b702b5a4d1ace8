// The preview while something moves. A frame is adjusted by several workers, each its share of rows,
// as long as no setting in use looks beyond a pixel; else by one. One frame is under way at a time:
// what is asked for meanwhile waits, only the last of it, so that no frame is more than one behind.

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
    /** @type {Remote[]} */
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
        this.#workers = Array.from({ length: count }, () => new Remote(this.#script));
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
        await Promise.all(this.#workers.map((worker) => worker.ask("load", this.#preview)));
        return generation === this.#generation;
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
        const shared = Object.keys(values).every((name) => !this.#whole.has(name));
        const count = shared ? Math.min(this.#workers.length, height) : 1;
        const parts = await Promise.all(
            this.#workers.slice(0, count).map((worker, i) => {
                const first = Math.floor((height * i) / count);
                const end = Math.floor((height * (i + 1)) / count);
                const spare = this.#spare.pop();
                const what = { values, first, end, spare };
                return worker.ask("adjust", what, spare ? [spare] : []);
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
        if (!this.#preview) return;
        await Promise.all(this.#workers.map((worker) => worker.ask("load", this.#preview)));
    }

    /**
     * @param {Values} values
     * @param {number} size
     * @returns {Promise<Blob>}
     */
    table(values, size) {
        return this.#workers[this.#workers.length - 1].ask("table", { values, size });
    }
}
