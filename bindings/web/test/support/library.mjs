// The package as it was built, and its names.

export { load, OutOfMemoryError } from "../../../../build/web/package/node.js";
export { createWorkerClient, SupersededError } from "../../../../build/web/package/worker-node.js";

/** redHue, of red-hue. */
export const camelCase = (name) => name.replace(/-(.)/g, (_, letter) => letter.toUpperCase());

export const inCamelCase = (settings) =>
    Object.fromEntries(Object.entries(settings).map(([name, value]) => [camelCase(name), value]));
