// Looks at the pages of the site in Chromium: browser.cjs SITE some|all
//
// In light and dark, on a desktop and on a phone: axe finds nothing to complain about, no page asks for
// anything that is not the site's, none is wider than the screen, all pictures are there. Before and
// after can be moved by keyboard, and stand side by side without JavaScript.

"use strict";

const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const url = require("node:url");
const axe = require("axe-core");
const { chromium } = require("playwright-core");

const site = path.resolve(process.argv[2]);
const address = (page) => url.pathToFileURL(path.join(site, page)).href;

// One of each kind, and those with most in them.
const telling = ["index.html", "start.html", "gallery/index.html", "gallery/noise.html",
    "gallery/colour-ranges.html", "reference/index.html", "reference/types.html",
    "reference/stages-on-a-picture.html", "guides/index.html", "guides/host.html"];

function everyPage() {
    return fs.readdirSync(site, { recursive: true })
        .filter((name) => name.endsWith(".html") && !name.startsWith("app" + path.sep));
}

const screens = [
    { name: "light", colorScheme: "light", viewport: { width: 1280, height: 900 } },
    { name: "dark", colorScheme: "dark", viewport: { width: 1280, height: 900 } },
    { name: "phone", colorScheme: "light", viewport: { width: 360, height: 740 } },
    { name: "dark phone", colorScheme: "dark", viewport: { width: 360, height: 740 } },
];

async function lookAt(browser, pages) {
    let findings = 0;
    const complain = (text) => {
        console.error(text);
        ++findings;
    };
    for (const { name, ...screen } of screens) {
        const context = await browser.newContext(screen);
        const page = await context.newPage();
        page.on("request", (request) => {
            const asked = request.url();
            if (!asked.startsWith(address("")) && !asked.startsWith("data:")) {
                complain(`${page.url()} asks for ${asked}`);
            }
        });
        page.on("requestfailed", (request) => complain(`${page.url()}: no ${request.url()}`));
        page.on("pageerror", (error) => complain(`${page.url()}: ${error}`));
        for (const file of pages) {
            await page.goto(address(file));
            await page.evaluate(() => {
                for (const image of document.images) image.loading = "eager";
            });
            await page.waitForFunction(() => [...document.images].every((image) => image.complete));
            const missing = await page.evaluate(() => [...document.images]
                .filter((image) => image.naturalWidth === 0).map((image) => image.src));
            for (const image of missing) complain(`${file}: no picture ${image}`);
            const width = await page.evaluate(() => document.scrollingElement.scrollWidth);
            if (width > screen.viewport.width) {
                complain(`${file} (${name}) is ${width} wide on ${screen.viewport.width}`);
            }
            await page.evaluate(axe.source);
            const { violations, passes } = await page.evaluate(() => globalThis.axe.run(document, {
                preload: false,  // of style sheets, which it may not read from the disk
                runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"],
            }));
            assert.ok(passes.length > 10, "axe has looked at something");
            for (const violation of violations) {
                const where = violation.nodes.slice(0, 3)
                    .map((node) => `${node.target.join(" ")}: ${node.failureSummary}`).join("\n    ");
                complain(`${file} (${name}): ${violation.id}: ${violation.help}\n    ${where}`);
            }
        }
        await context.close();
    }
    return findings;
}

async function moveByKeyboard(browser) {
    const page = await browser.newPage();
    await page.goto(address("index.html"));
    const slider = page.getByRole("slider");
    const shown = () => page.evaluate(() => getComputedStyle(
        document.querySelector(".compare-picture + .compare-picture")).clipPath);
    assert.match(await shown(), /50%/);
    await slider.focus();
    await page.keyboard.press("ArrowRight");
    assert.match(await shown(), /51%/);
    await page.keyboard.press("Home");
    assert.match(await shown(), /inset\(0(px|%)?\)|inset\(0px 0px 0px 0%\)/);
    // By hand: a press somewhere brings the line there.
    const box = await page.locator(".compare-pictures").boundingBox();
    await page.mouse.move(box.x + box.width * 0.25, box.y + box.height / 2);
    await page.mouse.down();
    await page.mouse.move(box.x + box.width * 0.75, box.y + box.height / 2, { steps: 5 });
    await page.mouse.up();
    const value = Number(await slider.inputValue());
    assert.ok(Math.abs(value - 75) <= 1, `the line follows the hand: ${value}`);
    await page.close();
}

async function standWithoutJavaScript(browser) {
    const context = await browser.newContext({ javaScriptEnabled: false });
    const page = await context.newPage();
    await page.goto(address("index.html"));
    const [before, after] = await Promise.all([0, 1].map(
        (which) => page.locator(".compare-picture").nth(which).boundingBox()));
    assert.ok(before.width > 100 && after.x >= before.x + before.width, "side by side");
    assert.equal(await page.getByRole("slider").count(), 0);
    await context.close();
}

async function main() {
    const pages = process.argv[3] === "all" ? everyPage() : telling;
    const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
    try {
        const findings = await lookAt(browser, pages);
        await moveByKeyboard(browser);
        await standWithoutJavaScript(browser);
        if (findings > 0) throw new Error(`${findings} findings`);
    } finally {
        await browser.close();
    }
    console.log(`browser: ${pages.length} pages, each in ${screens.length} ways: nothing found`);
}

main().catch((error) => {
    console.error(error.message);
    process.exitCode = 1;
});
