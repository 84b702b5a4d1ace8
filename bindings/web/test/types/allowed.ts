import { load, OutOfMemoryError, type Keladjust, type Picture, type Setting, type Settings } from "keladjust";
import { createWorkerClient, SupersededError, type WorkerClient } from "keladjust/worker";

const keladjust: Keladjust = await load();
await load({ wasm: new URL("https://example.org/keladjust.wasm"), maximumMemory: 2 ** 28 });
await load({ wasm: fetch("keladjust.wasm") });

const camel: Settings = { exposure: 20, redHue: 5, vignetteAmount: -20, colourNoiseReduction: 9 };
const kebab: Settings = { "red-hue": 5, "vignette-amount": -20, "colour-noise-reduction": 9, exposure: 1 };
const picture: ImageData = keladjust.adjust(new ImageData(2, 2), camel);
const raw: Picture = keladjust.adjust({ data: new Uint8Array(12), width: 2, height: 2, order: "rgb" }, kebab);
keladjust.adjust(raw, {}, { signal: AbortSignal.timeout(9), progress: (share) => share < 0.5 });
const table: Float32Array = keladjust.lut(camel, 33, { order: "blue-fastest" });
const text: string = keladjust.cube(camel);
const read: Settings = keladjust.readPreset(keladjust.writePreset(camel), "evening.json");
const first: Setting | undefined = keladjust.settings[0];
const useful: number[] = first === undefined ? [] : [first.lowest, first.highest, first.usual];

const client: WorkerClient = await createWorkerClient({
    worker: () => new Worker("worker.js", { type: "module" }),
});
const adjusted: ImageData = await client.adjust(picture, read, { slot: "preview", transfer: true });
const fromWorker: Float32Array = await client.lut(camel, 17, { slot: 1 });
client.close();
const errors = [new OutOfMemoryError(), new SupersededError()];
export { adjusted, errors, fromWorker, table, text, useful };
