// What the library says about its record, arranged for a panel. Groups, bands, steps and units are
// all read off the description, so that a setting which a later library adds appears by itself.

/**
 * One setting as the library describes it.
 * @typedef {object} Setting
 * @property {string} name      in kebab-case, as presets and the command line have it
 * @property {string} key       in camelCase, as programs have it
 * @property {string} label
 * @property {string} group
 * @property {string} help
 * @property {boolean} isInteger
 * @property {number} identity
 * @property {number} lowest    of the useful range; any value works
 * @property {number} highest
 * @property {number} usual     what the panel starts from
 */

/**
 * Settings that work on one band of hues.
 * @typedef {object} Band
 * @property {string} name
 * @property {string} label
 * @property {Setting} from      first hue
 * @property {Setting} to        last hue
 * @property {Setting[]} effects what is done to the band
 */

/**
 * A heading of the panel with what stands under it.
 * @typedef {object} Group
 * @property {string} label
 * @property {Setting[]} settings all of them
 * @property {Band[]} bands
 * @property {Setting[]} singles  those that belong to no band
 */

const boundsOf = /^(.+)-min-degree$/;

/**
 * @param {readonly Setting[]} settings
 * @returns {Group[]} in the record's order
 */
export function groupsOf(settings) {
    /** @type {Map<string, Setting[]>} */
    const byLabel = new Map();
    for (const setting of settings) {
        byLabel.set(setting.group, [...(byLabel.get(setting.group) ?? []), setting]);
    }
    return [...byLabel].map(([label, members]) => {
        const bands = bandsOf(members);
        const banded = new Set(bands.flatMap((band) => [band.from, band.to, ...band.effects]));
        return { label, settings: members, bands, singles: members.filter((s) => !banded.has(s)) };
    });
}

/**
 * @param {Setting[]} settings
 * @returns {Band[]} in the order of their middles at usual bounds, as they stand round the circle
 */
function bandsOf(settings) {
    const bands = [];
    for (const from of settings) {
        const name = boundsOf.exec(from.name)?.[1];
        const to = settings.find((other) => other.name === `${name}-max-degree`);
        if (!name || !to) continue;
        const effects = settings.filter(
            (other) => other !== from && other !== to && other.name.startsWith(`${name}-`),
        );
        bands.push({ name, label: from.label.replace(/ Min Degree$/, ""), from, to, effects });
    }
    return bands.sort(
        (a, b) => middleOf(a.from.usual, a.to.usual) - middleOf(b.from.usual, b.to.usual),
    );
}

/**
 * Where a band that goes from one hue to another, perhaps through 0, works most.
 * @param {number} from
 * @param {number} to
 */
export function middleOf(from, to) {
    if (from <= to) return (from + to) / 2;
    // A band that wraps works most at 0 itself, wherever its bounds lie.
    return 0;
}

/**
 * How far an arrow key goes: one, or the round number nearest to a two-hundredth of a long range.
 * @param {Setting} setting
 */
export function stepOf(setting) {
    const wanted = (setting.highest - setting.lowest) / 200;
    const decade = 10 ** Math.floor(Math.log10(wanted));
    const round = [5, 2, 1].map((digit) => digit * decade).find((step) => step <= wanted);
    return Math.max(1, round ?? decade);
}

/**
 * What a setting is counted in, as a sign beside its value and as a word that is read out. Degrees
 * are named in the help; a range that ends at 100 is a percentage; other scales say where they end.
 * @param {Setting} setting
 * @returns {{sign: string, word: string}}
 */
export function unitOf(setting) {
    if (/\bdegrees\b/.test(setting.help)) return { sign: "°", word: "degrees" };
    if (setting.highest === 100) return { sign: "%", word: "percent" };
    return { sign: "", word: `on a scale from ${setting.lowest} to ${setting.highest}` };
}

/**
 * A value as it is shown: whole where it is whole, else with at most two decimals.
 * @param {number} value
 */
export function textOf(value) {
    const rounded = Math.round(value * 100) / 100;
    return String(Object.is(rounded, -0) ? 0 : rounded).replace("-", "−");
}
