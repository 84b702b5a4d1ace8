// A record as a link's fragment, "exposure=20&red-hue=5": people can read it, and no server sees it.

import { Refusal, checkEntry } from "./check.js";

/** @typedef {import("./description.js").Setting} Setting */
/** @typedef {import("./record.js").Values} Values */

/** @param {Values} values */
export function writeFragment(values) {
    return Object.entries(values)
        .map(([name, value]) => `${name}=${value}`)
        .join("&");
}

/**
 * @param {string} fragment without or with the leading "#"
 * @param {Setting[]} settings
 * @returns {Values}
 */
export function readFragment(fragment, settings) {
    /** @type {Record<string, number>} */
    const values = {};
    for (const entry of fragment.replace(/^#/, "").split("&")) {
        if (entry === "") continue;
        const [name, text = ""] = entry.split("=");
        if (!/^-?[0-9.]+(e[-+]?[0-9]+)?$/i.test(text)) {
            throw new Refusal(`The link: "${name}" must be a number`);
        }
        checkEntry(settings, name, Number(text), "The link");
        values[name] = Number(text);
    }
    return values;
}
