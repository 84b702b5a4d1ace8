// The photograph: before, the preview and the exact picture, at any zoom, with a divider.

import { find } from "./element.js";
import { Layer } from "./layer.js";
import { Viewport } from "./viewport.js";

/** @typedef {import("../photo/profile.js").CanvasSpace} CanvasSpace */
/** @typedef {import("./layer.js").Picture} Picture */
/** @typedef {import("../engine/previewer.js").Frame} Frame */

/**
 * Which layer shows what the settings make: nothing yet, a frame of the preview, or every pixel.
 * @typedef {"nothing" | "preview" | "exact"} Shown
 */

export class Stage extends EventTarget {
    viewport = new Viewport();
    #element = find("stage", HTMLElement);
    #canvas = find("picture", HTMLCanvasElement);
    #before = new Layer();
    #preview = new Layer();
    #exact = new Layer();
    /** Whose pixels the preview shows. @type {Frame | null} */
    #frame = null;
    /** @type {Shown} */
    #shown = "nothing";
    /** @type {CanvasSpace} */
    #space = "srgb";
    #onlyBefore = false;
    /** Share of the width that shows before; null: none */
    #divided = /** @type {number | null} */ (null);
    #asked = false;

    constructor() {
        super();
        new ResizeObserver(() => this.#measure()).observe(this.#element);
        this.#measure();
    }

    #measure() {
        const { clientWidth, clientHeight } = this.#element;
        const width = Math.max(1, Math.round(clientWidth * devicePixelRatio));
        const height = Math.max(1, Math.round(clientHeight * devicePixelRatio));
        if (width === this.viewport.width && height === this.viewport.height) return;
        this.viewport.resize(width, height);
        this.changeView();
    }

    /**
     * A new photograph.
     * @param {number} width
     * @param {number} height
     * @param {CanvasSpace} space
     * @param {string} name
     */
    begin(width, height, space, name) {
        for (const layer of [this.#before, this.#preview, this.#exact]) layer.clear();
        this.#frame = null;
        this.#setShown("nothing");
        if (space !== this.#space) this.#renew(space);
        this.#canvas.hidden = false;
        this.#canvas.setAttribute("aria-label", `${name}, adjusted`);
        this.viewport.look(width, height);
        this.changeView();
    }

    /**
     * A canvas keeps its colour space for life.
     * @param {CanvasSpace} space
     */
    #renew(space) {
        this.#space = space;
        const fresh = /** @type {HTMLCanvasElement} */ (this.#canvas.cloneNode());
        this.#canvas.replaceWith(fresh);
        this.#canvas = fresh;
    }

    /** @param {Picture} picture */
    showBefore(picture) {
        this.#before.show(picture, this.#space);
        this.draw();
    }

    /**
     * @param {Frame} frame
     * @returns {Frame | null} the one before, which is not needed any more
     */
    showPreview(frame) {
        const before = this.#frame;
        this.#frame = frame;
        this.#preview.show(frame, this.#space);
        this.#setShown("preview");
        this.draw();
        return before;
    }

    /** @param {Picture} picture */
    showExact(picture) {
        this.#exact.show(picture, this.#space);
        this.#setShown("exact");
        this.draw();
    }

    /** What is shown is on its way out. */
    expectChange() {
        this.#element.setAttribute("aria-busy", "true");
    }

    /** @param {Shown} shown */
    #setShown(shown) {
        this.#shown = shown;
        this.#element.setAttribute("aria-busy", String(shown !== "exact"));
    }

    /** @param {boolean} only */
    showOnlyBefore(only) {
        this.#onlyBefore = only;
        this.draw();
    }

    /** @param {number | null} share */
    divide(share) {
        this.#divided = share;
        this.draw();
    }

    /** The viewport is another one. */
    changeView() {
        this.#element.classList.toggle("movable", this.viewport.isMovable);
        this.draw();
        this.dispatchEvent(new Event("view"));
    }

    /** Draws with the next frame of the screen. */
    draw() {
        if (this.#asked) return;
        this.#asked = true;
        requestAnimationFrame(() => {
            this.#asked = false;
            this.#drawNow();
        });
    }

    #drawNow() {
        const { width, height } = this.viewport;
        const canvas = this.#canvas;
        if (canvas.width !== width || canvas.height !== height) {
            canvas.width = width;
            canvas.height = height;
        }
        const context = canvas.getContext("2d", { colorSpace: this.#space });
        if (!context || this.#shown === "nothing") return;
        const after = this.#shown === "exact" ? this.#exact : this.#preview;
        const before = this.#before.isEmpty ? after : this.#before;
        (this.#onlyBefore ? before : after).draw(context, this.viewport);
        if (this.#divided === null || this.#onlyBefore) return;
        before.draw(context, this.viewport, Math.round(width * this.#divided));
    }
}
