// The settings in the record's groups, and what each is for.

import { textOf, unitOf } from "../model/description.js";
import { find, make } from "./element.js";
import { makeSlider } from "./slider.js";
import { makeWheel } from "./wheel.js";

/** @typedef {import("../model/description.js").Group} Group */
/** @typedef {import("../model/description.js").Setting} Setting */
/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */

/**
 * @param {EditedRecord} record
 * @param {Group[]} groups
 * @param {import("./wheel.js").ColourSource} colours
 */
export function fillPanel(record, groups, colours) {
    const help = find("help", HTMLElement);
    /** @type {Map<string, Setting>} */
    const settings = new Map(record.settings.map((setting) => [setting.name, setting]));

    groups.forEach((group, index) => {
        const rows = make("div", { class: "rows" });
        if (group.bands.length > 0) rows.append(makeWheel(record, group.bands, colours));
        for (const setting of group.singles) {
            rows.append(makeSlider(record, setting, headingOf(group, setting)));
        }
        const reset = make("button", { type: "button", class: "quiet" }, `Reset ${group.label}`);
        reset.addEventListener("click", () => record.reset(...group.settings.map(({ name }) => name)));
        rows.append(make("div", { class: "group-tools" }, reset));

        const details = make(
            "details",
            { class: "group", open: index === 0 },
            make("summary", {}, group.label),
            rows,
        );
        const show = () => {
            const changed = group.settings.some(({ name, usual }) => record.get(name) !== usual);
            details.classList.toggle("changed", changed);
            reset.disabled = !changed;
        };
        record.addEventListener("change", show);
        show();
        find("groups", HTMLElement).append(details);
    });

    /** @param {Event} event */
    const explain = ({ target }) => {
        const row = target instanceof Element ? target.closest("[data-name]") : null;
        const setting = settings.get(row?.getAttribute("data-name") ?? "");
        if (!setting) return;
        const { sign } = unitOf(setting);
        const range = `${textOf(setting.lowest)} to ${textOf(setting.highest)}${sign && ` ${sign}`}`;
        help.replaceChildren(make("b", {}, setting.label), ` · ${range}`, make("br"), ` ${setting.help}`);
    };
    for (const event of ["pointerover", "focusin"]) {
        find("groups", HTMLElement).addEventListener(event, explain);
    }
}

/**
 * What a setting's label repeats of its group's: "Vignette" of "Vignette Amount".
 * @param {Group} group
 * @param {Setting} setting
 */
function headingOf(group, setting) {
    return setting.label.startsWith(`${group.label} `) ? group.label : "";
}
