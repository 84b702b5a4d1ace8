// What a page that is bundled does: adjusts here and in a worker.

import { load } from "keladjust";
import { createWorkerClient } from "keladjust/worker";

export async function adjustBoth(options) {
    const picture = () => ({ data: new Uint8Array(12).fill(90), width: 2, height: 2, order: "rgb" });
    const library = await load(options.load);
    const client = await createWorkerClient(options.client);
    const here = library.adjust(picture(), { exposure: 50 }).data;
    const there = (await client.adjust(picture(), { exposure: 50 })).data;
    client.close();
    return [[...here], [...there]];
}
