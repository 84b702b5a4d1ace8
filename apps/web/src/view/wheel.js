// The bands of hues on a circle. Hues run clockwise from red at the top; the outer ring shows them as
// they are, the inner one what the settings make of them, which the library itself computes. The
// bounds of the band that is chosen can be dragged.

import { middleOf, textOf } from "../model/description.js";
import { make } from "./element.js";
import { directionOf, makeSlider, spoken } from "./slider.js";

/** @typedef {import("../model/description.js").Band} Band */
/** @typedef {import("../model/description.js").Setting} Setting */
/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */
/** @typedef {import("../model/record.js").Values} Values */

/**
 * What settings make of colours: red, green, blue, alpha each.
 * @typedef {(values: Values, colours: Uint8Array) => Uint8Array} ColourSource
 */

const svg = "http://www.w3.org/2000/svg";

/** Hues of the inner ring. */
const samples = 72;

// Saturated, but not so much that no setting could make it more so.
const wheelColours = { saturation: 0.72, lightness: 0.56 };

/**
 * @param {number} hue in degrees
 */
function colourOf(hue) {
    const { saturation, lightness } = wheelColours;
    const reach = saturation * Math.min(lightness, 1 - lightness);
    return [0, 8, 4].map((place) => {
        const k = (place + hue / 30) % 12;
        return Math.round(255 * (lightness - reach * Math.max(-1, Math.min(k - 3, 9 - k, 1))));
    });
}

/**
 * @param {number} hue
 * @param {number} radius of a circle in a square of 100
 */
function placeOf(hue, radius) {
    const angle = ((hue - 90) * Math.PI) / 180;
    return [50 + radius * Math.cos(angle), 50 + radius * Math.sin(angle)];
}

/**
 * @param {EditedRecord} record
 * @param {Band[]} bands
 * @param {ColourSource} colours
 */
export function makeWheel(record, bands, colours) {
    let chosen = bands[0];
    const results = make("div", { class: "results" });
    const name = make("p", { class: "name", "aria-hidden": "true" });
    const drawing = document.createElementNS(svg, "svg");
    const arc = document.createElementNS(svg, "path");
    drawing.setAttribute("viewBox", "0 0 100 100");
    drawing.setAttribute("aria-hidden", "true");
    arc.setAttribute("class", "arc");
    drawing.append(arc);
    const wheel = make("div", { class: "wheel" }, make("div", { class: "hues" }), results, drawing, name);
    const bounds = [
        makeBound(record, wheel, () => chosen.from),
        makeBound(record, wheel, () => chosen.to),
    ];
    wheel.append(...bounds.map(({ element }) => element));

    const sliders = new Map(
        bands.map((band) => [
            band,
            make(
                "div",
                {},
                ...[...band.effects, band.from, band.to].map((setting) =>
                    makeSlider(record, setting, band.label),
                ),
            ),
        ]),
    );

    const choices = bands.map((band) => {
        const input = make("input", { type: "radio", name: "band", value: band.name });
        const dot = make("span", { class: "dot" });
        dot.style.background = `rgb(${colourOf(middleOf(band.from.usual, band.to.usual)).join(" ")})`;
        input.addEventListener("change", () => {
            chosen = band;
            show();
        });
        return { band, input, label: make("label", {}, input, dot, band.label) };
    });
    choices[0].input.checked = true;

    const drawResults = () => {
        /** @type {Record<string, number>} */
        const values = {};
        for (const { name: setting } of settings) values[setting] = record.get(setting);
        const hues = Array.from({ length: samples }, (_, i) => [...colourOf((360 * i) / samples), 255]);
        const after = colours(values, Uint8Array.from(hues.flat()));
        const stops = Array.from({ length: samples + 1 }, (_, i) => {
            const at = 4 * (i % samples);
            return `rgb(${after[at]} ${after[at + 1]} ${after[at + 2]})`;
        });
        results.style.background = `conic-gradient(${stops.join(", ")})`;
    };

    const settings = bands.flatMap(({ from, to, effects }) => [from, to, ...effects]);
    const key = () => settings.map(({ name: setting }) => record.get(setting)).join();
    let shown = "";
    const show = () => {
        shown = key();
        for (const [band, element] of sliders) element.hidden = band !== chosen;
        const [from, to] = [record.get(chosen.from.name), record.get(chosen.to.name)];
        const length = from <= to ? to - from : to - from + 360;
        const [start, end] = [placeOf(from, 45.5), placeOf(to, 45.5)];
        const large = length > 180 ? 1 : 0;
        arc.setAttribute("d", `M${start.join(" ")}A45.5 45.5 0 ${large} 1 ${end.join(" ")}`);
        name.replaceChildren(
            chosen.label,
            make("small", {}, `${textOf(Math.round(from))}° – ${textOf(Math.round(to))}°`),
        );
        for (const bound of bounds) bound.show();
        for (const { band, label } of choices) {
            const all = [band.from, band.to, ...band.effects];
            const changed = all.some((setting) => record.get(setting.name) !== setting.usual);
            label.classList.toggle("changed", changed);
        }
        drawResults();
    };
    record.addEventListener("change", () => {
        if (key() !== shown) show();
    });
    show();

    const legend = make("legend", { class: "unseen" }, "Colour range");
    return make(
        "div",
        {},
        wheel,
        make("fieldset", { class: "bands" }, legend, ...choices.map(({ label }) => label)),
        ...sliders.values(),
    );
}

/**
 * A handle on the circle for the setting that `current` gives.
 * @param {EditedRecord} record
 * @param {HTMLElement} wheel
 * @param {() => Setting} current
 */
function makeBound(record, wheel, current) {
    const element = make("div", { class: "bound", role: "slider", tabindex: "0" });

    element.addEventListener("pointerdown", (event) => {
        element.setPointerCapture(event.pointerId);
        element.focus();
        event.preventDefault();
    });
    element.addEventListener("pointermove", (event) => {
        if (!element.hasPointerCapture(event.pointerId)) return;
        const { left, top, width, height } = wheel.getBoundingClientRect();
        const x = event.clientX - left - width / 2;
        const y = event.clientY - top - height / 2;
        const degrees = (Math.atan2(y, x) * 180) / Math.PI + 90;
        record.move(current().name, Math.round((degrees + 360) % 360));
    });
    element.addEventListener("lostpointercapture", () => record.settle(current().name));
    element.addEventListener("dblclick", () => record.reset(current().name));
    element.addEventListener("keydown", (event) => {
        const { name } = current();
        const direction = directionOf(event.key);
        if (event.key === "Delete" || event.key === "Backspace") record.reset(name);
        else if (direction !== 0 && !event.ctrlKey && !event.metaKey && !event.altKey) {
            const step = event.shiftKey ? 10 : 1;
            record.set(name, (record.get(name) + direction * step + 360) % 360);
        } else return;
        event.preventDefault();
    });

    const show = () => {
        const setting = current();
        const value = record.get(setting.name);
        const [x, y] = placeOf(value, 45.5);
        element.style.left = `${x}%`;
        element.style.top = `${y}%`;
        element.dataset.name = setting.name;
        element.setAttribute("aria-label", `${setting.label}, on the circle`);
        element.setAttribute("aria-valuemin", String(setting.lowest));
        element.setAttribute("aria-valuemax", String(setting.highest));
        element.setAttribute("aria-valuenow", String(value));
        element.setAttribute("aria-valuetext", spoken(setting, value));
    };
    return { element, show };
}
