// The record that is being edited: a value for every setting, and who wants to know of changes.

/** @typedef {import("./description.js").Setting} Setting */
/** @typedef {Readonly<Record<string, number>>} Values */

export class EditedRecord extends EventTarget {
    /** @type {Map<string, Setting>} */
    #settings;
    /** @type {Map<string, number>} */
    #values = new Map();

    /** @param {readonly Setting[]} settings */
    constructor(settings) {
        super();
        this.#settings = new Map(settings.map((setting) => [setting.name, setting]));
        this.#begin();
    }

    #begin() {
        for (const { name, usual } of this.#settings.values()) this.#values.set(name, usual);
    }

    get settings() {
        return [...this.#settings.values()];
    }

    /** @param {string} name */
    get(name) {
        return this.#values.get(name) ?? NaN;
    }

    /**
     * A value on its way, while a slider is held: "change" is told, but it is no step to undo until
     * settle().
     * @param {string} name
     * @param {number} value
     */
    move(name, value) {
        if (this.get(name) === value) return;
        this.#values.set(name, value);
        this.dispatchEvent(new Event("change"));
    }

    /**
     * What was moved shall count as one step.
     * @param {string} what the setting, or another name for what was done
     */
    settle(what) {
        this.dispatchEvent(new CustomEvent("settle", { detail: what }));
    }

    /**
     * @param {string} name
     * @param {number} value
     */
    set(name, value) {
        this.move(name, value);
        this.settle(name);
    }

    /** @param {string[]} names */
    reset(...names) {
        for (const name of names) {
            const setting = this.#settings.get(name);
            if (setting) this.move(name, setting.usual);
        }
        this.settle(names.join(" "));
    }

    /**
     * Everything as it is usually, but for these.
     * @param {Values} values
     * @param {string} what see settle()
     */
    replace(values, what) {
        this.restore(values);
        this.settle(what);
    }

    /**
     * As replace(), and no step to undo.
     * @param {Values} values
     */
    restore(values) {
        this.#begin();
        for (const [name, value] of Object.entries(values)) {
            if (this.#settings.has(name)) this.#values.set(name, value);
        }
        this.dispatchEvent(new Event("change"));
    }

    /**
     * What a preset changes, checked by the library.
     * @param {import("../engine/library.js").Library} k
     * @param {string} text
     * @param {string} name for messages
     * @returns {Values}
     */
    fromPreset(k, text, name) {
        const preset = /** @type {Record<string, number>} */ (k.readPreset(text, name));
        /** @type {Record<string, number>} */
        const values = {};
        for (const { name: setting, key, usual } of this.#settings.values()) {
            if (key in preset && preset[key] !== usual) values[setting] = preset[key];
        }
        return values;
    }

    /**
     * What is not as usual, in the record's order: what a preset holds.
     * @returns {Values}
     */
    get changed() {
        /** @type {Record<string, number>} */
        const changed = {};
        for (const { name, usual } of this.#settings.values()) {
            if (this.get(name) !== usual) changed[name] = this.get(name);
        }
        return changed;
    }
}
