// What the command line makes of the same photograph and settings.

import { execFile } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { promisify } from "node:util";

import { readPng } from "./png.mjs";
import { root } from "./root.mjs";

const run = promisify(execFile);
const program = join(root, "build/release/bin/keladjust");

/** A folder for what the tests write; it goes when they end. */
export const folder = mkdtempSync(join(tmpdir(), "keladjust-page-"));
process.on("exit", () => rmSync(folder, { recursive: true, force: true }));

let count = 0;

/** A name in that folder that no other call gets. */
export function freshName(extension) {
    return join(folder, `${++count}.${extension}`);
}

/** @param {Record<string, number>} settings */
function presetFile(settings) {
    const name = freshName("json");
    writeFileSync(name, JSON.stringify(settings));
    return name;
}

/**
 * The pixels of the photograph with these settings.
 * @param {string} file
 * @param {Record<string, number>} settings
 */
export async function adjusted(file, settings) {
    const result = freshName("png");
    await run(program, [file, "--quiet", "--preset", presetFile(settings), "-o", result]);
    return readPng(readFileSync(result));
}

/** The text of a cube file. */
export async function cubeFile(settings, size) {
    const result = freshName("cube");
    await run(program, ["lut", "--preset", presetFile(settings), "--size", String(size),
        "--order", "red-fastest", "-o", result]);
    return readFileSync(result, "utf8");
}

/** What the command line reads in a preset: the settings and their values. */
export async function readPreset(file) {
    const result = freshName("json");
    await run(program, ["--preset", file, "--save-preset", result]);
    return JSON.parse(readFileSync(result, "utf8"));
}

/** A photograph of Debian's package mate-backgrounds. */
export function photograph(name) {
    return join("/usr/share/backgrounds/mate", name);
}

/**
 * A photograph made smaller, as a PNG or another file that ffmpeg writes.
 * @param {string} name see photograph()
 * @param {number} width
 * @param {number} height
 */
export async function small(name, width, height, extension = "png", ...options) {
    const result = freshName(extension);
    await run("ffmpeg", ["-v", "error", "-i", photograph(name), "-vf", `scale=${width}:${height}`,
        ...options, result]);
    return result;
}
