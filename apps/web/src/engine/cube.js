// A colour table as the text of a cube file, in the form that most programs read, byte for byte what
// the command line writes with red varying fastest.

// The package's own cube() gives one string, and the largest tables are longer than strings may be.
/** Lines in one part of the text. */
const linesInPart = 65536;

/**
 * The exact decimal value rounded to eight places, halves to the even digit.
 * @param {number} value
 */
export function levelText(value) {
    if (Number.isNaN(value)) return "nan";
    if (!Number.isFinite(value)) return value < 0 ? "-inf" : "inf";
    if (Math.abs(value) >= 1e21) return `${BigInt(value)}.00000000`;
    const sign = value < 0 || Object.is(value, -0) ? "-" : "";
    const size = Math.abs(value);
    // Halves of the ninth place are odd multiples of 1/512, which toFixed() rounds up.
    const units = size * 1e8;
    const isHalf = Number.isInteger(size * 512) && units - Math.floor(units) === 0.5;
    if (isHalf && Math.floor(units) % 2 === 0) return sign + (size - 2 ** -30).toFixed(8);
    return sign + size.toFixed(8);
}

/**
 * @param {Float32Array} levels red, green, blue of size^3 colours
 * @param {number} size
 */
export function cubeFile(levels, size) {
    const parts = [`LUT_3D_SIZE ${size}\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n`];
    let lines = [];
    for (let i = 0; i < levels.length; i += 3) {
        lines.push(`${levelText(levels[i])} ${levelText(levels[i + 1])} ${levelText(levels[i + 2])}\n`);
        if (lines.length === linesInPart) {
            parts.push(lines.join(""));
            lines = [];
        }
    }
    return new Blob([...parts, ...lines], { type: "text/plain" });
}
