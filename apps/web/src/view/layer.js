// A picture as it appears in a viewport. Pixels that are shown one by one go to the screen as they are;
// others through a canvas. What has to be made smaller is kept until picture or viewport change: that
// takes long, and the divider between before and after wants it many times a second.

/** @typedef {import("./viewport.js").Viewport} Viewport */
/** @typedef {import("../photo/profile.js").CanvasSpace} CanvasSpace */

/**
 * @typedef {object} Picture
 * @property {Uint8ClampedArray<ArrayBuffer>} rgba
 * @property {number} width
 * @property {number} height
 */

export class Layer {
    #width = 0;
    #height = 0;
    /** @type {CanvasSpace} */
    #space = "srgb";
    /** The picture until it goes to #source. @type {Picture | null} */
    #pixels = null;
    /** @type {OffscreenCanvas | null} */
    #source = null;
    #view = new OffscreenCanvas(1, 1);
    /** @type {CanvasSpace} */
    #viewSpace = "srgb";
    #drawn = "";
    #version = 0;

    get isEmpty() {
        return this.#width === 0;
    }

    /**
     * @param {Picture} picture
     * @param {CanvasSpace} space
     */
    show(picture, space) {
        const { width, height } = picture;
        if (width !== this.#width || height !== this.#height || space !== this.#space) this.clear();
        this.#width = width;
        this.#height = height;
        this.#space = space;
        this.#pixels = picture;
        ++this.#version;
    }

    /** Lets go of the memory. */
    clear() {
        if (this.#source) this.#source.width = this.#source.height = 1;
        this.#source = this.#pixels = null;
        this.#width = this.#height = 0;
        this.#drawn = "";
    }

    /**
     * @param {CanvasRenderingContext2D} context
     * @param {Viewport} viewport
     * @param {number} [end] of the part that is drawn, from the left
     */
    draw(context, viewport, end = viewport.width) {
        const { shownWidth, shownHeight, left, top, height } = viewport;
        context.clearRect(0, 0, end, height);
        if (this.isEmpty) return;
        if (this.#pixels && this.#width === shownWidth && this.#height === shownHeight) {
            context.putImageData(this.#imageOf(this.#pixels), left, top, 0, 0, end - left, shownHeight);
            return;
        }
        context.save();
        context.beginPath();
        context.rect(0, 0, end, height);
        context.clip();
        const source = this.#canvas();
        if (this.#width <= 1.05 * shownWidth) paint(context, source, viewport);
        else context.drawImage(this.#shrunk(source, viewport), 0, 0);
        context.restore();
    }

    /** @param {Picture} picture */
    #imageOf({ rgba, width, height }) {
        return new ImageData(rgba, width, height, { colorSpace: this.#space });
    }

    /** The picture as a canvas, which then is all that holds it. */
    #canvas() {
        this.#source ??= new OffscreenCanvas(this.#width, this.#height);
        if (this.#pixels) {
            contextOf(this.#source, this.#space).putImageData(this.#imageOf(this.#pixels), 0, 0);
            this.#pixels = null;
        }
        return this.#source;
    }

    /**
     * @param {OffscreenCanvas} source
     * @param {Viewport} viewport
     */
    #shrunk(source, viewport) {
        const { width, height, scale, left, top } = viewport;
        const key = [this.#version, width, height, scale, left, top].join();
        if (key === this.#drawn) return this.#view;
        this.#drawn = key;
        const fits = this.#view.width === width && this.#view.height === height;
        if (!fits || this.#viewSpace !== this.#space) this.#view = new OffscreenCanvas(width, height);
        this.#viewSpace = this.#space;
        const context = contextOf(this.#view, this.#space);
        context.clearRect(0, 0, width, height);
        paint(context, source, viewport);
        return this.#view;
    }
}

/**
 * @param {OffscreenCanvas} canvas
 * @param {CanvasSpace} colorSpace
 */
function contextOf(canvas, colorSpace) {
    const context = canvas.getContext("2d", { colorSpace });
    if (!context) throw new Error("not enough memory to show the picture");
    return context;
}

/**
 * @param {CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D} context
 * @param {OffscreenCanvas} source
 * @param {Viewport} viewport
 */
function paint(context, source, { shownWidth, shownHeight, scale, left, top }) {
    // Above 200 % people want to see pixels.
    context.imageSmoothingEnabled = scale < 2;
    context.imageSmoothingQuality = "high";
    context.drawImage(source, left, top, shownWidth, shownHeight);
}
