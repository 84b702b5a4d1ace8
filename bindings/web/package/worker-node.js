// A client of a worker of its own, in Node.

import { Worker } from "node:worker_threads";

import { checkObject } from "./lib/checks.js";
import { WorkerClient } from "./lib/client.js";
import { readFileOrFetch } from "./lib/node-files.js";
import { compile } from "./lib/source.js";

export { OutOfMemoryError, SupersededError } from "./lib/errors.js";

export async function createWorkerClient(options = {}) {
    checkObject(options, "options");
    const { wasm = new URL("./keladjust.wasm", import.meta.url), maximumMemory } = options;
    const module = await compile(wasm, readFileOrFetch);
    return WorkerClient.create((onMessage, onFailure) => {
        const started = new Worker(new URL("./worker-thread-node.js", import.meta.url));
        started.on("message", onMessage);
        started.on("error", onFailure);
        return {
            post: (message, transfer = []) => started.postMessage(message, transfer),
            // A worker that waits keeps no program from its end.
            setBusy: (busy) => (busy ? started.ref() : started.unref()),
            terminate: () => started.terminate(),
        };
    }, { module, maximumMemory });
}
