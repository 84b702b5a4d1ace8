// The library as JavaScript sees it.

import { checkChoice, checkFunction, checkObject, checkSignal, checkWhole } from "./checks.js";
import { abortError, OutOfMemoryError } from "./errors.js";
import { Instance } from "./instance.js";
import { bandOf, bytesOf, copyIn, copyOut, rowsOf, shapeOf } from "./pictures.js";
import { readPreset, writePreset } from "./presets.js";
import { Settings } from "./settings.js";

const tableOrders = ["red-fastest", "blue-fastest"];
const tableBytes = (dimension) => 12 * dimension ** 3;

/** Passes on how far the library is and remembers why it is to stop. */
class Watch {
    stopped = false;
    reason;
    #progress;
    #signal;

    constructor(progress, signal) {
        this.#progress = progress;
        this.#signal = signal;
    }

    tell(share) {
        try {
            const wish = this.#progress?.(share);
            this.#signal?.throwIfAborted();
            if (wish === false) throw abortError("the adjustment was cancelled");
            return 0;
        } catch (reason) {
            this.stopped = true;
            this.reason = reason;
            return 1;
        }
    }
}

export class Keladjust {
    #instance;
    #settings;

    static async create(module, maximumMemory) {
        return new Keladjust(await Instance.create(module, maximumMemory));
    }

    constructor(instance) {
        this.#instance = instance;
        this.#settings = new Settings(instance.settings(), (wrong) => instance.nearestSetting(wrong));
        this.version = instance.version;
    }

    get settings() {
        return this.#settings.all;
    }

    get memory() {
        return this.#instance.size;
    }

    adjust(picture, settings, options = {}) {
        const shape = shapeOf(picture);
        const record = this.#settings.record(settings);
        checkObject(options, "options");
        const { progress, signal } = options;
        checkFunction(progress, "options.progress");
        checkSignal(signal, "options.signal");
        signal?.throwIfAborted();
        if (bytesOf(shape) === 0) return picture;
        const watched = progress !== undefined || signal !== undefined;
        const watch = watched ? new Watch(progress, signal) : null;
        if (watch === null && this.#instance.leavesPicturesAlone(record)) return picture;
        const band = bandOf(shape);
        // Not while somebody may stop it in the middle.
        if (watch === null && band.height < shape.height && this.#rowsStandAlone(band, record)) {
            this.#adjustBands(shape, band, record);
        } else {
            this.#adjustCopy(shape, record, watch);
        }
        return picture;
    }

    #rowsStandAlone(band, record) {
        return this.#instance.withMemory(band.paddedRowBytes, (address) =>
            this.#instance.rowsStandAlone(address, band, record));
    }

    #adjustCopy(shape, record, watch) {
        const bytes = bytesOf(shape);
        this.#instance.withMemory(bytes, (address) => this.#adjustAt(address, bytes, shape, record, watch));
    }

    /** Memory is the same for every band: if it is short, it is so for the first, before a pixel is changed. */
    #adjustBands(shape, band, record) {
        const bytes = bytesOf(band);
        this.#instance.withMemory(bytes, (address) => {
            for (let y = 0; y < shape.height; y += band.height) {
                const rows = rowsOf(shape, y, Math.min(band.height, shape.height - y));
                this.#adjustAt(address, bytesOf(rows), rows, record, null);
            }
        });
    }

    #adjustAt(address, bytes, shape, record, watch) {
        const instance = this.#instance;
        copyIn(shape, instance.bytes(address, bytes));
        const outcome = instance.adjust(address, shape, record, watch && ((share) => watch.tell(share)));
        if (watch?.stopped) throw watch.reason;
        if (outcome === "out of memory") throw new OutOfMemoryError();
        copyOut(instance.bytes(address, bytes), shape);
    }

    lut(settings, dimension = 32, options = {}) {
        return this.#bake(settings, dimension, options, (address) =>
            new Float32Array(this.#instance.bytes(address, tableBytes(dimension)).slice().buffer));
    }

    cube(settings, dimension = 32, options = {}) {
        return this.#bake(settings, dimension, options, (address, redFastest) =>
            this.#instance.cubeFile(address, dimension, redFastest));
    }

    #bake(settings, dimension, options, take) {
        const record = this.#settings.record(settings);
        checkWhole(dimension, 2, 256, "dimension");
        checkObject(options, "options");
        const { order = "red-fastest" } = options;
        checkChoice(order, tableOrders, "options.order");
        const redFastest = order === "red-fastest";
        return this.#instance.withMemory(tableBytes(dimension), (address) => {
            this.#instance.bake(address, record, dimension, redFastest);
            return take(address, redFastest);
        });
    }

    readPreset(text, name = "preset") {
        return readPreset(this.#settings, text, name);
    }

    writePreset(settings) {
        return writePreset(this.#settings, settings);
    }
}
