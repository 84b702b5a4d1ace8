// The photograph that is open, and what happens to it when settings change: a preview at once, the
// exact picture when they rest.

import { Darkroom } from "./engine/darkroom.js";
import { Previewer } from "./engine/previewer.js";
import { Cancelled } from "./engine/remote.js";
import { showHistogram } from "./view/histogram.js";

/** @typedef {import("./engine/darkroom.js").Opened} Opened */
/** @typedef {import("./model/record.js").EditedRecord} EditedRecord */
/** @typedef {import("./view/stage.js").Stage} Stage */

// How long settings rest before the exact picture is made, and the view before the preview fits it.
const rest = 140;

// A preview has a pixel for each of the screen's, but never so many that it could not keep up.
const mostPreviewPixels = 1.8e6;

// Before is kept in full up to here, so that it is sharp at 100 %, too.
const mostBeforePixels = 26e6;

export class Session extends EventTarget {
    #stage;
    #onFailure;
    /** @type {EditedRecord | null} */
    #record = null;
    #previewer;
    /** @type {Darkroom | null} */
    darkroom = null;
    /** @type {(Opened & {name: string}) | null} */
    photograph = null;
    #previewSize = "";
    #version = 0;
    #making = false;
    /** @type {ReturnType<typeof setTimeout> | undefined} */
    #timer;
    /** @type {ReturnType<typeof setTimeout> | undefined} */
    #viewTimer;

    /**
     * @param {Stage} stage
     * @param {Set<string>} whole settings that look beyond a pixel, or at where it lies
     * @param {(error: unknown) => void} onFailure
     */
    constructor(stage, whole, onFailure) {
        super();
        this.#stage = stage;
        this.#onFailure = onFailure;
        this.#previewer = new Previewer(
            whole,
            (frame) => {
                showHistogram(frame.counts);
                return stage.showPreview(frame);
            },
            (error) => onFailure(error),
        );
        stage.addEventListener("view", () => {
            clearTimeout(this.#viewTimer);
            this.#viewTimer = setTimeout(() => void this.#fitPreview().catch(onFailure), rest);
        });
    }

    /** @param {EditedRecord} record */
    follow(record) {
        this.#record = record;
        record.addEventListener("change", () => this.#changed());
    }

    /**
     * Opens a photograph; the one that is open stays if that fails.
     * @param {File} file
     * @param {number} most pixels
     */
    async open(file, most) {
        const darkroom = new Darkroom(file, most);
        let opened;
        try {
            opened = await darkroom.opened;
        } catch (error) {
            darkroom.close();
            throw error;
        }
        this.darkroom?.close();
        clearTimeout(this.#timer);
        ++this.#version;
        this.darkroom = darkroom;
        this.photograph = { ...opened, name: file.name };
        this.#previewSize = "";
        this.#stage.begin(opened.width, opened.height, opened.space.canvas, file.name);
        await this.#fitPreview();
        this.#changed();
        const share = Math.sqrt(Math.min(1, mostBeforePixels / (opened.width * opened.height)));
        const before = await darkroom.before(
            Math.max(1, Math.round(opened.width * share)),
            Math.max(1, Math.round(opened.height * share)),
        );
        if (this.darkroom !== darkroom) return;
        this.#stage.showBefore(before);
        this.dispatchEvent(new Event("open"));
    }

    /** Gives the workers of the preview a picture of the size that is shown, if they have another. */
    async #fitPreview() {
        if (!this.photograph || !this.darkroom) return;
        const { width, height, space } = this.photograph;
        const { darkroom } = this;
        const shown = Math.min(this.#stage.viewport.scale, 1);
        const share = Math.min(shown, Math.sqrt(mostPreviewPixels / (width * height)));
        const size = [width, height].map((side) => Math.max(1, Math.round(side * share)));
        if (size.join() === this.#previewSize) return;
        this.#previewSize = size.join();
        const pixels = await darkroom.preview(size[0], size[1]);
        if (this.darkroom !== darkroom || this.#previewSize !== size.join()) return;
        await this.#previewer.load(pixels, space);
    }

    #changed() {
        if (!this.photograph || !this.#record) return;
        ++this.#version;
        this.#stage.expectChange();
        this.darkroom?.giveUp();
        this.#previewer.request(this.#record.changed);
        clearTimeout(this.#timer);
        this.#timer = setTimeout(() => void this.#makeExact(), rest);
    }

    async #makeExact() {
        if (this.#making || !this.darkroom || !this.#record) return;
        this.#making = true;
        const version = this.#version;
        try {
            const picture = await this.darkroom.full(this.#record.changed);
            if (version === this.#version) {
                this.#stage.showExact(picture);
                showHistogram(picture.counts);
            }
        } catch (error) {
            if (!(error instanceof Cancelled)) this.#onFailure(error);
        } finally {
            this.#making = false;
        }
        if (version !== this.#version) {
            clearTimeout(this.#timer);
            this.#timer = setTimeout(() => void this.#makeExact(), rest);
        }
    }
}
