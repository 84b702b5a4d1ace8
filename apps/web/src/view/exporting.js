// The dialog from which photographs and colour tables are saved.

import { tableOf } from "../engine/darkroom.js";
import { find } from "./element.js";
import { tell, tellError } from "./messages.js";
import { save, stemOf } from "./saving.js";

/** @typedef {import("../session.js").Session} Session */
/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */
/** @typedef {import("../photo/encode.js").FileKind} FileKind */

/**
 * @param {Session} session
 * @param {EditedRecord} record
 */
export function startExporting(session, record) {
    const dialog = find("export-dialog", HTMLDialogElement);
    const quality = find("quality", HTMLInputElement);
    const qualityValue = find("quality-value", HTMLOutputElement);
    const qualityField = find("quality-field", HTMLElement);
    const note = find("export-note", HTMLElement);
    const size = find("table-size", HTMLInputElement);

    const kind = () => {
        const chosen = dialog.querySelector("input[name=kind]:checked");
        return /** @type {FileKind} */ (chosen instanceof HTMLInputElement ? chosen.value : "png");
    };
    const show = () => {
        const { photograph } = session;
        if (!photograph) return;
        qualityField.hidden = kind() === "png";
        qualityValue.value = `${quality.value} %`;
        quality.setAttribute("aria-valuetext", `${quality.value} percent`);
        quality.style.setProperty("--to", `${quality.value}%`);
        const lost = photograph.hasAlpha && kind() === "jpeg" ? " JPEG knows no transparency." : "";
        note.textContent =
            `${photograph.width} × ${photograph.height} pixels, ` +
            `with the EXIF data and the colour profile of ${photograph.name}.${lost}`;
    };
    dialog.addEventListener("input", show);

    /**
     * @param {HTMLButtonElement} button
     * @param {() => Promise<string>} work which gives the name of what it has saved
     */
    const onClick = (button, work) => {
        button.addEventListener("click", async () => {
            button.disabled = true;
            try {
                const name = await work();
                dialog.close();
                tell(`Saved ${name}`);
            } catch (error) {
                dialog.close();
                tellError(error);
            } finally {
                button.disabled = false;
            }
        });
    };
    onClick(find("save-picture", HTMLButtonElement), async () => {
        const { darkroom, photograph } = session;
        if (!darkroom || !photograph) throw new Error("There is no photograph to save");
        const blob = await darkroom.file(record.changed, kind(), quality.valueAsNumber / 100);
        const name = `${stemOf(photograph.name)}-adjusted.${kind() === "jpeg" ? "jpg" : kind()}`;
        save(blob, name);
        return name;
    });
    onClick(find("save-table", HTMLButtonElement), async () => {
        if (!size.checkValidity() || !Number.isInteger(size.valueAsNumber)) {
            throw new Error("A colour table has 2 to 256 colours along each edge");
        }
        const blob = await tableOf(record.changed, size.valueAsNumber);
        const name = `${stemOf(session.photograph?.name ?? "colours")}.cube`;
        save(blob, name);
        return name;
    });

    const open = () => {
        if (!session.photograph || dialog.open) return;
        show();
        dialog.showModal();
    };
    find("export", HTMLButtonElement).addEventListener("click", open);
    return { open };
}
