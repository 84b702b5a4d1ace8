// What each record makes of a picture, and of a colour table, as SHA-256.

import { load } from "/keladjust/keladjust.js";
import { createWorkerClient } from "/keladjust/worker.js";
import { opaqueWaves } from "/support/pictures.mjs";
import { records } from "/support/records.mjs";
import { height, tableRecord, tableSize, width } from "/support/shapes.mjs";

async function sha256(bytes) {
    const digest = new Uint8Array(await crypto.subtle.digest("SHA-256", bytes));
    return [...digest].map((byte) => byte.toString(16).padStart(2, "0")).join("");
}

async function digests() {
    const library = await load();
    const client = await createWorkerClient();
    const picture = () => new ImageData(opaqueWaves(width, height), width, height);

    const canvas = document.createElement("canvas");
    Object.assign(canvas, { width, height });
    const context = canvas.getContext("2d");
    context.putImageData(picture(), 0, 0);

    const results = { isolated: crossOriginIsolated, page: {}, worker: {}, canvas: {} };
    for (const [name, settings] of Object.entries(records)) {
        results.page[name] = await sha256(library.adjust(picture(), settings).data);
        const adjusted = await client.adjust(picture(), settings, { slot: name });
        if (!(adjusted instanceof ImageData)) throw new Error("the worker gives no ImageData");
        results.worker[name] = await sha256(adjusted.data);
        results.canvas[name] = await sha256(library.adjust(context.getImageData(0, 0, width, height), settings).data);
    }
    results.page.table = await sha256(library.lut(tableRecord, tableSize));
    results.worker.table = await sha256(await client.lut(tableRecord, tableSize));
    client.close();
    return results;
}

window.results = digests();
