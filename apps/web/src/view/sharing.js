// Settings as a link, and links as settings.

import { presetOfFragment, writeFragment } from "../model/fragment.js";
import { find } from "./element.js";
import { tell, tellError } from "./messages.js";

/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */

/**
 * @param {EditedRecord} record
 * @param {import("../engine/library.js").Library} k
 */
export function startSharing(record, k) {
    const read = () => {
        try {
            const values = record.fromPreset(k, presetOfFragment(decodeURIComponent(location.hash)), "The link");
            if (Object.keys(values).length > 0) record.replace(values, "link");
        } catch (error) {
            tellError(error);
        }
    };
    addEventListener("hashchange", read);
    read();

    find("share", HTMLButtonElement).addEventListener("click", async () => {
        const link = `${location.href.replace(/#.*/, "")}#${writeFragment(record.changed)}`;
        history.replaceState(null, "", link);
        try {
            await navigator.clipboard.writeText(link);
            tell("The link to these settings is copied. It holds no part of the photograph.");
        } catch {
            tell(`The link to these settings: ${link}`);
        }
    });
}
