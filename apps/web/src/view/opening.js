// Files come in: chosen, dropped or pasted; photographs and presets.

import { sizeOf } from "../engine/darkroom.js";
import { find } from "./element.js";
import { tellError } from "./messages.js";

// From here on a photograph takes about a gigabyte of memory, which not every device has.
const large = 32e6;

/** What a large photograph is reduced to. */
const reduced = 16e6;

// Four each: as opened, a copy that is adjusted, the library's, before and after on the screen.
const bytesPerPixel = 20;

/**
 * @param {object} handlers
 * @param {(file: File, most: number) => Promise<void>} handlers.openPhotograph
 * @param {(file: File) => Promise<void>} handlers.openPreset
 */
export function startOpening({ openPhotograph, openPreset }) {
    const pictureFile = find("picture-file", HTMLInputElement);
    const presetFile = find("preset-file", HTMLInputElement);
    const drop = find("drop", HTMLElement);
    const note = find("note", HTMLElement);

    /** @param {File} file */
    const openPicture = async (file) => {
        note.textContent = `Opening ${file.name} …`;
        try {
            const size = await sizeOf(file);
            const most = size ? await agreed(file.name, size) : Infinity;
            if (most > 0) await openPhotograph(file, most);
        } finally {
            note.textContent = "";
        }
    };

    // One after the other, so that the last that was asked for is the one that stays.
    let before = Promise.resolve();
    /** @param {Iterable<File>} files */
    const take = (files) => {
        for (const file of files) {
            const isPreset = /\.json$/i.test(file.name) || file.type === "application/json";
            before = before.then(() => (isPreset ? openPreset(file) : openPicture(file))).catch(tellError);
        }
    };

    for (const input of [pictureFile, presetFile]) {
        input.addEventListener("change", () => {
            take([...(input.files ?? [])]);
            input.value = "";
        });
    }
    const choosePicture = () => pictureFile.click();
    find("open", HTMLButtonElement).addEventListener("click", choosePicture);
    find("choose", HTMLButtonElement).addEventListener("click", choosePicture);
    find("load-preset", HTMLButtonElement).addEventListener("click", () => presetFile.click());

    addEventListener("dragover", (event) => {
        event.preventDefault();
        drop.hidden = false;
    });
    addEventListener("dragleave", (event) => {
        if (!event.relatedTarget) drop.hidden = true;
    });
    addEventListener("drop", (event) => {
        event.preventDefault();
        drop.hidden = true;
        take(event.dataTransfer?.files ?? []);
    });
    addEventListener("paste", (event) => take(event.clipboardData?.files ?? []));

    return { choosePicture };
}

/**
 * How many pixels the person wants of a photograph: all, some, or none of it.
 * @param {string} name
 * @param {{width: number, height: number}} size
 */
async function agreed(name, { width, height }) {
    const pixels = width * height;
    if (pixels <= large) return Infinity;
    const share = Math.sqrt(reduced / pixels);
    const dialog = find("large", HTMLDialogElement);
    find("large-text", HTMLElement).textContent =
        `${name} has ${width} × ${height} pixels, ${Math.round(pixels / 1e6)} megapixels. In full it takes ` +
        `about ${((pixels * bytesPerPixel) / 2 ** 30).toFixed(1)} GiB of memory here, and the exact picture takes seconds. ` +
        `It can be made smaller first, to ${Math.round(width * share)} × ${Math.round(height * share)} pixels; ` +
        "what you export is then of that size.";
    dialog.returnValue = "";
    dialog.showModal();
    await new Promise((resolve) => dialog.addEventListener("close", resolve, { once: true }));
    if (dialog.returnValue === "full") return Infinity;
    return dialog.returnValue === "reduce" ? reduced : 0;
}
