// Messages that come and go.

import { find, make } from "./element.js";

const shownFor = 9000;

/**
 * @param {string} text
 * @param {"bad" | "good"} kind bad ones stay until they are closed
 */
export function tell(text, kind = "good") {
    const close = make("button", { type: "button", "aria-label": "Close this message" }, "✕");
    const message = make("div", { class: `message ${kind}` }, make("p", {}, text), close);
    close.addEventListener("click", () => message.remove());
    if (kind === "good") setTimeout(() => message.remove(), shownFor);
    const messages = find("messages", HTMLElement);
    messages.append(message);
    while (messages.children.length > 3) messages.firstElementChild?.remove();
}

/** @param {unknown} error */
export function tellError(error) {
    tell(error instanceof Error ? error.message : String(error), "bad");
}
