// Dark, or light for those who want it; the browser remembers which.

import { find } from "./element.js";

const key = "keladjust-theme";

export function startTheme() {
    const button = find("theme", HTMLButtonElement);
    /** @param {string} theme */
    const show = (theme) => {
        document.documentElement.dataset.theme = theme;
        button.setAttribute("aria-pressed", String(theme === "light"));
    };
    try {
        show(localStorage.getItem(key) === "light" ? "light" : "dark");
    } catch {
        // A browser may be told to remember nothing.
        show("dark");
    }
    button.addEventListener("click", () => {
        const theme = document.documentElement.dataset.theme === "light" ? "dark" : "light";
        show(theme);
        try {
            localStorage.setItem(key, theme);
        } catch {
            // It then holds until the page is closed.
        }
    });
}
