// The record's settings by name. All that is known of them comes from the library's description.

import { checkObject, kindOf } from "./checks.js";

const camelCase = (name) => name.replace(/-(.)/g, (_, letter) => letter.toUpperCase());

export class Settings {
    /** The description, in the record's order, frozen. */
    all;
    #byName = new Map();
    #nearest;

    /** @param nearest gives the setting's name that a wrong one is nearest to, or null */
    constructor(described, nearest) {
        this.all = Object.freeze(described.map((setting) =>
            Object.freeze({ ...setting, key: camelCase(setting.name) })));
        for (const setting of this.all) {
            this.#byName.set(setting.key, setting);
            this.#byName.set(setting.name, setting);
        }
        this.#nearest = nearest;
    }

    /** The setting of the name; only in the command line's spelling, if that is asked for. */
    find(name, where, commandLineSpelling = false) {
        const setting = this.#byName.get(name);
        if (setting !== undefined && (!commandLineSpelling || name === setting.name)) return setting;
        throw new TypeError(`${where}unknown setting "${name}"` +
            this.#suggestion(name, commandLineSpelling));
    }

    #suggestion(wrong, commandLineSpelling) {
        const kebab = commandLineSpelling ? wrong : wrong.replace(/[A-Z]/g, (letter) => `-${letter.toLowerCase()}`);
        const nearest = this.#nearest(kebab);
        if (nearest === null) return "";
        const inCamelCase = !commandLineSpelling && !wrong.includes("-");
        return `; did you mean ${inCamelCase ? camelCase(nearest) : nearest}?`;
    }

    /** The record's bytes: what is not given has its usual value. */
    record(given) {
        checkObject(given, "settings");
        const record = new DataView(new ArrayBuffer(4 * this.all.length));
        for (const setting of this.all) store(record, setting, setting.usual);
        const seen = new Set();
        for (const [name, value] of Object.entries(given)) {
            const setting = this.find(name, "");
            if (seen.has(setting)) throw new TypeError(`settings names ${setting.name} twice`);
            seen.add(setting);
            if (value === undefined) continue;
            if (typeof value !== "number") {
                throw new TypeError(`settings.${name} must be a number, not ${kindOf(value)}`);
            }
            if (setting.isInteger && value !== (value | 0)) {
                throw new RangeError(`settings.${name} must be a whole number of 32 bits, not ${value}`);
            }
            store(record, setting, value);
        }
        return record.buffer;
    }
}

function store(record, { slot, isInteger }, value) {
    if (isInteger) {
        record.setInt32(4 * slot, value, true);
    } else {
        record.setFloat32(4 * slot, value, true);
    }
}
