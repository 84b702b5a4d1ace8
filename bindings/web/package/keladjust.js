// In pages, in workers and in bundlers.

import { checkObject } from "./lib/checks.js";
import { Keladjust } from "./lib/keladjust.js";
import { compile } from "./lib/source.js";

export { OutOfMemoryError } from "./lib/errors.js";

export async function load(options = {}) {
    checkObject(options, "options");
    const { wasm = new URL("./keladjust.wasm", import.meta.url), maximumMemory } = options;
    return Keladjust.create(await compile(wasm, fetch), maximumMemory);
}
