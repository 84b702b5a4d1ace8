import { load } from "keladjust";
import { createWorkerClient } from "keladjust/worker";

const keladjust = await load();
const client = await createWorkerClient();
const picture = { data: new Uint8Array(16), width: 2, height: 2 };

keladjust.adjust(picture, { exposre: 20 }); // refused
keladjust.adjust(picture, { "red-heu": 20 }); // refused
keladjust.adjust(picture, { exposure: "20" }); // refused
keladjust.adjust({ ...picture, order: "argb" }, {}); // refused
keladjust.adjust({ data: [1, 2, 3, 4], width: 1, height: 1 }, {}); // refused
keladjust.adjust(picture); // refused
keladjust.lut({}, 33, { order: "green-fastest" }); // refused
await client.adjust(picture, { redheu: 1 }); // refused
await load({ maximumMemory: "1 GiB" }); // refused
