// What a value is called in messages.

export function kindOf(value) {
    if (value === null) return "null";
    if (Array.isArray(value)) return "array";
    return typeof value;
}

export function checkObject(value, name) {
    if (typeof value !== "object" || value === null || Array.isArray(value)) {
        throw new TypeError(`${name} must be an object, not ${kindOf(value)}`);
    }
}

export function checkFunction(value, name) {
    if (value !== undefined && typeof value !== "function") {
        throw new TypeError(`${name} must be a function, not ${kindOf(value)}`);
    }
}

export function checkSignal(value, name) {
    if (value === undefined) return;
    if (typeof value !== "object" || value === null || typeof value.throwIfAborted !== "function") {
        throw new TypeError(`${name} must be an AbortSignal, not ${kindOf(value)}`);
    }
}

export function checkChoice(value, choices, name) {
    if (choices.includes(value)) return;
    const given = typeof value === "string" ? JSON.stringify(value) : kindOf(value);
    const listed = choices.map((choice) => JSON.stringify(choice)).join(", ");
    throw new TypeError(`${name} must be one of ${listed}, not ${given}`);
}

export function checkWhole(value, lowest, highest, name) {
    if (typeof value !== "number") {
        throw new TypeError(`${name} must be a number, not ${kindOf(value)}`);
    }
    if (!Number.isInteger(value) || value < lowest || value > highest) {
        throw new RangeError(`${name} must be a whole number from ${lowest} to ${highest}, not ${value}`);
    }
}
