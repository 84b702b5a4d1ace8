// Presets as the command line has them: one JSON object, names of settings as keys, numbers as
// values.

import { checkObject, kindOf } from "./checks.js";

const largestFloat = 3.4028234663852886e38;
const largestInteger = 0x7fffffff;

function rangeText({ lowest, highest, identity }) {
    return `; useful values are ${lowest}..${highest}, identity ${identity}`;
}

function checkValue(setting, value, what) {
    if (!Number.isFinite(value)) {
        throw new RangeError(`${what} needs a finite number${rangeText(setting)}`);
    }
    if (setting.isInteger && !Number.isInteger(value)) {
        throw new RangeError(`${what} needs a whole number${rangeText(setting)}`);
    }
    if (Math.abs(value) > (setting.isInteger ? largestInteger : largestFloat)) {
        throw new RangeError(`${what} is out of all bounds${rangeText(setting)}`);
    }
}

/** The settings in a preset's text. */
export function readPreset(settings, text, name) {
    if (typeof text !== "string") throw new TypeError(`text must be a string, not ${kindOf(text)}`);
    let preset;
    try {
        preset = JSON.parse(text);
    } catch (error) {
        throw new SyntaxError(`${name}: not valid JSON: ${error.message}`);
    }
    if (typeof preset !== "object" || preset === null || Array.isArray(preset)) {
        throw new TypeError(`${name}: a preset is one JSON object, such as {"exposure": 20}, not ${kindOf(preset)}`);
    }
    const read = {};
    for (const [key, value] of Object.entries(preset)) {
        const setting = settings.find(key, `${name}: `, true);
        const what = `${name}: "${key}"`;
        if (typeof value !== "number") throw new TypeError(`${what} must be a number, not ${kindOf(value)}`);
        checkValue(setting, value, what);
        read[setting.key] = value;
    }
    return read;
}

/** As the command line writes it: with an exponent, of two digits or more, below 0.0001 and from 2^53 on. */
function numberText(value) {
    const magnitude = Math.abs(value);
    if (magnitude === 0) return "0";
    if (magnitude >= 1e-4 && magnitude < 2 ** 53) return String(value);
    return value.toExponential().replace(/([+-])(\d)$/, (_, sign, digit) => `${sign}0${digit}`);
}

/** The text of a preset that holds exactly the values that are given, in the record's order. */
export function writePreset(settings, given) {
    checkObject(given, "settings");
    const values = new Map();
    for (const [name, value] of Object.entries(given)) {
        if (value === undefined) continue;
        const setting = settings.find(name, "");
        if (typeof value !== "number") {
            throw new TypeError(`settings.${name} must be a number, not ${kindOf(value)}`);
        }
        checkValue(setting, value, `settings.${name}`);
        values.set(setting, value);
    }
    const entries = settings.all
        .filter((setting) => values.has(setting))
        .map((setting) => `\n    "${setting.name}": ${numberText(values.get(setting))}`);
    return entries.length === 0 ? "{}\n" : `{${entries.join(",")}\n}\n`;
}
