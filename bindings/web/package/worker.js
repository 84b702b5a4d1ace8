// A client of a worker of its own, in pages and bundlers.

import { checkFunction, checkObject } from "./lib/checks.js";
import { WorkerClient } from "./lib/client.js";
import { compile } from "./lib/source.js";

export { OutOfMemoryError, SupersededError } from "./lib/errors.js";

const ownWorker = () => new Worker(new URL("./worker-thread.js", import.meta.url), { type: "module" });

export async function createWorkerClient(options = {}) {
    checkObject(options, "options");
    const { wasm = new URL("./keladjust.wasm", import.meta.url), maximumMemory, worker = ownWorker } = options;
    checkFunction(worker, "options.worker");
    const module = await compile(wasm, fetch);
    return WorkerClient.create((onMessage, onFailure) => {
        const started = worker();
        started.addEventListener("message", ({ data }) => onMessage(data));
        started.addEventListener("error", (event) => {
            event.preventDefault();
            onFailure(new Error(`the worker failed: ${event.message ?? "it cannot be loaded"}`));
        });
        return {
            post: (message, transfer = []) => started.postMessage(message, transfer),
            setBusy: () => {},
            terminate: () => started.terminate(),
        };
    }, { module, maximumMemory });
}
