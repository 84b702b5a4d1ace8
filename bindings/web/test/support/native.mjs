// What the native library, and its command line, make of the same.

import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

import { programs } from "./paths.mjs";

/** Calls `body` with a folder that is gone after it. */
export function inFolder(body) {
    const folder = mkdtempSync(join(tmpdir(), "keladjust-web-"));
    try {
        return body(folder);
    } finally {
        rmSync(folder, { recursive: true });
    }
}

/** As the native programs take it: their spelling of infinity is C's. */
const words = (settings) => Object.entries(settings).map(([name, value]) => `${name}=${value}`);

const nativeAdjuster = (...parts) => execFileSync(`${programs}/native_adjuster`, parts.map(String));

/** @param settings by their names in the record */
export function nativeAdjust({ data, width, height, order = "rgba" }, settings) {
    return inFolder((folder) => {
        writeFileSync(`${folder}/in`, data);
        nativeAdjuster("adjust", order, width, height, `${folder}/in`, `${folder}/out`, ...words(settings));
        return readFileSync(`${folder}/out`);
    });
}

export function nativeLut(settings, dimension, order) {
    return inFolder((folder) => {
        nativeAdjuster("lut", dimension, order, `${folder}/out`, ...words(settings));
        return readFileSync(`${folder}/out`);
    });
}

/** The command line's status and what it says. */
export function commandLine(...parts) {
    try {
        const output = execFileSync(`${programs}/keladjust`, parts, { encoding: "utf8", stdio: "pipe" });
        return { status: 0, output, error: "" };
    } catch ({ status, stdout, stderr }) {
        return { status, output: stdout, error: stderr };
    }
}
