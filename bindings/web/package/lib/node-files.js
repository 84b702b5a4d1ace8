import { readFile } from "node:fs/promises";

/** What a URL or a file's name leads to. */
export function readFileOrFetch(place) {
    const isRemote = /^https?:/.test(String(place));
    if (isRemote) return fetch(place);
    return readFile(/^file:/.test(String(place)) ? new URL(place) : place);
}
