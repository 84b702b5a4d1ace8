// Settings as a link, and links as settings.

import { readFragment, writeFragment } from "../model/fragment.js";
import { find } from "./element.js";
import { tell, tellError } from "./messages.js";

/** @typedef {import("../model/record.js").EditedRecord} EditedRecord */

/** @param {EditedRecord} record */
export function startSharing(record) {
    const read = () => {
        try {
            const values = readFragment(decodeURIComponent(location.hash), record.settings);
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
