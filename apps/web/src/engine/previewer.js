// The preview while something moves, made by a worker. One frame is under way at a time: what is asked
// for meanwhile waits, only the last of it, so that no frame is more than one behind.

import { Remote } from "./remote.js";

/** @typedef {import("../model/record.js").Values} Values */
/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../photo/profile.js").Space} Space */

/**
 * @typedef {object} Frame
 * @property {number} width
 * @property {number} height
 * @property {Uint8ClampedArray<ArrayBuffer>} rgba
 * @property {Uint32Array} counts levels of three channels
 */

export class Previewer {
    #script = new URL("./preview-worker.js", import.meta.url);
    #worker = new Remote(this.#script);
    #onFrame;
    #onFailure;
    /** @type {{pixels: Pixels, space: Space} | null} */
    #preview = null;
    #whole;
    /** @type {Values | null} */
    #waiting = null;
    #busy = false;
    #generation = 0;
    /** @type {ArrayBuffer | undefined} */
    #spare;

    /**
     * @param {Set<string>} whole settings that look beyond a pixel, or at where it lies
     * @param {(frame: Frame) => Frame | null} onFrame which gives back the frame that it showed before
     * @param {(error: unknown) => void} onFailure
     */
    constructor(whole, onFrame, onFailure) {
        this.#whole = whole;
        this.#onFrame = onFrame;
        this.#onFailure = onFailure;
    }

    /**
     * Another picture, of which frames are made from now on.
     * @param {Pixels} pixels
     * @param {Space} space
     */
    async load(pixels, space) {
        ++this.#generation;
        this.#preview = { pixels, space };
        this.#waiting = null;
        await this.#worker.ask("load", this.#preview);
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
                const frame = await this.#adjust(values);
                if (generation === this.#generation) this.#spare = this.#onFrame(frame)?.rgba.buffer;
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
     * @returns {Promise<Frame>}
     */
    #adjust(values) {
        /** @type {Record<string, number>} */
        const points = {};
        /** @type {Record<string, number>} */
        const whole = {};
        for (const [name, value] of Object.entries(values)) {
            (this.#whole.has(name) ? whole : points)[name] = value;
        }
        const spare = this.#spare;
        this.#spare = undefined;
        return this.#worker.ask("adjust", { points, whole, spare }, spare ? [spare] : []);
    }

    /** Puts a new worker in the place of one that has ended. */
    async #mend() {
        this.#waiting = null;
        if (this.#worker.isAlive) return;
        this.#worker = new Remote(this.#script);
        if (this.#preview) await this.#worker.ask("load", this.#preview);
    }
}
