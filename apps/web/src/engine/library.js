// The library, as this page and its workers use it.

import { load } from "../../keladjust/keladjust.js";

/** @typedef {import("../photo/pixels.js").Pixels} Pixels */
/** @typedef {import("../model/record.js").Values} Values */
/** @typedef {Awaited<ReturnType<typeof load>>} Library */

const loaded = load();

/** @returns {Promise<Library>} */
export function library() {
    return loaded;
}

/**
 * In place. Blue stands before red, as the command line has it.
 * @param {Library} k
 * @param {Pixels} pixels
 * @param {Values} values
 */
export function adjust(k, { data, width, height, channels }, values) {
    k.adjust({ data, width, height, order: channels === 1 ? "gray" : "bgra" }, values);
}

/**
 * The settings that look beyond a pixel, or at where it lies: those that take no part in a colour
 * table, whatever they are set to. The members of a band are left out, because what they do alone is
 * often nothing.
 * @param {Library} k
 * @param {import("../model/description.js").Group[]} groups
 * @returns {Set<string>}
 */
export function settingsOfTheWhole(k, groups) {
    const fineness = 5;
    const unchanged = k.lut({}, fineness);
    const whole = groups
        .flatMap(({ singles }) => singles)
        .filter(({ name, usual, lowest, highest }) =>
            [lowest, highest].every((value) => {
                if (value === usual) return true;
                const table = k.lut({ [name]: value }, fineness);
                return table.every((/** @type {number} */ level, /** @type {number} */ i) => level === unchanged[i]);
            }),
        );
    return new Set(whole.map(({ name }) => name));
}
