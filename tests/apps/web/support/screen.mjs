// What is on the screen.

import { createHash } from "node:crypto";

/** @param {Uint8Array} bytes */
export function digest(bytes) {
    return createHash("sha256").update(bytes).digest("hex");
}

/**
 * The pixels on the screen of a photograph that is shown in full at 100 %: red, green, blue, alpha of
 * each.
 * @param {import("./browser.mjs").Page} page
 * @param {number} width of the photograph
 * @param {number} height
 */
export async function pixelsOnScreen(page, width, height) {
    const text = await page.evaluate(([w, h]) => {
        const canvas = document.querySelector("#picture");
        const left = Math.round((canvas.width - w) / 2);
        const top = Math.round((canvas.height - h) / 2);
        const { data } = canvas.getContext("2d").getImageData(left, top, w, h);
        let bytes = "";
        for (let i = 0; i < data.length; i += 4096) {
            bytes += String.fromCharCode(...data.subarray(i, i + 4096));
        }
        return btoa(bytes);
    }, [width, height]);
    return new Uint8Array(Buffer.from(text, "base64"));
}

/** The digest of those pixels. */
export async function digestOnScreen(page, width, height) {
    return digest(await pixelsOnScreen(page, width, height));
}

/**
 * Tries until nothing is thrown, or for so long that what was thrown last is the answer.
 * @param {() => Promise<void>} check
 */
export async function until(check) {
    for (const end = Date.now() + 20000; ; ) {
        try {
            return await check();
        } catch (error) {
            if (Date.now() > end) throw error;
        }
        await new Promise((wait) => setTimeout(wait, 100));
    }
}

/**
 * The settings that the panel shows as changed.
 * @param {import("./browser.mjs").Page} page
 * @returns {Promise<Record<string, number>>}
 */
export function settingsOnScreen(page) {
    return page.evaluate(() =>
        Object.fromEntries(
            [...document.querySelectorAll(".row.changed")].map((row) =>
                [row.dataset.name, Number(row.querySelector(".value").value)]),
        ));
}

/** Opens every group of the panel. */
export async function openGroups(page) {
    await page.evaluate(() => {
        for (const group of document.querySelectorAll("details.group")) group.open = true;
    });
}

/** Shows the sliders of the band that a setting belongs to, as a click on its name does. */
export async function chooseBandOf(page, setting) {
    const band = await page.evaluate((name) => {
        const all = [...document.querySelectorAll(".bands input")].map(({ value }) => value);
        return all.find((value) => name.startsWith(`${value}-`)) ?? null;
    }, setting);
    if (band) await page.click(`.bands input[value="${band}"]`);
    return band;
}
