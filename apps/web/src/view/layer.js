// A picture as it appears in a viewport, kept until one of the two changes: to draw a large picture
// small takes long, and the divider between before and after wants both of them many times a second.

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

    /** @param {Viewport} viewport */
    render({ width, height, pictureWidth, pictureHeight, scale, left, top }) {
        const key = [this.#version, width, height, pictureWidth, scale, left, top, this.#space].join();
        if (key === this.#drawn || !this.source) return this.#view;
        this.#drawn = key;
        this.#view = new OffscreenCanvas(width, height);
        const context = this.#view.getContext("2d", { colorSpace: this.#space });
        if (!context) throw new Error("not enough memory to show the picture");
        // Above 200 % people want to see pixels.
        context.imageSmoothingEnabled = scale < 2;
        context.imageSmoothingQuality = "high";
        context.drawImage(this.source, left, top, scale * pictureWidth, scale * pictureHeight);
        return this.#view;
    }
}
