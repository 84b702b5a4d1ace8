// Keys that work wherever the focus is.

import { find } from "./element.js";

/**
 * @param {object} actions
 * @param {() => void} actions.undo
 * @param {() => void} actions.redo
 * @param {() => void} actions.choosePicture
 * @param {() => void} actions.exportPicture
 * @param {{toggle(): void, hold(held: boolean): void}} actions.comparing
 * @param {{fit(): void, full(): void, zoom(factor: number): void}} actions.looking
 */
export function startKeys({ undo, redo, choosePicture, exportPicture, comparing, looking }) {
    const dialog = find("keys-dialog", HTMLDialogElement);
    find("keys", HTMLButtonElement).addEventListener("click", () => dialog.showModal());

    /** @type {Record<string, () => void>} */
    const withControl = {
        z: undo,
        Z: redo,
        y: redo,
        o: choosePicture,
        s: exportPicture,
    };
    /** @type {Record<string, () => void>} */
    const alone = {
        v: comparing.toggle,
        f: looking.fit,
        1: looking.full,
        "+": () => looking.zoom(1.25),
        "=": () => looking.zoom(1.25),
        "-": () => looking.zoom(0.8),
        "?": () => dialog.showModal(),
        b: () => comparing.hold(true),
    };

    addEventListener("keydown", (event) => {
        if (event.altKey || document.querySelector("dialog[open]")) return;
        const isTyping = event.target instanceof HTMLInputElement && event.target.type === "number";
        const control = event.ctrlKey || event.metaKey;
        if (isTyping && !control) return;
        const key = event.shiftKey && event.key === "z" ? "Z" : event.key;
        const action = control ? withControl[key] : alone[key.toLowerCase()];
        if (!action || (event.repeat && key !== "+" && key !== "-" && !control)) return;
        action();
        event.preventDefault();
    });
    const release = () => comparing.hold(false);
    addEventListener("keyup", (event) => {
        if (event.key.toLowerCase() === "b") release();
    });
    addEventListener("blur", release);
}
