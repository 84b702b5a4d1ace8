// How many frames a second the preview shows while a slider is dragged by a real pointer: eleven
// global settings and three colour ranges, a preview of 1600 x 1000. Measured, not tested: a test
// would depend on how busy the machine is.
//
//   node tests/apps/web/frames.mjs [SECONDS]

import { loadavg } from "node:os";

import { startPage } from "./support/browser.mjs";
import { small } from "./support/native.mjs";

const seconds = Number(process.argv[2] ?? 4);
const [width, height] = [1600, 1000];

const settings = {
    temperature: 12200, tint: 6, exposure: 8, brightness: 5, contrast: 12, vibrance: 20,
    saturation: -8, highlights: -20, shadows: 25, whites: 8, blacks: -10,
    "orange-hue": 8, "orange-saturation": 15, "green-hue": -10, "green-brightness": 15,
    "blue-saturation": 25, "blue-brightness": -15,
};
const fragment = `#${Object.entries(settings).map(([name, value]) => `${name}=${value}`).join("&")}`;

const page = await startPage("Chromium", { size: { width: 2100, height: 1200 }, fragment });
try {
    await page.openPhotograph(await small("nature/Dune.jpg", width, height));
    const picture = await page.evaluate(() => document.querySelector("#zoom").textContent);
    if (picture !== "100 %") throw new Error(`the preview is not of ${width} x ${height}: ${picture}`);
    const { x, y } = await page.placeOf('.row[data-name="exposure"] input[type=range]');
    await page.evaluate(() => {
        const frames = (window.frames_ = []);
        const original = CanvasRenderingContext2D.prototype.drawImage;
        const canvas = document.querySelector("#picture");
        CanvasRenderingContext2D.prototype.drawImage = function draw(...given) {
            if (this.canvas === canvas) frames.push(performance.now());
            return original.apply(this, given);
        };
    });
    await page.page.mouse.move(x, y);
    await page.page.mouse.down();
    const end = Date.now() + 1000 * seconds;
    let moves = 0;
    for (; Date.now() < end; ++moves) {
        await page.page.mouse.move(x + 60 * Math.sin(moves / 9), y);
    }
    const times = await page.evaluate(() => window.frames_);
    await page.page.mouse.up();
    const gaps = times.slice(1).map((time, i) => time - times[i]).sort((a, b) => a - b);
    const rate = (1000 * gaps.length) / (times.at(-1) - times[0]);
    console.log(
        `${rate.toFixed(1)} frames a second, ${moves} movements in ${seconds} s, ` +
        `median gap ${gaps[gaps.length >> 1].toFixed(1)} ms, ` +
        `ninety in a hundred below ${gaps[Math.floor(gaps.length * 0.9)].toFixed(1)} ms, ` +
        `load ${loadavg()[0].toFixed(1)}`,
    );
} finally {
    await page.close();
}
