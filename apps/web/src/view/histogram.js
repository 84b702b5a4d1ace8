// The levels of three channels, and marks for what is cut off at either end.

import { find } from "./element.js";

const channels = [
    { name: "red", colour: "#e8423b" },
    { name: "green", colour: "#4bb556" },
    { name: "blue", colour: "#3f7cf0" },
];

// A few pixels at an end are in every photograph; from this share on something is lost.
const share = 0.0005;

/** @param {Uint32Array | null} counts of 256 levels for each channel; null: no photograph */
export function showHistogram(counts) {
    const canvas = find("histogram", HTMLCanvasElement);
    const context = canvas.getContext("2d");
    if (!context) return;
    const { width, height } = canvas;
    context.globalCompositeOperation = "source-over";
    context.clearRect(0, 0, width, height);
    if (!counts) return;

    const of = channels.map((channel, i) => ({ ...channel, counts: counts.subarray(256 * i, 256 * (i + 1)) }));
    // The ends may hold a whole sky; the curve is for what lies between them.
    const inner = of.flatMap((channel) => [...channel.counts.subarray(1, 255)]);
    const highest = Math.max(1, ...inner);
    context.globalCompositeOperation = "lighter";
    for (const { colour, counts: levels } of of) {
        context.beginPath();
        context.moveTo(0, height);
        levels.forEach((count, level) => {
            const y = height * (1 - 0.96 * Math.min(1, Math.sqrt(count / highest)));
            context.lineTo(((level + 0.5) / 256) * width, y);
        });
        context.lineTo(width, height);
        context.globalAlpha = 0.58;
        context.fillStyle = colour;
        context.fill();
    }
    context.globalAlpha = 1;

    const total = of[0].counts.reduce((sum, count) => sum + count, 0);
    mark("clip-dark", "black", of.map(({ name, counts: levels }) => ({ name, share: levels[0] / total })));
    mark("clip-bright", "white", of.map(({ name, counts: levels }) => ({ name, share: levels[255] / total })));
}

/**
 * @param {string} id
 * @param {string} end
 * @param {{name: string, share: number}[]} shares
 */
function mark(id, end, shares) {
    const element = find(id, HTMLElement);
    const clipped = shares.filter((channel) => channel.share >= share);
    const names = clipped.map(({ name }) => name).join(", ");
    const percent = Math.max(0, ...clipped.map((channel) => 100 * channel.share)).toFixed(1);
    const text = names ? `${names}: up to ${percent} % end in ${end}` : `No level ends in ${end}`;
    element.setAttribute("aria-label", text);
    element.title = text;
    const light = shares.map((channel) => (channel.share >= share ? 255 : 0));
    if (names) element.style.setProperty("--clipped", `rgb(${light.join(" ")})`);
    else element.style.removeProperty("--clipped");
}
