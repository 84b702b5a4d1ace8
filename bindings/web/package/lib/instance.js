// The library as an instance of its WebAssembly module: its functions, its memory, and what it asks
// of the machine outside.

import { OutOfMemoryError } from "./errors.js";

const pageBytes = 65536;
/** What the module begins with, as its build says, and the most that it can address. */
const initialPages = 64;
const mostPages = 32768;

/** The length of a record: 65 slots of four bytes. */
const recordBytes = 260;

/** Of a picture, as the library numbers its pixel formats. */
export const formatNumbers = { gray: 0, rgb: 1, bgr: 2, rgba: 3, bgra: 4 };

const outcomes = ["done", "cancelled", "out of memory"];

export class Instance {
    #exports;
    #memory;
    #watcher = null;

    /** @param maximumMemory bytes that the library may use in all, its pictures included */
    static async create(module, maximumMemory = mostPages * pageBytes) {
        if (typeof maximumMemory !== "number" || !(maximumMemory >= initialPages * pageBytes)) {
            throw new RangeError(`maximumMemory must be ${initialPages * pageBytes} bytes or more`);
        }
        const memory = new WebAssembly.Memory({
            initial: initialPages,
            maximum: Math.min(Math.floor(maximumMemory / pageBytes), mostPages),
        });
        const instance = new Instance(memory);
        const { exports } = await WebAssembly.instantiate(module, instance.#imports());
        instance.#exports = exports;
        exports._initialize();
        return instance;
    }

    constructor(memory) {
        this.#memory = memory;
    }

    #imports() {
        return {
            env: {
                memory: this.#memory,
                emscripten_notify_memory_growth: () => {},
            },
            keladjust: { progress: (share) => this.#watcher(share) },
            wasi_snapshot_preview1: {
                clock_time_get: (clock, precision, time) => this.#tellTime(time),
                proc_exit: (code) => {
                    throw new Error(`the library ended with code ${code}`);
                },
            },
        };
    }

    #tellTime(address) {
        const nanoseconds = BigInt(Math.round(performance.now() * 1e6));
        new DataView(this.#memory.buffer).setBigUint64(address, nanoseconds, true);
        return 0;
    }

    /** A view of the memory as it is now; the next allocation may end it. */
    bytes(address, length) {
        return new Uint8Array(this.#memory.buffer, address, length);
    }

    /** How much memory there is, in use or free. */
    get size() {
        return this.#memory.buffer.byteLength;
    }

    /** Calls `body` with the address of so many bytes, which are free again after it. */
    withMemory(length, body) {
        const address = length <= 0x7fffffff ? this.#exports.malloc(length) >>> 0 : 0;
        if (address === 0) throw new OutOfMemoryError(length);
        try {
            return body(address);
        } finally {
            this.#exports.free(address);
        }
    }

    text(address) {
        const all = new Uint8Array(this.#memory.buffer);
        return new TextDecoder().decode(all.subarray(address, all.indexOf(0, address)));
    }

    /** Calls `body` with address and length of a text in memory. */
    withText(text, body) {
        const bytes = new TextEncoder().encode(text);
        return this.withMemory(Math.max(bytes.length, 1), (address) => {
            this.bytes(address, bytes.length).set(bytes);
            return body(address, bytes.length);
        });
    }

    #withRecord(record, body) {
        return this.withMemory(recordBytes, (address) => {
            this.bytes(address, recordBytes).set(new Uint8Array(record));
            return body(address);
        });
    }

    get version() {
        return this.text(this.#exports.keladjustVersion());
    }

    /** The library's description of its record. */
    settings() {
        return this.withMemory(4, (countAddress) => {
            const first = this.#exports.keladjustSettings(countAddress);
            const view = new DataView(this.#memory.buffer);
            const count = view.getInt32(countAddress, true);
            return Array.from({ length: count }, (_, index) => this.#setting(view, first + 40 * index));
        });
    }

    #setting(view, address) {
        const text = (place) => this.text(view.getUint32(address + 4 * place, true));
        const integer = (place) => view.getInt32(address + 4 * place, true);
        const number = (place) => view.getFloat32(address + 4 * place, true);
        return {
            name: text(0),
            label: text(1),
            group: text(2),
            help: text(3),
            slot: integer(4),
            isInteger: integer(5) !== 0,
            identity: number(6),
            lowest: number(7),
            highest: number(8),
            usual: number(9),
        };
    }

    /** The name of a setting that a wrong one is nearest to, or null. */
    nearestSetting(wrong) {
        return this.withText(wrong, (address, length) => {
            const nearest = this.#exports.nearestSetting(address, length);
            return nearest === 0 ? null : this.text(nearest);
        });
    }

    /**
     * Adjusts the picture at the address.
     *
     * @param watcher null, or gets the share that is done; a result other than 0 cancels
     * @return "done", "cancelled" or "out of memory"
     */
    adjust(address, { width, height, order, channels }, record, watcher) {
        const outer = this.#watcher;
        this.#watcher = watcher;
        try {
            return this.#withRecord(record, (recordAddress) => {
                const outcome = this.#exports.adjustPicture(
                    address, width, height, 8 * channels, formatNumbers[order], recordAddress,
                    watcher === null ? 0 : 1);
                return outcomes[outcome];
            });
        } finally {
            this.#watcher = outer;
        }
    }

    /** Whether the settings do nothing to any picture. */
    leavesPicturesAlone(record) {
        return this.#withRecord(record, (address) => this.#exports.leavesPicturesAlone(address) !== 0);
    }

    /** Whether a picture, of which one row is at the address, can as well be adjusted a few rows at a time. */
    rowsStandAlone(address, { width, order, channels }, record) {
        return this.#withRecord(record, (recordAddress) =>
            this.#exports.rowsStandAlone(address, width, 8 * channels, formatNumbers[order], recordAddress) !== 0);
    }

    /** A colour table of dimension^3 triples, at the address. */
    bake(address, record, dimension, redFastest) {
        return this.#withRecord(record, (recordAddress) => {
            const baked = this.#exports.keladjustBake(
                recordAddress, recordBytes, dimension, redFastest ? 1 : 0, address);
            // Nothing else can be wrong.
            if (baked === 0) throw new OutOfMemoryError(12 * dimension ** 3);
        });
    }

    /** The text of a cube file of the table at the address. */
    cubeFile(address, dimension, redFastest) {
        return this.withMemory(4, (lengthAddress) => {
            const text = this.#exports.cubeFile(address, dimension, redFastest ? 1 : 0, lengthAddress);
            if (text === 0) throw new OutOfMemoryError();
            try {
                const length = new DataView(this.#memory.buffer).getUint32(lengthAddress, true);
                return new TextDecoder().decode(this.bytes(text, length));
            } finally {
                this.#exports.free(text);
            }
        });
    }
}
