// Before and after: on two sides of a divider, or before alone while a key is held.

import { find } from "./element.js";
import { directionOf } from "./slider.js";

/** @typedef {import("./stage.js").Stage} Stage */

/** @param {Stage} stage */
export function startComparing(stage) {
    const button = find("compare", HTMLButtonElement);
    const divider = find("divider", HTMLElement);
    const sides = [find("side-before", HTMLElement), find("side-after", HTMLElement)];
    let percent = 50;
    let on = false;

    const show = () => {
        button.setAttribute("aria-pressed", String(on));
        for (const element of [divider, ...sides]) element.hidden = !on;
        divider.style.left = `${percent}%`;
        divider.setAttribute("aria-valuenow", String(Math.round(percent)));
        divider.setAttribute("aria-valuetext", `${Math.round(percent)} percent before`);
        sides[0].hidden ||= percent < 12;
        sides[1].hidden ||= percent > 88;
        stage.divide(on ? percent / 100 : null);
    };
    /** @param {number} wanted */
    const place = (wanted) => {
        percent = Math.min(Math.max(wanted, 0), 100);
        show();
    };

    divider.addEventListener("pointerdown", (event) => {
        divider.setPointerCapture(event.pointerId);
        event.stopPropagation();
    });
    divider.addEventListener("pointermove", (event) => {
        if (!divider.hasPointerCapture(event.pointerId)) return;
        const { left, width } = find("stage", HTMLElement).getBoundingClientRect();
        place((100 * (event.clientX - left)) / width);
        event.stopPropagation();
    });
    divider.addEventListener("dblclick", (event) => {
        place(50);
        event.stopPropagation();
    });
    divider.addEventListener("keydown", (event) => {
        const direction = directionOf(event.key);
        if (event.key === "Delete") place(50);
        else if (direction !== 0) place(percent + direction * (event.shiftKey ? 10 : 1));
        else return;
        event.preventDefault();
    });

    const actions = {
        toggle() {
            on = !on;
            show();
        },
        /** @param {boolean} held */
        hold(held) {
            stage.showOnlyBefore(held);
        },
    };
    button.addEventListener("click", actions.toggle);
    return actions;
}
