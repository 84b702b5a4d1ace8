// Files go out.

import { make } from "./element.js";

/**
 * @param {Blob} blob
 * @param {string} name
 */
export function save(blob, name) {
    const address = URL.createObjectURL(blob);
    const link = make("a", { href: address, download: name });
    link.click();
    // The download has its own hold on the data once it has begun.
    setTimeout(() => URL.revokeObjectURL(address), 60000);
}

/**
 * A file's name without its extension.
 * @param {string} name
 */
export function stemOf(name) {
    return name.replace(/\.[^.]*$/, "") || "photograph";
}
