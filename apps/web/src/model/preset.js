// Presets: the command line's JSON files, read and written.

import { Refusal, checkEntry } from "./check.js";

/** @typedef {import("./description.js").Setting} Setting */
/** @typedef {import("./record.js").Values} Values */

/**
 * @param {string} text
 * @param {string} name of the file, for messages
 * @param {Setting[]} settings
 * @returns {Values}
 */
export function readPreset(text, name, settings) {
    let preset;
    try {
        preset = JSON.parse(text);
    } catch (error) {
        throw new Refusal(`${name}: not valid JSON: ${/** @type {Error} */ (error).message}`);
    }
    if (typeof preset !== "object" || preset === null || Array.isArray(preset)) {
        throw new Refusal(`${name}: a preset is one JSON object, such as {"exposure": 20}`);
    }
    for (const [key, value] of Object.entries(preset)) checkEntry(settings, key, value, name);
    return preset;
}

/** @param {Values} values */
export function writePreset(values) {
    return `${JSON.stringify(values, null, 4)}\n`;
}
