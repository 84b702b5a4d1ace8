// Requests to a worker that has the library: one at a time, the newest of each slot alone.

import { checkFunction, checkObject, checkSignal } from "./checks.js";
import { abortError, OutOfMemoryError, SupersededError } from "./errors.js";
import { shapeOf } from "./pictures.js";

const errorKinds = { TypeError, RangeError, SyntaxError, OutOfMemoryError };

function errorFrom({ name, message }) {
    const Kind = errorKinds[name] ?? Error;
    return new Kind(message);
}

/** A picture like the one that was given, with other pixels. */
function pictureLike(picture, buffer) {
    const isClamped = picture.data[Symbol.toStringTag] === "Uint8ClampedArray";
    const data = isClamped ? new Uint8ClampedArray(buffer) : new Uint8Array(buffer);
    if (typeof ImageData === "function" && picture instanceof ImageData) {
        return new ImageData(data, picture.width, picture.height, { colorSpace: picture.colorSpace });
    }
    return { ...picture, data };
}

/** The bytes alone, in a buffer that can be handed over: the picture's own or a copy. */
function bufferToSend(data, transfer) {
    const isWhole = data.byteOffset === 0 && data.byteLength === data.buffer.byteLength;
    if (transfer && isWhole && data.buffer instanceof ArrayBuffer) return data.buffer;
    return new Uint8Array(data).buffer;
}

export class WorkerClient {
    #startWorker;
    #setUp;
    #worker = null;
    #startedAt = 0;
    #startTook = 0;
    #waiting = [];
    #running = null;
    #deadline = null;
    #lastNumber = 0;
    #closed = false;

    /**
     * @param startWorker (onMessage, onFailure) => the worker: post(message, transfer),
     *                    setBusy(whether), terminate()
     * @param setUp       its first message
     */
    static async create(startWorker, setUp) {
        const client = new WorkerClient(startWorker, setUp);
        await new Promise((resolve, reject) => client.#start(resolve, reject));
        return client;
    }

    constructor(startWorker, setUp) {
        this.#startWorker = startWorker;
        this.#setUp = setUp;
    }

    #start(onReady, onFailure) {
        this.#startedAt = performance.now();
        const worker = this.#startWorker(
            (message) => {
                // What a worker says that was ended meanwhile is of no use.
                if (worker !== this.#worker) return;
                if (message.ready !== undefined) {
                    this.#startTook = performance.now() - this.#startedAt;
                    worker.setBusy(false);
                    Object.assign(this, message.ready);
                    onReady();
                } else {
                    this.#receive(message);
                }
            },
            (error) => {
                if (worker !== this.#worker) return;
                this.#end();
                onFailure(error);
            });
        this.#worker = worker;
        worker.setBusy(true);
        worker.post(this.#setUp);
    }

    #end() {
        this.#worker?.terminate();
        this.#worker = null;
        clearTimeout(this.#deadline);
    }

    adjust(picture, settings, options = {}) {
        return this.#request(options, () => {
            shapeOf(picture);
            checkObject(settings, "settings");
            const { width, height, order } = picture;
            return {
                message: { call: "adjust", picture: { width, height, order }, settings: { ...settings } },
                pixels: picture.data,
                result: ({ buffer }) => pictureLike(picture, buffer),
            };
        });
    }

    lut(settings, dimension, options = {}) {
        return this.#table("lut", settings, dimension, options);
    }

    cube(settings, dimension, options = {}) {
        return this.#table("cube", settings, dimension, options);
    }

    #table(call, settings, dimension, options) {
        return this.#request(options, () => {
            checkObject(settings, "settings");
            const { order } = options;
            return {
                message: { call, arguments: [{ ...settings }, dimension, { order }] },
                result: ({ table }) => table,
            };
        });
    }

    close() {
        this.#closed = true;
        this.#end();
        const error = abortError("the client was closed");
        for (const request of [this.#running, ...this.#waiting]) request?.settle(request.reject, error);
        this.#running = null;
        this.#waiting = [];
    }

    async #request(options, describe) {
        checkObject(options, "options");
        const { slot, signal, progress, transfer = false } = options;
        checkFunction(progress, "options.progress");
        checkSignal(signal, "options.signal");
        const described = describe();
        if (this.#closed) throw abortError("the client was closed");
        signal?.throwIfAborted();
        return new Promise((resolve, reject) => {
            const request = {
                ...described, slot, progress, transfer, resolve, reject, number: ++this.#lastNumber,
                settled: false,
                settle(how, value) {
                    if (this.settled) return;
                    this.settled = true;
                    signal?.removeEventListener("abort", onAbort);
                    how(value);
                },
            };
            const onAbort = () => this.#abort(request, signal.reason);
            signal?.addEventListener("abort", onAbort);
            this.#enqueue(request);
            this.#next();
        });
    }

    #enqueue(request) {
        const older = request.slot === undefined
            ? -1
            : this.#waiting.findIndex(({ slot }) => slot === request.slot);
        if (older < 0) {
            this.#waiting.push(request);
        } else {
            const [superseded] = this.#waiting.splice(older, 1, request);
            superseded.settle(superseded.reject, new SupersededError());
        }
    }

    #next() {
        if (this.#running !== null || this.#waiting.length === 0) return;
        if (this.#worker === null) {
            this.#start(() => this.#next(), (error) => this.#failAll(error));
            return;
        }
        const request = this.#waiting.shift();
        this.#running = request;
        const transfer = [];
        const message = { ...request.message, number: request.number, tells: request.progress !== undefined };
        try {
            if (request.pixels !== undefined) {
                message.buffer = bufferToSend(request.pixels, request.transfer);
                transfer.push(message.buffer);
            }
            this.#worker.setBusy(true);
            this.#worker.post(message, transfer);
        } catch (error) {
            // Its pixels are somewhere else by now, or there is no memory for a copy.
            this.#running = null;
            request.settle(request.reject, error);
            this.#next();
        }
    }

    #receive({ number, share, error, result }) {
        const request = this.#running;
        if (request === null || request.number !== number) return;
        if (share !== undefined) {
            if (!request.settled) request.progress(share);
            return;
        }
        clearTimeout(this.#deadline);
        this.#running = null;
        this.#worker.setBusy(false);
        if (error !== undefined) request.settle(request.reject, errorFrom(error));
        else if (!request.settled) request.settle(request.resolve, request.result(result));
        this.#next();
    }

    /**
     * A worker at work hears nothing. Its request is given up at once; the worker itself may be done
     * in less time than another takes to start, so that it gets that long.
     */
    #abort(request, reason) {
        request.settle(request.reject, reason);
        if (request !== this.#running) {
            this.#waiting = this.#waiting.filter((other) => other !== request);
            return;
        }
        this.#deadline = setTimeout(() => {
            this.#end();
            this.#running = null;
            this.#next();
        }, this.#startTook);
    }

    #failAll(error) {
        const failed = [this.#running, ...this.#waiting];
        this.#running = null;
        this.#waiting = [];
        for (const request of failed) request?.settle(request.reject, error);
    }
}
