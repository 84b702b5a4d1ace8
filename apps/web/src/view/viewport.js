// Which part of a picture is looked at, and how large. Lengths are device pixels of the canvas.

const most = 16;

export class Viewport {
    width = 1;
    height = 1;
    pictureWidth = 1;
    pictureHeight = 1;
    /** Device pixels for a pixel of the picture; 1 is 100 %. */
    scale = 1;
    /** Where the picture's corner lies. */
    left = 0;
    top = 0;
    fits = true;

    get fitScale() {
        return Math.min(this.width / this.pictureWidth, this.height / this.pictureHeight, 1);
    }

    /** How many pixels of the canvas the picture takes. */
    get shownWidth() {
        return Math.max(1, Math.round(this.scale * this.pictureWidth));
    }

    get shownHeight() {
        return Math.max(1, Math.round(this.scale * this.pictureHeight));
    }

    /**
     * @param {number} width of the canvas
     * @param {number} height
     */
    resize(width, height) {
        this.width = width;
        this.height = height;
        this.#settle();
    }

    /**
     * @param {number} width of the picture
     * @param {number} height
     */
    look(width, height) {
        this.pictureWidth = width;
        this.pictureHeight = height;
        this.fit();
    }

    fit() {
        this.fits = true;
        this.#settle();
    }

    /**
     * @param {number} scale
     * @param {number} [x] the point that stays where it is
     * @param {number} [y]
     */
    zoomTo(scale, x = this.width / 2, y = this.height / 2) {
        const wanted = Math.min(Math.max(scale, this.fitScale), most);
        this.left = x - ((x - this.left) * wanted) / this.scale;
        this.top = y - ((y - this.top) * wanted) / this.scale;
        this.scale = wanted;
        this.fits = wanted === this.fitScale;
        this.#settle();
    }

    /**
     * @param {number} dx
     * @param {number} dy
     */
    moveBy(dx, dy) {
        this.left += dx;
        this.top += dy;
        this.#settle();
    }

    get isMovable() {
        return this.shownWidth > this.width || this.shownHeight > this.height;
    }

    /** Keeps the picture in sight, on whole pixels where it is shown pixel by pixel. */
    #settle() {
        if (this.fits) this.scale = this.fitScale;
        this.left = settled(this.left, this.shownWidth, this.width);
        this.top = settled(this.top, this.shownHeight, this.height);
    }
}

/**
 * @param {number} start
 * @param {number} length of the picture
 * @param {number} room
 */
function settled(start, length, room) {
    if (length <= room) return Math.round((room - length) / 2);
    return Math.round(Math.min(Math.max(start, room - length), 0));
}
