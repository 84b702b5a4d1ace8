/** Memory is short. What was to be changed is as it was. */
export class OutOfMemoryError extends RangeError {
    constructor(bytes) {
        super(typeof bytes === "number"
            ? `out of memory: there is none for ${bytes} bytes`
            : (bytes ?? "out of memory"));
        this.name = "OutOfMemoryError";
    }
}

/** A later request of the same slot has taken the place of this one, which was not begun. */
export class SupersededError extends Error {
    constructor() {
        super("superseded by a later request of the same slot");
        this.name = "SupersededError";
    }
}

export const abortError = (message) => new DOMException(message, "AbortError");
