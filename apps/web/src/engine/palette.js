// A picture as its colours and, for each pixel, which of them it has. A photograph at the size of a
// screen has several pixels of every colour, up to thirty; settings that look at colours alone then
// need to be applied to each colour once.

/**
 * @typedef {object} Palette
 * @property {Uint32Array} colours each once, as words
 * @property {Uint32Array} places  of each pixel's colour among them
 * @property {Uint32Array} weights how many pixels have each
 */

/**
 * @param {Uint32Array} words a pixel each
 * @returns {Palette}
 */
export function paletteOf(words) {
    // Open addressing in a table that is at most half full; a slot holds a place plus 1.
    const bits = Math.ceil(Math.log2(2 * words.length + 2));
    const slots = new Uint32Array(2 ** bits);
    const colours = new Uint32Array(words.length);
    const weights = new Uint32Array(words.length);
    const places = new Uint32Array(words.length);
    let count = 0;
    for (let i = 0; i < words.length; ++i) {
        const word = words[i];
        // Neighbouring colours differ in their low bits, which this spreads over all of the hash.
        let slot = Math.imul(word, 0x9e3779b1) >>> (32 - bits);
        while (slots[slot] !== 0 && colours[slots[slot] - 1] !== word) {
            slot = (slot + 1) & (slots.length - 1);
        }
        if (slots[slot] === 0) {
            colours[count] = word;
            slots[slot] = ++count;
        }
        places[i] = slots[slot] - 1;
        ++weights[places[i]];
    }
    return { colours: colours.slice(0, count), places, weights: weights.slice(0, count) };
}

/**
 * The picture whose colours have become these.
 * @param {Palette} palette
 * @param {Uint32Array} colours
 * @param {Uint32Array} target
 */
export function spread({ places }, colours, target) {
    // Four at a time, which takes two thirds of the time that one at a time does.
    const whole = places.length & ~3;
    for (let i = 0; i < whole; i += 4) {
        const a = colours[places[i]];
        const b = colours[places[i + 1]];
        const c = colours[places[i + 2]];
        const d = colours[places[i + 3]];
        target[i] = a;
        target[i + 1] = b;
        target[i + 2] = c;
        target[i + 3] = d;
    }
    for (let i = whole; i < places.length; ++i) target[i] = colours[places[i]];
}
