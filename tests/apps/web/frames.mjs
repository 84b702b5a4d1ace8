// How many frames a second the preview shows while a slider is dragged by a real pointer, and how long
// after a movement: eleven global settings and three colour ranges, a preview of 1600 x 1000. Measured,
// not tested: a test would depend on how busy the machine is.
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
        const shown = (window.shown = []);
        let moved = 0;
        document.querySelector('.row[data-name="exposure"] input[type=range]')
            .addEventListener("input", () => (moved = performance.now()), { capture: true });

        // When the movement was that the newest frame shows: requests are answered in order.
        let newest = 0;
        const asked = new Map();
        const { postMessage } = Worker.prototype;
        Worker.prototype.postMessage = function post(message, ...rest) {
            if (message.name === "adjust") {
                if (asked.size === 0) {
                    this.addEventListener("message", ({ data }) => (newest = asked.get(data.id) ?? newest));
                }
                asked.set(message.id, moved);
            }
            return postMessage.call(this, message, ...rest);
        };
        for (const name of ["drawImage", "putImageData"]) {
            const original = CanvasRenderingContext2D.prototype[name];
            CanvasRenderingContext2D.prototype[name] = function draw(...given) {
                if (this.canvas.id === "picture") shown.push({ at: performance.now(), moved: newest });
                return original.apply(this, given);
            };
        }
    });
    await page.page.mouse.move(x, y);
    await page.page.mouse.down();
    const end = Date.now() + 1000 * seconds;
    let moves = 0;
    for (; Date.now() < end; ++moves) {
        await page.page.mouse.move(x + 60 * Math.sin(moves / 9), y);
    }
    const shown = (await page.evaluate(() => window.shown)).filter(({ moved }) => moved > 0);
    await page.page.mouse.up();
    const sorted = (numbers) => numbers.sort((a, b) => a - b);
    const gaps = sorted(shown.slice(1).map(({ at }, i) => at - shown[i].at));
    const delays = sorted(shown.map(({ at, moved }) => at - moved));
    const share = (numbers, part) => numbers[Math.floor(part * (numbers.length - 1))].toFixed(0);
    const rate = (1000 * gaps.length) / (shown.at(-1).at - shown[0].at);
    console.log(
        `${rate.toFixed(1)} frames a second of ${moves} movements in ${seconds} s, ` +
        `${share(gaps, 0.5)} ms apart, ninety in a hundred at most ${share(gaps, 0.9)} ms; ` +
        `${share(delays, 0.5)} ms after the movement, at most ${share(delays, 1)} ms; ` +
        `load ${loadavg()[0].toFixed(1)}`,
    );
} finally {
    await page.close();
}
