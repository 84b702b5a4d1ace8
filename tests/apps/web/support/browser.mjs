// A browser with the page in it, driven by real input: Chromium or Firefox, as the system has them.

import { mkdtemp, readFile, readdir, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";

import { chromium } from "playwright-core";
import puppeteer from "puppeteer-core";

import { serve } from "../../../../apps/web/serve.js";
import { root } from "./root.mjs";

const patience = 60000;

/** What the tests do, in the words of one driver; the other's differ in these places alone. */
class Page {
    /** What went wrong in the page and nobody expected. */
    complaints = [];
    /** Addresses that were asked for. */
    requests = [];

    /** Notes what the page complains of and asks for, from now on. */
    watch() {
        this.page.setDefaultTimeout(patience);
        this.page.on("console", (message) => {
            if (message.type() === "error") this.complaints.push(message.text());
        });
        this.page.on("pageerror", (error) => this.complaints.push(String(error)));
        this.page.on("request", (request) => this.requests.push(request.url()));
    }

    async open(url) {
        await this.page.goto(url);
        await this.waitFor(() => document.documentElement.dataset.ready !== undefined);
    }

    evaluate(work, ...args) {
        return this.page.evaluate(work, ...args);
    }

    async waitFor(condition, argument) {
        await this.page.waitForFunction(condition, ...this.waitArguments(argument));
    }

    /** Where the middle of an element is, scrolled into view. */
    async placeOf(selector) {
        return this.evaluate((wanted) => {
            const element = document.querySelector(wanted);
            element.scrollIntoView({ block: "center", inline: "center" });
            const { x, y, width, height } = element.getBoundingClientRect();
            return { x: x + width / 2, y: y + height / 2, left: x, top: y, width, height };
        }, selector);
    }

    async click(selector, options) {
        const { x, y } = await this.placeOf(selector);
        await this.page.mouse.click(x, y, options);
    }

    /** From the middle of an element by so many pixels, in steps as a hand makes them. */
    async drag(selector, dx, dy = 0, steps = 4) {
        const { x, y } = await this.placeOf(selector);
        await this.page.mouse.move(x, y);
        await this.page.mouse.down();
        await this.page.mouse.move(x + dx, y + dy, { steps });
        await this.page.mouse.up();
    }

    async press(...keys) {
        for (const key of keys.slice(0, -1)) await this.page.keyboard.down(key);
        await this.page.keyboard.press(keys.at(-1));
        for (const key of keys.slice(0, -1).reverse()) await this.page.keyboard.up(key);
    }

    /** Whether the exact picture is still to come. */
    isBusy() {
        return this.evaluate(() => document.querySelector("#stage").getAttribute("aria-busy") === "true");
    }

    /** Until every pixel on the screen is the exact picture's. */
    async rest() {
        await this.waitFor(() =>
            document.querySelector("#stage").getAttribute("aria-busy") === "false" &&
            document.querySelector("#note").textContent === "");
        // The canvas is drawn with the next frame of the screen.
        await this.evaluate(() =>
            new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
    }

    async openPhotograph(file) {
        await this.openPreview(file);
        await this.rest();
    }

    /** As far as its name is shown, which is when sliders move its preview. */
    async openPreview(file) {
        await this.chooseFile("#picture-file", file);
        const name = file.split("/").at(-1);
        await this.waitFor(
            (wanted) => document.querySelector("#file-name").textContent.startsWith(wanted), name);
    }

    /** The texts of the messages that are shown. */
    messages() {
        return this.evaluate(() =>
            [...document.querySelectorAll("#messages .message p")].map((p) => p.textContent));
    }

    /** The message that the page tells next; those before are closed. */
    async messageAfter(action) {
        await this.evaluate(() => document.querySelector("#messages").replaceChildren());
        await action();
        await this.waitFor(() => document.querySelector("#messages .message") !== null);
        return (await this.messages())[0];
    }

    async screenshot(path) {
        await this.page.screenshot({ path });
    }
}

class Chromium extends Page {
    static async start(size) {
        const started = new Chromium();
        started.browser = await chromium.launch({
            executablePath: "/usr/bin/chromium",
            args: ["--no-sandbox"],
            timeout: 2 * patience,
        });
        started.context = await started.browser.newContext({ viewport: size, acceptDownloads: true });
        started.page = await started.context.newPage();
        started.watch();
        return started;
    }

    waitArguments(argument) {
        return [argument, { timeout: patience }];
    }

    chooseFile(selector, file) {
        return this.page.setInputFiles(selector, file);
    }

    resize(size) {
        return this.page.setViewportSize(size);
    }

    /** What is saved while `action` runs: its name and its bytes. */
    async download(action) {
        const [download] = await Promise.all([this.page.waitForEvent("download"), action()]);
        return { name: download.suggestedFilename(), bytes: await readFile(await download.path()) };
    }

    async close() {
        await this.browser.close();
    }
}

class Firefox extends Page {
    static async start(size) {
        const started = new Firefox();
        started.downloads = await mkdtemp(join(tmpdir(), "keladjust-page-"));
        started.browser = await puppeteer.launch({
            browser: "firefox",
            executablePath: "/usr/bin/firefox-esr",
            defaultViewport: size,
            protocolTimeout: 2 * patience,
            timeout: 2 * patience,
            extraPrefsFirefox: {
                "browser.download.folderList": 2,
                "browser.download.dir": started.downloads,
                "browser.download.useDownloadDir": true,
                "browser.download.always_ask_before_handling_new_types": false,
                "browser.download.alwaysOpenPanel": false,
            },
        });
        started.page = await started.browser.newPage();
        started.watch();
        return started;
    }

    waitArguments(argument) {
        return [{ timeout: patience }, argument];
    }

    async chooseFile(selector, file) {
        const input = await this.page.$(selector);
        await input.uploadFile(file);
    }

    resize(size) {
        return this.page.setViewport(size);
    }

    async download(action) {
        const before = new Set(await readdir(this.downloads));
        await action();
        const end = Date.now() + patience;
        for (;;) {
            const names = await readdir(this.downloads);
            const fresh = names.filter((name) => !before.has(name) && !name.endsWith(".part"));
            if (fresh.length === 1 && names.every((name) => !name.endsWith(".part"))) {
                const bytes = await readFile(join(this.downloads, fresh[0]));
                if (bytes.length > 0) {
                    // What tells of the download may cover the page, which is then not drawn any more.
                    await this.page.bringToFront();
                    return { name: fresh[0], bytes };
                }
            }
            if (Date.now() > end) throw new Error("nothing was saved");
            await new Promise((wait) => setTimeout(wait, 50));
        }
    }

    async close() {
        await this.browser.close();
        await rm(this.downloads, { recursive: true, force: true });
    }
}

const browsers = { Chromium, Firefox };

/** The browsers that the tests run in: both, or those in KELADJUST_BROWSERS. */
export const browserNames = (process.env.KELADJUST_BROWSERS ?? Object.keys(browsers).join())
    .split(",");

/**
 * The page in a fresh browser, served from this process.
 * @param {string} name
 */
export async function startPage(name, { size = { width: 1280, height: 800 }, fragment = "" } = {}) {
    const server = await serve(join(root, "build/page"), 0);
    const page = await browsers[name].start(size);
    page.url = `http://127.0.0.1:${server.address().port}/`;
    const closeBrowser = page.close.bind(page);
    page.close = async () => {
        await closeBrowser();
        server.closeAllConnections();
        server.close();
    };
    try {
        await page.open(page.url + fragment);
    } catch (error) {
        await page.close();
        throw error;
    }
    return page;
}
