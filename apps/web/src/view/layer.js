// A picture as it appears in a viewport. What has to be made smaller for it is kept until one of the
// two changes: that takes long, and the divider between before and after wants it many times a second.

/** @typedef {import("./viewport.js").Viewport} Viewport */
/** @typedef {import("../photo/profile.js").CanvasSpace} CanvasSpace */

export class Layer {
    #view = new OffscreenCanvas(1, 1);
    /** @type {OffscreenCanvas | null} */
    source = null;
    #drawn = "";
    #version = 0;
    /** @type {CanvasSpace} */
    #space = "srgb";
    /** @type {CanvasSpace} */
    #viewSpace = "srgb";

    /**
     * Parts of a picture, each as wide as the whole.
     * @param {number} width
     * @param {number} height
     * @param {{rgba: Uint8ClampedArray<ArrayBuffer>, first: number}[]} parts with their first rows
     * @param {CanvasSpace} space
     */
    show(width, height, parts, space) {
        if (this.source?.width !== width || this.source.height !== height || this.#space !== space) {
            this.clear();
            this.source = new OffscreenCanvas(width, height);
            this.#space = space;
        }
        const context = this.source.getContext("2d", { colorSpace: space });
        if (!context) throw new Error("not enough memory to show the picture");
        for (const { rgba, first } of parts) {
            const rows = new ImageData(rgba, width, rgba.length / (4 * width), { colorSpace: space });
            context.putImageData(rows, 0, first);
        }
        ++this.#version;
    }

    /** Lets go of the memory. */
    clear() {
        if (this.source) this.source.width = this.source.height = 1;
        this.source = null;
        this.#drawn = "";
    }

    /**
     * @param {CanvasRenderingContext2D} context
     * @param {Viewport} viewport
     */
    draw(context, viewport) {
        if (!this.source) return;
        const shown = viewport.scale * viewport.pictureWidth;
        if (this.source.width <= 1.05 * shown) paint(context, this.source, viewport);
        else context.drawImage(this.#shrunk(viewport), 0, 0);
    }

    /** @param {Viewport} viewport */
    #shrunk(viewport) {
        const { width, height, scale, left, top } = viewport;
        const key = [this.#version, width, height, scale, left, top].join();
        if (key === this.#drawn || !this.source) return this.#view;
        this.#drawn = key;
        const fits = this.#view.width === width && this.#view.height === height;
        if (!fits || this.#viewSpace !== this.#space) this.#view = new OffscreenCanvas(width, height);
        this.#viewSpace = this.#space;
        const context = this.#view.getContext("2d", { colorSpace: this.#space });
        if (!context) throw new Error("not enough memory to show the picture");
        context.clearRect(0, 0, width, height);
        paint(context, this.source, viewport);
        return this.#view;
    }
}

/**
 * @param {CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D} context
 * @param {OffscreenCanvas} source
 * @param {Viewport} viewport
 */
function paint(context, source, { pictureWidth, pictureHeight, scale, left, top }) {
    // Above 200 % people want to see pixels.
    context.imageSmoothingEnabled = scale < 2;
    context.imageSmoothingQuality = "high";
    context.drawImage(source, left, top, scale * pictureWidth, scale * pictureHeight);
}
