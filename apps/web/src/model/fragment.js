// A record as a link's fragment, "exposure=20&red-hue=5": people can read it, and no server sees it.
// It becomes a preset's text, since presets are what the library checks.

/** @typedef {import("./record.js").Values} Values */

/** @param {Values} values */
export function writeFragment(values) {
    return Object.entries(values)
        .map(([name, value]) => `${name}=${value}`)
        .join("&");
}

/**
 * @param {string} fragment without or with the leading "#"
 * @returns {string} the preset
 */
export function presetOfFragment(fragment) {
    const entries = fragment.replace(/^#/, "").split("&").filter((entry) => entry !== "");
    return JSON.stringify(
        Object.fromEntries(
            entries.map((entry) => {
                const [name, text = ""] = entry.split("=");
                // What is no number goes on as it is, for the message.
                return [name, text.trim() === "" || Number.isNaN(Number(text)) ? text : Number(text)];
            }),
        ),
    );
}
