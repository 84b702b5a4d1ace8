// Chromium and Firefox beside the native library: in a page, from a canvas, in a worker.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";

import { browsers, resultsOf } from "./support/browsers.mjs";
import { nativeAdjust, nativeLut } from "./support/native.mjs";
import { packageFolder } from "./support/paths.mjs";
import { opaqueWaves } from "./support/pictures.mjs";
import { records } from "./support/records.mjs";
import { serveFolders } from "./support/server.mjs";
import { height, tableRecord, tableSize, width } from "./support/shapes.mjs";

const here = (folder) => fileURLToPath(new URL(folder, import.meta.url));
const server = await serveFolders({ keladjust: packageFolder, support: here("support"), "": here("pages") });
after(() => server.close());

const sha256 = (bytes) => createHash("sha256").update(bytes).digest("hex");
const picture = () => ({ data: opaqueWaves(width, height), width, height });
const ofRecords = Object.fromEntries(Object.entries(records).map(([name, settings]) =>
    [name, sha256(nativeAdjust(picture(), settings))]));
const table = sha256(nativeLut(tableRecord, tableSize, "red-fastest"));

for (const browser of browsers) {
    test(`${browser} gives the native library's bytes, in a page that is not isolated`, async () => {
        const results = await resultsOf(browser, `${server.address}/digests.html`);
        assert.deepEqual(results,
            { isolated: false, page: { ...ofRecords, table }, worker: { ...ofRecords, table }, canvas: ofRecords });
    });
}
