// Measures the package in Node beside the native library on one thread, and beside npm's other
// packages, and prints tables in Markdown. What is compared takes turns, so that other programs of the
// machine disturb all alike; times are medians of processor time, to which they do least, ratios those
// of the medians.
//
//   node bindings/web/bench/bench.mjs [rounds [native|peers]]

import { execFileSync } from "node:child_process";
import { loadavg, tmpdir } from "node:os";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

import { load } from "../../../build/web/package/node.js";
import { records } from "../test/support/records.mjs";
import { peers, work } from "./peers.mjs";

const rounds = Number(process.argv[2] ?? 9);
const parts = process.argv[3] === undefined ? ["native", "peers"] : [process.argv[3]];
const size = { width: 1920, height: 1080 };
/** Of the same picture, since some packages take seconds a megapixel. */
const part = { width: 1920, height: 270 };
/** Milliseconds for which each runs before it counts. */
const warmUp = 100;
const megapixels = (size.width * size.height) / 1e6;
const photograph = "/usr/share/backgrounds/mate/nature/FreshFlower.jpg";
const native = fileURLToPath(new URL("../../../build/release/bin/native_adjuster", import.meta.url));

const median = (values) => {
    const sorted = [...values].sort((a, b) => a - b);
    return sorted[Math.floor(sorted.length / 2)];
};
const number = (value) => (value >= 100 ? value.toFixed(0) : value.toPrecision(3));
const row = (...cells) => console.log(`| ${cells.join(" | ")} |`);

/** Milliseconds of processor time, of all threads. */
async function timed(body) {
    const begin = process.cpuUsage();
    await body();
    const { user, system } = process.cpuUsage(begin);
    return (user + system) / 1000;
}

const library = await load();
const folder = mkdtempSync(join(tmpdir(), "keladjust-bench-"));
const raw = `${folder}/photograph`;
const copy = new Uint8ClampedArray(4 * size.width * size.height);
let pixels;
try {
    execFileSync("ffmpeg", ["-nostdin", "-v", "error", "-i", photograph,
        "-vf", `scale=${size.width}:${size.height}`, "-pix_fmt", "rgba", "-f", "rawvideo", raw]);
    pixels = new Uint8ClampedArray(readFileSync(raw));
    console.log(`${size.width} x ${size.height} RGBA, Node ${process.version}, load ${loadavg()[0].toFixed(1)}, ` +
        `${rounds} rounds`);
    if (parts.includes("native")) await besideNative();
    if (parts.includes("peers")) await besidePeers();
    console.log(`\nload ${loadavg()[0].toFixed(1)} at the end`);
} finally {
    rmSync(folder, { recursive: true });
}

// wasm-vips has threads that would keep the program from its end.
process.exit();

/** Runs until all is compiled as well as it will be. */
async function warm(run) {
    for (let spent = 0; spent < warmUp;) spent += await run();
}

/** Always of one array, or what throws arrays away would take its part of the time. */
function adjustCopy(settings) {
    copy.set(pixels);
    return timed(() => library.adjust({ data: copy, ...size }, settings));
}

async function besideNative() {
    const alone = Object.fromEntries(library.settings
        .filter(({ usual, highest, group }) => usual === 0 && highest > 0 && group !== "Colour ranges")
        .map(({ name, highest }) => [name, { [name]: name === "sharpen" ? 120 : Math.min(30, highest) }]));
    const measured = Object.fromEntries(Object.entries({ ...alone, ...records }).filter(([, settings]) => {
        copy.set(pixels);
        library.adjust({ data: copy, ...size }, settings);
        return copy.some((byte, at) => byte !== pixels[at]);
    }));
    const times = Object.fromEntries(Object.keys(measured).map((name) => [name, { here: [], native: [] }]));
    for (const settings of Object.values(measured)) await warm(() => adjustCopy(settings));
    for (let round = 0; round < rounds; ++round) {
        for (const [name, settings] of Object.entries(measured)) {
            const words = Object.entries(settings).map(([setting, value]) => `${setting}=${value}`);
            const lines = execFileSync(native,
                ["time", "rgba", size.width, size.height, raw, 1, ...words].map(String), { encoding: "utf8" });
            times[name].native.push(Number(lines));
            times[name].here.push(await adjustCopy(settings));
        }
    }
    console.log("");
    row("settings", "native library, ms per megapixel", "Node, ms per megapixel", "ratio");
    row("---", "---", "---", "---");
    for (const [name, { here, native: there }] of Object.entries(times)) {
        row(name, number(median(there) / megapixels), number(median(here) / megapixels),
            (median(here) / median(there)).toFixed(1));
    }
}

async function besidePeers() {
    const top = pixels.subarray(0, 4 * part.width * part.height);
    const data = new Uint8ClampedArray(top.length);  // adjusted in place, as a page does it
    const sides = { keladjust: Object.fromEntries(Object.entries(work).map(([name, settings]) =>
        [name, (given) => {
            data.set(given);
            library.adjust({ data, ...part }, settings);
        }])) };
    for (const [name, start] of Object.entries(peers)) sides[name] = await start(part);

    const eachJob = async (body) => {
        for (const job of Object.keys(work)) {
            for (const [side, jobs] of Object.entries(sides)) await body(job, side, () => timed(() => jobs[job](top)));
        }
    };
    await eachJob((job, side, run) => warm(run));
    const times = {};
    for (let round = 0; round < rounds; ++round) {
        await eachJob(async (job, side, run) => ((times[job] ??= {})[side] ??= []).push(await run()));
    }
    console.log(`\n${part.width} x ${part.height} RGBA\n`);
    const names = Object.keys(peers);
    row("work", "keladjust, ms", ...names.map((name) => `${name}, ms`), ...names.map((name) => `${name}, times`));
    row(...Array(2 + 2 * names.length).fill("---"));
    for (const [job, taken] of Object.entries(times)) {
        const ours = median(taken.keladjust);
        row(job, number(ours), ...names.map((name) => number(median(taken[name]))),
            ...names.map((name) => (median(taken[name]) / ours).toFixed(1)));
    }
}
