// Zooming and moving about: by wheel, fingers, keys and buttons.

import { find } from "./element.js";

/** @typedef {import("./stage.js").Stage} Stage */

/** @param {Stage} stage */
export function startLooking(stage) {
    const element = find("stage", HTMLElement);
    const { viewport } = stage;
    const zoomButton = find("zoom", HTMLButtonElement);

    /** @param {{clientX: number, clientY: number}} event */
    const placeOf = ({ clientX, clientY }) => {
        const { left, top } = element.getBoundingClientRect();
        return { x: (clientX - left) * devicePixelRatio, y: (clientY - top) * devicePixelRatio };
    };

    /** @type {Map<number, {x: number, y: number}>} */
    const fingers = new Map();
    const spread = () => {
        const [a, b] = fingers.values();
        return {
            distance: Math.hypot(a.x - b.x, a.y - b.y),
            x: (a.x + b.x) / 2,
            y: (a.y + b.y) / 2,
        };
    };

    element.addEventListener("pointerdown", (event) => {
        if (event.button !== 0 || event.target instanceof HTMLButtonElement) return;
        fingers.set(event.pointerId, placeOf(event));
        element.setPointerCapture(event.pointerId);
        element.classList.add("moving");
    });
    element.addEventListener("pointermove", (event) => {
        const last = fingers.get(event.pointerId);
        if (!last) return;
        const place = placeOf(event);
        if (fingers.size === 2) {
            const before = spread();
            fingers.set(event.pointerId, place);
            const after = spread();
            viewport.moveBy(after.x - before.x, after.y - before.y);
            const factor = after.distance / Math.max(1, before.distance);
            viewport.zoomTo(viewport.scale * factor, after.x, after.y);
        } else {
            fingers.set(event.pointerId, place);
            viewport.moveBy(place.x - last.x, place.y - last.y);
        }
        stage.changeView();
    });
    for (const end of /** @type {const} */ (["pointerup", "pointercancel"])) {
        element.addEventListener(end, (event) => {
            fingers.delete(event.pointerId);
            element.classList.toggle("moving", fingers.size > 0);
        });
    }
    element.addEventListener("wheel", (event) => {
        event.preventDefault();
        const { x, y } = placeOf(event);
        viewport.zoomTo(viewport.scale * 1.0015 ** -event.deltaY, x, y);
        stage.changeView();
    }, { passive: false });
    element.addEventListener("dblclick", (event) => {
        const { x, y } = placeOf(event);
        if (viewport.fits) viewport.zoomTo(1, x, y);
        else viewport.fit();
        stage.changeView();
    });
    element.addEventListener("keydown", (event) => {
        const step = 60 * devicePixelRatio;
        const moves = new Map([
            ["ArrowLeft", [step, 0]],
            ["ArrowRight", [-step, 0]],
            ["ArrowUp", [0, step]],
            ["ArrowDown", [0, -step]],
        ]);
        const move = moves.get(event.key);
        if (!move || event.target !== element) return;
        viewport.moveBy(move[0], move[1]);
        stage.changeView();
        event.preventDefault();
    });

    const actions = {
        fit() {
            viewport.fit();
            stage.changeView();
        },
        full() {
            viewport.zoomTo(1);
            stage.changeView();
        },
        /** @param {number} factor */
        zoom(factor) {
            viewport.zoomTo(viewport.scale * factor);
            stage.changeView();
        },
    };
    find("fit", HTMLButtonElement).addEventListener("click", actions.fit);
    zoomButton.addEventListener("click", actions.full);
    stage.addEventListener("view", () => {
        const percent = 100 * viewport.scale;
        zoomButton.textContent = `${percent < 10 ? percent.toFixed(1) : Math.round(percent)} %`;
    });
    return actions;
}
