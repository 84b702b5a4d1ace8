// Real browsers without a screen.

import { chromium } from "playwright-core";
import { launch } from "puppeteer-core";

const starters = {
    async Chromium() {
        const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
        return { page: await browser.newPage(), close: () => browser.close() };
    },
    async Firefox() {
        const browser = await launch({ browser: "firefox", executablePath: "/usr/bin/firefox-esr" });
        return { page: await browser.newPage(), close: () => browser.close() };
    },
};

export const browsers = Object.keys(starters);

const patience = 120_000;

/** What `window.results` of the page, a promise, comes to. */
export async function resultsOf(browser, address) {
    const { page, close } = await starters[browser]();
    const errors = [];
    let timer;
    try {
        page.on("pageerror", (error) => errors.push(error.message));
        page.on("console", (message) => errors.push(message.text()));
        await page.goto(address);
        const late = new Promise((_, reject) => {
            timer = setTimeout(() => reject(new Error(`nothing after ${patience / 1000} seconds`)), patience);
        });
        // Modules of a page have run by the time that it is loaded.
        return await Promise.race([page.evaluate(() => window.results), late]);
    } catch (error) {
        throw new Error(`${address} gives no results: ${[error.message, ...errors].join("; ")}`);
    } finally {
        clearTimeout(timer);
        await close();
    }
}
