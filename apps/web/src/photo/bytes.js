// Reading and joining bytes.

/**
 * @param {...(Uint8Array | number[] | string)} parts strings stand for their Latin-1 letters
 * @returns {Uint8Array<ArrayBuffer>}
 */
export function join(...parts) {
    const arrays = parts.map((part) =>
        typeof part === "string" ? Uint8Array.from(part, (c) => c.charCodeAt(0)) : part,
    );
    const whole = new Uint8Array(arrays.reduce((sum, array) => sum + array.length, 0));
    let at = 0;
    for (const array of arrays) {
        whole.set(array, at);
        at += array.length;
    }
    return whole;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} at
 * @param {string} text Latin-1
 */
export function hasText(bytes, at, text) {
    if (at + text.length > bytes.length) return false;
    for (let i = 0; i < text.length; ++i) {
        if (bytes[at + i] !== text.charCodeAt(i)) return false;
    }
    return true;
}

/** @param {Uint8Array} bytes */
export function viewOf(bytes) {
    return new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
}

/** @param {number} value */
export function bigEndian16(value) {
    return [value >> 8, value & 255];
}

/** @param {number} value */
export function bigEndian32(value) {
    return [value >>> 24, (value >> 16) & 255, (value >> 8) & 255, value & 255];
}

/** @param {number} value */
export function littleEndian32(value) {
    return bigEndian32(value).reverse();
}

/**
 * As PNG has it.
 * @param {Uint8Array[]} parts
 */
export function compress(parts) {
    return collect(new Blob(/** @type {BlobPart[]} */ (parts)).stream()
        .pipeThrough(new CompressionStream("deflate")));
}

/**
 * @param {Uint8Array[]} parts
 * @param {number} most bytes that are taken; what is longer is an error
 */
export async function decompress(parts, most) {
    return collect(new Blob(/** @type {BlobPart[]} */ (parts)).stream()
        .pipeThrough(new DecompressionStream("deflate")), most);
}

/**
 * @param {ReadableStream<Uint8Array>} stream
 * @param {number} most
 */
async function collect(stream, most = Infinity) {
    const reader = stream.getReader();
    /** @type {Uint8Array[]} */
    const parts = [];
    let length = 0;
    for (;;) {
        const { done, value } = await reader.read();
        if (done) return join(...parts);
        length += value.length;
        if (length > most) {
            await reader.cancel();
            throw new RangeError("more data than the header announces");
        }
        parts.push(value);
    }
}
