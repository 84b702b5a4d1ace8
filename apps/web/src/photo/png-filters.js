// PNG's filters: each row is stored as differences from what lies to the left of it and above.

/**
 * @param {number} left
 * @param {number} above
 * @param {number} corner
 */
function paeth(left, above, corner) {
    const toLeft = Math.abs(above - corner);
    const toAbove = Math.abs(left - corner);
    const toCorner = Math.abs(left + above - 2 * corner);
    if (toLeft <= toAbove && toLeft <= toCorner) return left;
    return toAbove <= toCorner ? above : corner;
}

/**
 * Takes the filters off, in place.
 * @param {Uint8Array} rows   each begins with the number of its filter
 * @param {number} stride     bytes of a row without that number
 * @param {number} pixel      bytes from a pixel to its neighbour, at least 1
 * @returns {Uint8Array} the same memory
 */
export function unfilter(rows, stride, pixel) {
    /** @type {Uint8Array} */
    let above = new Uint8Array(stride);
    for (let at = 0; at < rows.length; at += stride + 1) {
        const filter = rows[at];
        const row = rows.subarray(at + 1, at + 1 + stride);
        if (filter > 4) throw new Error("a row has an unknown filter");
        if (filter === 1) {
            for (let i = pixel; i < stride; ++i) row[i] += row[i - pixel];
        } else if (filter === 2) {
            for (let i = 0; i < stride; ++i) row[i] += above[i];
        } else if (filter === 3) {
            for (let i = 0; i < stride; ++i) {
                row[i] += ((i < pixel ? 0 : row[i - pixel]) + above[i]) >> 1;
            }
        } else if (filter === 4) {
            for (let i = 0; i < stride; ++i) {
                row[i] +=
                    i < pixel ? above[i] : paeth(row[i - pixel], above[i], above[i - pixel]);
            }
        }
        above = row;
    }
    return rows;
}

/**
 * Rows with the filter that suits each best: the one whose differences are smallest in all.
 * @param {Uint8Array} data
 * @param {number} width
 * @param {number} height
 * @param {number} channels of `data`
 * @param {number} written  channels that are kept of each pixel
 */
export function filterRows(data, width, height, channels, written) {
    const stride = width * written;
    const filtered = new Uint8Array(height * (stride + 1));
    /** @type {Uint8Array} */
    let above = new Uint8Array(stride);
    /** @type {Uint8Array} */
    let row = new Uint8Array(stride);
    const candidates = [0, 1, 2, 3, 4].map(() => new Uint8Array(stride));
    for (let y = 0; y < height; ++y) {
        let from = y * width * channels;
        for (let i = 0; i < stride; from += channels - written) {
            for (let channel = 0; channel < written; ++channel) row[i++] = data[from++];
        }
        let best = 0;
        let smallest = Infinity;
        candidates.forEach((candidate, filter) => {
            const sum = filterRow(filter, row, above, written, candidate);
            if (sum < smallest) [best, smallest] = [filter, sum];
        });
        filtered[y * (stride + 1)] = best;
        filtered.set(candidates[best], y * (stride + 1) + 1);
        [above, row] = [row, above];
    }
    return filtered;
}

/**
 * @param {number} filter
 * @param {Uint8Array} row
 * @param {Uint8Array} above
 * @param {number} pixel
 * @param {Uint8Array} target
 * @returns {number} the sum of the differences
 */
function filterRow(filter, row, above, pixel, target) {
    let sum = 0;
    for (let i = 0; i < row.length; ++i) {
        const left = i < pixel ? 0 : row[i - pixel];
        const corner = i < pixel ? 0 : above[i - pixel];
        let guess = 0;
        if (filter === 1) guess = left;
        else if (filter === 2) guess = above[i];
        else if (filter === 3) guess = (left + above[i]) >> 1;
        else if (filter === 4) guess = paeth(left, above[i], corner);
        const difference = (row[i] - guess) & 255;
        target[i] = difference;
        sum += difference < 128 ? difference : 256 - difference;
    }
    return sum;
}
