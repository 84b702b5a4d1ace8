// Undo and redo: the records that were, one for each thing that was done.

/** @typedef {import("./record.js").EditedRecord} EditedRecord */
/** @typedef {import("./record.js").Values} Values */

// Key presses on one slider are one step as long as they follow one another this closely.
const oneStep = 800;

const mostSteps = 500;

export class History extends EventTarget {
    #record;
    /** @type {Values[]} */
    #past = [];
    /** @type {Values[]} */
    #future = [];
    /** @type {Values} */
    #present;
    #lastWhat = "";
    #lastTime = -Infinity;

    /**
     * @param {EditedRecord} record
     * @param {() => number} now
     */
    constructor(record, now = () => performance.now()) {
        super();
        this.#record = record;
        this.#present = record.changed;
        record.addEventListener("settle", (event) => {
            this.#step(/** @type {CustomEvent<string>} */ (event).detail, now());
        });
    }

    /**
     * @param {string} what
     * @param {number} time
     */
    #step(what, time) {
        const values = this.#record.changed;
        if (JSON.stringify(values) === JSON.stringify(this.#present)) return;
        const goesOn =
            what === this.#lastWhat && time - this.#lastTime < oneStep && this.#past.length > 0;
        if (!goesOn) this.#past = [...this.#past, this.#present].slice(-mostSteps);
        this.#present = values;
        this.#future = [];
        this.#lastWhat = what;
        this.#lastTime = time;
        this.dispatchEvent(new Event("change"));
    }

    get canUndo() {
        return this.#past.length > 0;
    }

    get canRedo() {
        return this.#future.length > 0;
    }

    undo() {
        const values = this.#past.pop();
        if (!values) return;
        this.#future.push(this.#present);
        this.#show(values);
    }

    redo() {
        const values = this.#future.pop();
        if (!values) return;
        this.#past.push(this.#present);
        this.#show(values);
    }

    /** @param {Values} values */
    #show(values) {
        this.#present = values;
        this.#lastWhat = "";
        this.#record.restore(values);
        this.dispatchEvent(new Event("change"));
    }
}
