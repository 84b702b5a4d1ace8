// One setting: its name, its value to type in, its slider.

import { stepOf, textOf, unitOf } from "../model/description.js";
import { make } from "./element.js";

/** @typedef {import("../model/description.js").Setting} Setting */
/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */

/**
 * What is said of a value, with its unit.
 * @param {Setting} setting
 * @param {number} value
 */
export function spoken(setting, value) {
    return `${textOf(value)} ${unitOf(setting).word}`;
}

/**
 * @param {EditedRecord} record
 * @param {Setting} setting
 * @param {string} heading what the label need not say again, such as the name of its band
 */
export function makeSlider(record, setting, heading) {
    const { name, label, lowest, highest, usual, isInteger } = setting;
    const id = `setting-${name}`;
    const step = stepOf(setting);
    const unit = unitOf(setting);

    const slider = make("input", { type: "range", id, min: lowest, max: highest, step: "any" });
    const value = make("input", {
        type: "number",
        class: "value",
        step: "any",
        tabindex: "-1",
        "aria-label": `${label}, as a number`,
        inputmode: "decimal",
    });
    const repeats = heading !== "" && label.startsWith(`${heading} `);
    const shortLabel = repeats ? label.slice(heading.length + 1) : label;
    const element = make(
        "div",
        { class: "row", "data-name": name },
        make(
            "label",
            { for: id },
            ...(repeats ? [make("span", { class: "unseen" }, `${heading} `)] : []),
            shortLabel,
        ),
        value,
        make("span", { class: "unit", "aria-hidden": "true" }, unit.sign),
        slider,
    );

    /** @param {number} wanted */
    const onStep = (wanted) => Math.round(wanted / step) * step;

    slider.addEventListener("input", () => record.move(name, onStep(slider.valueAsNumber)));
    slider.addEventListener("change", () => record.settle(name));
    slider.addEventListener("dblclick", () => record.reset(name));
    slider.addEventListener("keydown", (event) => {
        const direction = directionOf(event.key);
        const current = record.get(name);
        if (event.key === "Delete" || event.key === "Backspace") record.reset(name);
        else if (event.key === "Home") record.set(name, lowest);
        else if (event.key === "End") record.set(name, highest);
        else if (direction !== 0 && !event.ctrlKey && !event.metaKey && !event.altKey) {
            const steps = event.shiftKey || event.key.startsWith("Page") ? 10 : 1;
            // A value beyond the useful range stays where it is until it is moved back.
            const limits = [Math.min(lowest, current), Math.max(highest, current)];
            const wanted = current + direction * steps * step;
            record.set(name, Math.min(Math.max(wanted, limits[0]), limits[1]));
        } else return;
        event.preventDefault();
    });
    value.addEventListener("change", () => {
        const typed = value.valueAsNumber;
        if (Number.isFinite(Math.fround(typed))) record.set(name, isInteger ? Math.round(typed) : typed);
        show();
    });
    value.addEventListener("keydown", (event) => {
        if (event.key === "Enter") slider.focus();
    });

    let shown = NaN;
    const show = () => {
        const current = record.get(name);
        shown = current;
        slider.value = String(current);
        slider.setAttribute("aria-valuetext", spoken(setting, current));
        if (document.activeElement !== value) value.value = String(Math.round(current * 100) / 100);
        const [from, to] = [usual, current].map(shareOf).sort((a, b) => a - b);
        slider.style.setProperty("--from", `${from}%`);
        slider.style.setProperty("--to", `${to}%`);
        element.classList.toggle("changed", current !== usual);
    };
    /** @param {number} at */
    const shareOf = (at) =>
        Math.min(Math.max((100 * (at - lowest)) / (highest - lowest), 0), 100);

    value.addEventListener("blur", show);
    // Most changes are another slider's, and there are many.
    record.addEventListener("change", () => {
        if (record.get(name) !== shown) show();
    });
    show();
    return element;
}

/**
 * @param {string} key
 * @returns {-1 | 0 | 1}
 */
export function directionOf(key) {
    if (["ArrowRight", "ArrowUp", "PageUp"].includes(key)) return 1;
    return ["ArrowLeft", "ArrowDown", "PageDown"].includes(key) ? -1 : 0;
}
