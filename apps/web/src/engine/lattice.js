// What settings that look at colours alone make of many colours, told from what they make of fewer:
// the corners, in the cube of all colours, of the cells that the many lie in. A cell is cut into six
// tetrahedra along the line from dark to bright, so that greys come from greys.

// A colour is less than four levels away from its corners, and a photograph has six to twelve colours
// for each of them.
const bits = 2;
const step = 1 << bits;
const half = step >> 1;
const along = 256 / step + 1;
const [blueStride, greenStride, redStride] = [1, along, along * along];

/** @param {number} node */
const levelOf = (node) => Math.min(node * step, 255);

/** Of each level: how many of the steps from its cell's lower node to the upper one. */
const fractions = Uint8Array.from({ length: 256 }, (_, level) => {
    const node = level >> bits;
    return Math.round((step * (level - levelOf(node))) / (levelOf(node + 1) - levelOf(node)));
});

/**
 * @typedef {object} Lattice
 * @property {Uint32Array} nodes   the colours to be adjusted, as opaque words
 * @property {Uint32Array} corners of each colour: four places among them
 * @property {Uint8Array} shares   of each colour: how many steps each of the four counts
 */

/**
 * @param {Uint32Array} colours as words
 * @returns {Lattice}
 */
export function latticeOf(colours) {
    const corners = new Uint32Array(4 * colours.length);
    const shares = new Uint8Array(4 * colours.length);
    // Of each node of the cube: its place among those in use, plus 1.
    const places = new Uint32Array(along ** 3);
    /** @type {number[]} */
    const nodes = [];
    for (let i = 0; i < colours.length; ++i) {
        const blue = colours[i] & 255;
        const green = (colours[i] >>> 8) & 255;
        const red = (colours[i] >>> 16) & 255;
        // From the cell's darkest corner to its brightest, along the axis first on which the colour is
        // farthest from the first.
        let [first, second, third] = [fractions[blue], fractions[green], fractions[red]];
        let [one, two, three] = [blueStride, greenStride, redStride];
        if (first < second) [first, second, one, two] = [second, first, two, one];
        if (second < third) [second, third, two, three] = [third, second, three, two];
        if (first < second) [first, second, one, two] = [second, first, two, one];
        const darkest = (blue >> bits) * blueStride + (green >> bits) * greenStride + (red >> bits) * redStride;
        const at = 4 * i;
        shares[at] = step - first;
        shares[at + 1] = first - second;
        shares[at + 2] = second - third;
        shares[at + 3] = third;
        corners[at] = darkest;
        corners[at + 1] = darkest + one;
        corners[at + 2] = darkest + one + two;
        corners[at + 3] = darkest + one + two + three;
    }
    for (let i = 0; i < corners.length; ++i) {
        const node = corners[i];
        // What does not count may lie outside the cube, and need not be adjusted.
        if (shares[i] === 0) corners[i] = 0;
        else {
            if (places[node] === 0) places[node] = nodes.push(wordOf(node));
            corners[i] = places[node] - 1;
        }
    }
    return { nodes: Uint32Array.from(nodes), corners, shares };
}

/**
 * The colour of a node, as an opaque word.
 * @param {number} node
 */
function wordOf(node) {
    const blue = levelOf(node % along);
    const green = levelOf(Math.floor(node / greenStride) % along);
    const red = levelOf(Math.floor(node / redStride));
    return (0xff000000 | (red << 16) | (green << 8) | blue) >>> 0;
}

/**
 * What the colours become, where the nodes become these. Alpha stays.
 * @param {Lattice} lattice
 * @param {Uint32Array} nodes
 * @param {Uint32Array} colours which are changed
 */
export function interpolate({ corners, shares }, nodes, colours) {
    // Signed words, which engines compute with faster. Red and blue at once, each in sixteen bits,
    // which four shares of a byte never leave.
    const from = new Int32Array(nodes.buffer, nodes.byteOffset, nodes.length);
    const to = new Int32Array(colours.buffer, colours.byteOffset, colours.length);
    for (let i = 0, at = 0; i < to.length; ++i, at += 4) {
        const a = from[corners[at]];
        const b = from[corners[at + 1]];
        const c = from[corners[at + 2]];
        const d = from[corners[at + 3]];
        const outer =
            Math.imul(shares[at], a & 0xff00ff) +
            Math.imul(shares[at + 1], b & 0xff00ff) +
            Math.imul(shares[at + 2], c & 0xff00ff) +
            Math.imul(shares[at + 3], d & 0xff00ff) +
            half * 0x10001;
        const green =
            Math.imul(shares[at], a & 0xff00) +
            Math.imul(shares[at + 1], b & 0xff00) +
            Math.imul(shares[at + 2], c & 0xff00) +
            Math.imul(shares[at + 3], d & 0xff00) +
            half * 0x100;
        to[i] = (to[i] & 0xff000000) | ((outer >>> bits) & 0xff00ff) | ((green >>> bits) & 0xff00);
    }
}
