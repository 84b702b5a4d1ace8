// Values that come from outside, from presets and links, are held against the description before
// anything of them is taken over. What is refused here the command line refuses, too.

/** @typedef {import("./description.js").Setting} Setting */

/** Something that is told to the person as it stands. */
export class Refusal extends Error {}

/**
 * @param {Setting[]} settings
 * @param {string} name
 * @param {unknown} value
 * @param {string} source what is being read, for the message
 */
export function checkEntry(settings, name, value, source) {
    const setting = settings.find((known) => known.name === name);
    if (!setting) {
        const nearest = nearestName(name, settings.map((known) => known.name));
        const hint = nearest ? `; did you mean ${nearest}?` : "";
        throw new Refusal(`${source}: unknown setting "${name}"${hint}`);
    }
    if (typeof value !== "number" || !Number.isFinite(value)) {
        throw new Refusal(`${source}: "${name}" must be a number`);
    }
    if (setting.isInteger ? value !== (value | 0) : !Number.isFinite(Math.fround(value))) {
        throw new Refusal(`${source}: "${name}" cannot be ${value}`);
    }
}

/**
 * The known name that takes the fewest changes of a letter, if that is not many.
 * @param {string} wrong
 * @param {string[]} names
 */
export function nearestName(wrong, names) {
    let nearest = "";
    let fewest = Math.max(2, Math.floor(wrong.length / 3)) + 1;
    for (const name of names) {
        const changes = editDistance(wrong, name);
        if (changes < fewest) [fewest, nearest] = [changes, name];
    }
    return nearest;
}

/**
 * Wagner and Fischer's table, one row at a time.
 * @param {string} from
 * @param {string} to
 */
function editDistance(from, to) {
    const row = Array.from({ length: to.length + 1 }, (_, i) => i);
    for (let i = 1; i <= from.length; ++i) {
        let diagonal = row[0];
        row[0] = i;
        for (let j = 1; j <= to.length; ++j) {
            const replaced = diagonal + (from[i - 1] === to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = Math.min(row[j] + 1, row[j - 1] + 1, replaced);
        }
    }
    return row[to.length];
}
