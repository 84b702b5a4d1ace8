// Presets as thumbnails of the photograph that is open: the built-in ones, and those that were loaded.

import { find, make } from "./element.js";
import { tell, tellError } from "./messages.js";
import { save, stemOf } from "./saving.js";

/** @typedef {import("../session.js").Session} Session */
/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */
/** @typedef {import("../model/record.js").Values} Values */

/**
 * @typedef {object} Preset
 * @property {string} label
 * @property {Values} values
 * @property {HTMLButtonElement} button
 * @property {HTMLCanvasElement} canvas
 */

/** Of a thumbnail, in device pixels. */
const side = 200;

/** @param {string} name of a file */
function labelOf(name) {
    const words = stemOf(name).replace(/[-_]+/g, " ");
    return words.charAt(0).toUpperCase() + words.slice(1);
}

/** @param {Values} values */
function keyOf(values) {
    return JSON.stringify(Object.entries(values).sort());
}

/**
 * @param {Session} session
 * @param {EditedRecord} record
 * @param {import("../engine/library.js").Library} k
 */
export function startPresets(session, record, k) {
    const strip = find("preset-strip", HTMLElement);
    /** @type {Preset[]} */
    const presets = [];
    let drawing = 0;

    /**
     * @param {string} label
     * @param {Values} values
     */
    const add = (label, values) => {
        const canvas = make("canvas", { width: 120, height: 80, "aria-hidden": "true" });
        const button = make("button", { type: "button", class: "preset" }, canvas, label);
        const preset = { label, values, button, canvas };
        button.addEventListener("click", () => record.replace(values, `preset ${label}`));
        strip.append(make("li", {}, button));
        presets.push(preset);
        return preset;
    };

    const showChosen = () => {
        const key = keyOf(record.changed);
        for (const { values, button } of presets) {
            button.setAttribute("aria-pressed", String(keyOf(values) === key));
        }
        find("save-preset", HTMLButtonElement).disabled = key === "[]";
    };

    /** @param {Preset} preset */
    const draw = async ({ values, canvas }) => {
        const { darkroom, photograph } = session;
        if (!darkroom || !photograph) return;
        const share = Math.min(1, side / Math.max(photograph.width, photograph.height));
        const { rgba, width, height } = await darkroom.thumbnail(
            values,
            Math.max(1, Math.round(photograph.width * share)),
            Math.max(1, Math.round(photograph.height * share)),
        );
        canvas.width = width;
        canvas.height = height;
        const { canvas: colorSpace } = photograph.space;
        const context = canvas.getContext("2d", { colorSpace });
        context?.putImageData(new ImageData(rgba, width, height, { colorSpace }), 0, 0);
    };

    const drawAll = async () => {
        const turn = ++drawing;
        for (const preset of presets) {
            if (turn !== drawing) return;
            await draw(preset);
        }
    };

    add("Original", {});
    session.addEventListener("open", () => {
        // A photograph that is replaced takes its unfinished thumbnails with it.
        drawAll().catch((error) => session.darkroom && tellUnlessClosed(error));
    });
    record.addEventListener("change", showChosen);
    showChosen();

    find("save-preset", HTMLButtonElement).addEventListener("click", () => {
        const name = `${stemOf(session.photograph?.name ?? "settings")}.json`;
        save(new Blob([k.writePreset(record.changed)], { type: "application/json" }), name);
        tell(`Saved ${name}`);
    });

    return {
        /** The presets that lie beside the page. */
        async addBuiltIn() {
            const index = new URL("../../presets/index.json", import.meta.url);
            for (const name of await (await fetch(index)).json()) {
                const text = await (await fetch(new URL(name, index))).text();
                add(labelOf(name), record.fromPreset(k, text, name));
            }
            showChosen();
        },
        /** @param {File} file */
        async open(file) {
            if (file.size > 1 << 20) throw new Error(`${file.name} is too large for a preset`);
            const values = record.fromPreset(k, await file.text(), file.name);
            const preset = add(labelOf(file.name), values);
            record.replace(values, `preset ${file.name}`);
            preset.button.scrollIntoView({ inline: "nearest", block: "nearest" });
            await draw(preset);
        },
    };
}

/** @param {unknown} error */
function tellUnlessClosed(error) {
    if (error instanceof Error && error.message !== "cancelled") tellError(error);
}
