// What axe-core finds in every state of the page, and what a screen reader is told of each slider.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { after, before, describe, test } from "node:test";

import { startPage } from "./support/browser.mjs";
import { small } from "./support/native.mjs";
import { openGroups } from "./support/screen.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

describe("The page for those who do not see it", () => {
    let page;

    before(async () => {
        page = await startPage("Chromium");
        await page.evaluate(axe);
    });
    after(() => page?.close());

    const violations = () => page.evaluate(async () => {
        const found = (await window.axe.run(document)).violations;
        return found.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(" ")}`);
    });

    test("axe-core finds nothing before a photograph is open", async () => {
        assert.deepEqual(await violations(), []);
    });

    test("axe-core finds nothing with a photograph, all groups open, compared, dark and light", async () => {
        await page.openPhotograph(await small("nature/Dune.jpg", 300, 188));
        await openGroups(page);
        await page.click("#compare");
        await page.drag('.row[data-name="exposure"] input[type=range]', 20);
        await page.rest();
        assert.deepEqual(await violations(), []);
        await page.click("#theme");
        assert.deepEqual(await violations(), []);
        await page.click("#theme");
    });

    for (const [name, button] of [["export-dialog", "#export"], ["keys-dialog", "#keys"]]) {
        test(`axe-core finds nothing in ${name}`, async () => {
            await page.click(button);
            assert.deepEqual(await violations(), []);
            await page.press("Escape");
        });
    }

    test("axe-core finds nothing in a message or on a telephone", async () => {
        await page.evaluate(() => { location.hash = "#exposure=x"; });
        await page.waitFor(() => document.querySelector("#messages .message") !== null);
        await page.resize({ width: 360, height: 740 });
        assert.deepEqual(await violations(), []);
        await page.resize({ width: 1280, height: 800 });
    });

    test("every slider has a name, a value and a unit", async () => {
        const sliders = await page.evaluate(() =>
            [...document.querySelectorAll(".row input[type=range]")].map((slider) => ({
                setting: slider.closest(".row").dataset.name,
                name: slider.labels[0].textContent,
                value: slider.value,
                text: slider.getAttribute("aria-valuetext"),
            })));
        const described = await page.evaluate(async () =>
            (await (await import("./keladjust/keladjust.js")).load()).settings);
        assert.equal(sliders.length, described.length);
        for (const { setting, name, value, text } of sliders) {
            const { label } = described.find((other) => other.name === setting);
            assert.equal(name, label);
            assert.match(text, /^−?[0-9.]+ (percent|degrees|on a scale from -?\d+ to \d+)$/, setting);
            assert.equal(Number(text.replace("−", "-").split(" ")[0]), Math.round(Number(value) * 100) / 100);
        }
    });

    test("a slider that is scrolled to scrolls its panel, never the window", async () => {
        await openGroups(page);
        const scrolled = await page.evaluate(() =>
            [...document.querySelectorAll(".row input[type=range]")].map((slider) => {
                slider.scrollIntoView({ block: "start" });
                return { panel: document.querySelector("#groups").scrollTop, window: document.scrollingElement.scrollTop };
            }));
        assert.ok(scrolled.some(({ panel }) => panel > 0));
        assert.deepEqual(scrolled.filter((place) => place.window !== 0), []);
    });

    test("nothing lies outside a narrow window", async () => {
        await page.resize({ width: 360, height: 740 });
        const outside = await page.evaluate(() =>
            [...document.querySelectorAll("button, input, summary")]
                .filter((element) => element.checkVisibility() && !element.closest(".strip"))
                .filter((element) => {
                    const { left, right } = element.getBoundingClientRect();
                    return left < 0 || right > innerWidth;
                })
                .map(({ id, textContent }) => id || textContent));
        assert.deepEqual(outside, []);
    });
});
