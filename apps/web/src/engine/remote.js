// A worker as the page sees it: requests with answers, and an end that nobody asked for.

import { Refusal } from "../model/refusal.js";

export class Remote {
    #worker;
    #next = 0;
    /** @type {Map<number, {resolve: (result: any) => void, reject: (error: Error) => void}>} */
    #open = new Map();
    /** @type {Error | null} */
    #ended = null;

    /** @param {URL} script */
    constructor(script) {
        this.#worker = new Worker(script, { type: "module" });
        this.#worker.addEventListener("message", ({ data }) => this.#answered(data));
        this.#worker.addEventListener("error", (event) => {
            event.preventDefault();
            this.#end(new Crash(event.message || "it could not be started"));
        });
    }

    /**
     * @param {{id: number, result?: unknown, failure?: {message: string, isRefusal: boolean}}} answer
     */
    #answered({ id, result, failure }) {
        const request = this.#open.get(id);
        this.#open.delete(id);
        if (!failure) request?.resolve(result);
        else if (failure.isRefusal) request?.reject(new Refusal(failure.message));
        else request?.reject(new Error(failure.message));
    }

    /** @param {Error} why */
    #end(why) {
        this.#ended ??= why;
        this.#worker.terminate();
        for (const { reject } of this.#open.values()) reject(why);
        this.#open.clear();
    }

    /**
     * @param {string} name
     * @param {unknown} [argument]
     * @param {Transferable[]} [transfer]
     * @returns {Promise<any>}
     */
    ask(name, argument, transfer = []) {
        if (this.#ended) return Promise.reject(this.#ended);
        const id = ++this.#next;
        return new Promise((resolve, reject) => {
            this.#open.set(id, { resolve, reject });
            this.#worker.postMessage({ id, name, argument }, transfer);
        });
    }

    get isAlive() {
        return this.#ended === null;
    }

    /** Ends the worker in the middle of whatever it does; what is open is rejected as Cancelled. */
    cancel() {
        this.#end(new Cancelled("cancelled"));
    }
}

/** Of a request whose worker was ended by the page. */
export class Cancelled extends Error {}

/** Of a request whose worker ended by itself. */
export class Crash extends Error {}
