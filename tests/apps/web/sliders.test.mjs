// Every slider, moved by a real pointer: what is on the screen is what the command line makes.

import assert from "node:assert/strict";
import { after, before, describe, test } from "node:test";

import { browserNames, startPage } from "./support/browser.mjs";
import { adjusted, small } from "./support/native.mjs";
import { chooseBandOf, digest, digestOnScreen, openGroups, settingsOnScreen } from "./support/screen.mjs";

const [width, height] = [150, 94];

for (const browser of browserNames) {
    describe(`Sliders in ${browser}`, () => {
        let page;
        let picture;

        before(async () => {
            picture = await small("nature/Dune.jpg", width, height);
            page = await startPage(browser);
            await page.openPhotograph(picture);
            await openGroups(page);
        });
        after(() => page?.close());

        const matches = async () => {
            await page.rest();
            const settings = await settingsOnScreen(page);
            const wanted = digest((await adjusted(picture, settings)).rgba);
            assert.equal(await digestOnScreen(page, width, height), wanted, JSON.stringify(settings));
            return wanted;
        };

        test("the photograph itself is on the screen first", async () => {
            assert.deepEqual(await settingsOnScreen(page), {});
            await matches();
        });

        test("every slider that is moved gives the command line's picture", async () => {
            const names = await page.evaluate(() =>
                [...document.querySelectorAll(".row")].map(({ dataset }) => dataset.name));
            const described = await page.evaluate(async () =>
                (await (await import("./keladjust/keladjust.js")).load()).settings.map(({ name }) => name));
            assert.deepEqual([...names].sort(), [...described].sort());

            let band = null;
            const pictures = new Set();
            for (const name of names) {
                // Bands one by one, so that what a bound does is not lost in what seven others do.
                const itsBand = await chooseBandOf(page, name);
                if (itsBand !== band) await page.click("#reset-all");
                band = itsBand;
                await page.drag(`.row[data-name="${name}"] input[type=range]`, 26);
                const settings = await settingsOnScreen(page);
                assert.ok(name in settings, `${name} has moved`);
                pictures.add(await matches());
                if (itsBand === null && !/^vignette/.test(name)) await page.click("#reset-all");
            }
            // A slider that did nothing would give a picture that was there before. Bounds of a band
            // that lies elsewhere, and lens distortion's like, may; most must not.
            assert.ok(pictures.size > names.length * 0.6, `${pictures.size} of ${names.length} differ`);
        });
    });
}
