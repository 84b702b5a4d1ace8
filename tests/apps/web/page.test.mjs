// What a person does with the page, in real browsers by real input.

import assert from "node:assert/strict";
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, afterEach, before, beforeEach, describe, test } from "node:test";

import { orientationOf, uprightExif } from "../../../apps/web/src/photo/exif.js";
import { readJpegHeader, withJpegMetadata } from "../../../apps/web/src/photo/jpeg.js";
import { readPngHeader } from "../../../apps/web/src/photo/png.js";
import { readWebpHeader } from "../../../apps/web/src/photo/webp.js";
import { browserNames, startPage } from "./support/browser.mjs";
import { adobeRgb, exifWith } from "./support/metadata.mjs";
import { adjusted, cubeFile, freshName, photograph, readPreset, small } from "./support/native.mjs";
import { readPng } from "./support/png.mjs";
import { root } from "./support/root.mjs";
import { digest, digestOnScreen, pixelsOnScreen, settingsOnScreen, until } from "./support/screen.mjs";

const [width, height] = [150, 94];
const slider = (name) => `.row[data-name="${name}"] input[type=range]`;

for (const browser of browserNames) {
    describe(`The page in ${browser}`, () => {
        let page;
        let picture;

        before(async () => {
            picture = await small("nature/Dune.jpg", width, height);
            page = await startPage(browser);
        });
        after(() => page?.close());
        beforeEach(async () => {
            await page.open(page.url);
            await page.openPhotograph(picture);
        });

        const value = (name) => page.evaluate(
            (wanted) => Number(document.querySelector(wanted).closest(".row").querySelector(".value").value),
            slider(name));
        const onScreen = async () => {
            await page.rest();
            return digestOnScreen(page, width, height);
        };
        const native = async (settings) => digest((await adjusted(picture, settings)).rgba);
        const focus = (name) => page.evaluate((wanted) => document.querySelector(wanted).focus(), slider(name));
        const exportAs = async (kind) => {
            await page.click("#export");
            await page.click(`input[name=kind][value=${kind}]`);
            return page.download(() => page.click("#save-picture"));
        };

        test("keys step, step by ten and reset", async () => {
            await focus("exposure");
            await page.press("ArrowRight");
            assert.equal(await value("exposure"), 1);
            await page.press("Shift", "ArrowRight");
            assert.equal(await value("exposure"), 11);
            await page.press("ArrowDown");
            assert.equal(await value("exposure"), 10);
            assert.equal(await onScreen(), await native({ exposure: 10 }));
            await page.press("Delete");
            assert.equal(await value("exposure"), 0);
            assert.equal(await onScreen(), await native({}));
        });

        test("a double click resets", async () => {
            await focus("contrast");
            await page.press("Shift", "ArrowLeft");
            assert.equal(await value("contrast"), -10);
            await page.click(slider("contrast"), browser === "Chromium" ? { clickCount: 2 } : { count: 2 });
            assert.equal(await value("contrast"), 0);
        });

        test("undo and redo go through what was done, a drag as one step", async () => {
            await page.drag(slider("exposure"), 20);
            const exposure = await value("exposure");
            await page.drag(slider("vibrance"), 30);
            const vibrance = await value("vibrance");
            assert.ok(exposure > 0 && vibrance > 0);
            const both = await onScreen();
            await page.press("Control", "z");
            assert.deepEqual(await settingsOnScreen(page), { exposure });
            assert.equal(await onScreen(), await native({ exposure }));
            await page.click("#undo");
            assert.deepEqual(await settingsOnScreen(page), {});
            await page.press("Control", "Shift", "z");
            await page.press("Control", "Shift", "z");
            assert.deepEqual(await settingsOnScreen(page), { exposure, vibrance });
            assert.equal(await onScreen(), both);
        });

        describe("While a slider moves", () => {
            // Without the exact picture that follows it a preview stays.
            beforeEach(() => page.evaluate(() => {
                const { postMessage } = Worker.prototype;
                Worker.prototype.postMessage = function post(message, ...rest) {
                    if (message.name !== "full") postMessage.call(this, message, ...rest);
                };
            }));
            afterEach(async () => assert.ok(await page.isBusy()));

            test("few colours are shown as they will be", async () => {
                await page.drag(slider("exposure"), 20);
                await page.drag(slider("orange-saturation"), 20);
                const wanted = await native(await settingsOnScreen(page));
                await until(async () => assert.equal(await digestOnScreen(page, width, height), wanted));
            });

            test("of many colours each is at most a level off, where a curve is all there is to them", async () => {
                const [wide, high] = [420, 260];
                const many = await small("nature/Dune.jpg", wide, high);
                await page.openPreview(many);
                await page.drag(slider("exposure"), 20);
                const { rgba } = await adjusted(many, await settingsOnScreen(page));
                await until(async () => {
                    const shown = await pixelsOnScreen(page, wide, high);
                    // Between corners that are four levels apart the curve is a line but for rounding.
                    const farthest = shown.reduce((most, level, i) => Math.max(most, Math.abs(level - rgba[i])), 0);
                    assert.equal(farthest, 1);
                });
            });
        });

        test("a typed value counts, beyond the useful range, too", async () => {
            await page.click('.row[data-name="saturation"] .value', browser === "Chromium" ? { clickCount: 2 } : { count: 2 });
            await page.page.keyboard.type("130");
            await page.press("Enter");
            assert.equal(await value("saturation"), 130);
            assert.equal(await onScreen(), await native({ saturation: 130 }));
        });

        test("the bounds of a band are dragged on the wheel", async () => {
            await page.click("#groups details:nth-of-type(3) summary");
            await page.click('.bands input[value="green"]');
            const before = await value("green-max-degree");
            await page.drag('.bound[data-name="green-max-degree"]', 12, 22);
            const moved = await value("green-max-degree");
            assert.notEqual(moved, before);
            await page.press("ArrowRight");
            assert.equal(await value("green-max-degree"), (moved + 1) % 360);
            await page.press("Delete");
            assert.equal(await value("green-max-degree"), before);
        });

        test("a saved preset is the command line's, and loads again", async () => {
            await page.drag(slider("temperature"), 30);
            await page.drag(slider("shadows"), -24);
            const settings = await settingsOnScreen(page);
            assert.equal(Object.keys(settings).length, 2);
            const { name, bytes } = await page.download(() => page.click("#save-preset"));
            assert.match(name, /\.json$/);
            const file = freshName("json");
            writeFileSync(file, bytes);
            assert.deepEqual(await readPreset(file), settings);

            await page.click("#reset-all");
            assert.deepEqual(await settingsOnScreen(page), {});
            await page.chooseFile("#preset-file", file);
            await page.waitFor(() => document.querySelectorAll(".row.changed").length === 2);
            assert.deepEqual(await settingsOnScreen(page), settings);
            assert.equal(await onScreen(), await native(settings));
        });

        test("every built-in preset is a thumbnail and does what it does on the command line", async () => {
            const names = readdirSync(join(root, "docs/presets")).map((name) => name.replace(/\.json$/, ""));
            await page.waitFor((count) => document.querySelectorAll(".preset").length === count, names.length + 1);
            for (const [i, name] of names.entries()) {
                await page.click(`#preset-strip li:nth-child(${i + 2}) button`);
                const preset = JSON.parse(readFileSync(join(root, `docs/presets/${name}.json`), "utf8"));
                assert.equal(await onScreen(), await native(preset), name);
            }
        });

        test("a preset that is wrong is told, with the name that was meant, and changes nothing", async () => {
            await page.drag(slider("exposure"), 20);
            const settings = await settingsOnScreen(page);
            const file = freshName("json");
            writeFileSync(file, '{"exposur": 5}');
            const message = await page.messageAfter(() => page.chooseFile("#preset-file", file));
            assert.match(message, /unknown setting "exposur"; did you mean exposure\?/);
            assert.deepEqual(await settingsOnScreen(page), settings);
        });

        test("settings travel as a link", async () => {
            await page.drag(slider("tint"), 20);
            const settings = await settingsOnScreen(page);
            await page.click("#share");
            const link = await page.evaluate(() => location.href);
            assert.equal(link, `${page.url}#tint=${settings.tint}`);
            await page.click("#reset-all");
            await page.page.goto(`${page.url}?again#tint=${settings.tint}&red-hue=5`);
            await page.waitFor(() => document.documentElement.dataset.ready !== undefined);
            await page.openPhotograph(picture);
            assert.equal(await onScreen(), await native({ ...settings, "red-hue": 5 }));
        });

        test("a link that is wrong is told", async () => {
            const message = await page.messageAfter(() =>
                page.evaluate(() => { location.hash = "#exposure=bright"; }));
            assert.match(message, /The link: "exposure" must be a number/);
            assert.deepEqual(await settingsOnScreen(page), {});
        });

        test("an exported PNG has the command line's pixels, of a JPEG photograph, too", async () => {
            const dune = photograph("nature/Dune.jpg");
            await page.openPhotograph(dune);
            await page.drag(slider("exposure"), 20);
            await page.rest();
            const settings = await settingsOnScreen(page);
            const { name, bytes } = await exportAs("png");
            assert.match(name, /^Dune-adjusted.*\.png$/);
            const [ours, theirs] = [readPng(bytes), await adjusted(dune, settings)];
            assert.equal(ours.channels, theirs.channels);
            assert.equal(digest(ours.rgba), digest(theirs.rgba));
        });

        test("transparent pixels keep their colours, grey photographs stay grey", async () => {
            const transparent = await small("nature/Dune.jpg", 90, 60, "png",
                "-vf", "scale=90:60,format=rgba,geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)':a='X*2.8'");
            const grey = await small("nature/Dune.jpg", 90, 60, "png", "-pix_fmt", "gray");
            for (const [file, channels] of [[transparent, 4], [grey, 1]]) {
                await page.openPhotograph(file);
                await page.drag(slider("exposure"), 20);
                await page.drag(slider("temperature"), 20);
                await page.rest();
                const settings = await settingsOnScreen(page);
                const { bytes } = await exportAs("png");
                const [ours, theirs] = [readPng(bytes), await adjusted(file, settings)];
                assert.equal(ours.channels, channels);
                assert.equal(digest(ours.rgba), digest(theirs.rgba));
            }
        });

        test("a tagged photograph keeps its numbers and its profile, and stands upright", async () => {
            const plain = new Uint8Array(readFileSync(await small("nature/Dune.jpg", 96, 60, "jpg", "-pix_fmt", "yuvj444p")));
            const tagged = freshName("jpg");
            writeFileSync(tagged, withJpegMetadata(plain, { exif: exifWith({ orientation: 6 }), icc: adobeRgb }));
            await page.openPhotograph(tagged);
            await page.drag(slider("vibrance"), 20);
            await page.rest();
            const [png, theirs] = [await exportAs("png"), await adjusted(tagged, await settingsOnScreen(page))];
            const ours = readPng(png.bytes);
            assert.deepEqual([ours.width, ours.height], [60, 96]);
            assert.equal(digest(ours.rgba), digest(theirs.rgba));
            for (const [kind, read] of [["png", readPngHeader], ["jpeg", readJpegHeader], ["webp", readWebpHeader]]) {
                const { bytes } = kind === "png" ? png : await exportAs(kind);
                const header = await read(new Uint8Array(bytes));
                assert.deepEqual([header.width, header.height], [60, 96], kind);
                assert.deepEqual(header.icc, adobeRgb, kind);
                assert.equal(orientationOf(header.exif), 1, kind);
                assert.deepEqual(header.exif, uprightExif(exifWith({ orientation: 6 }), 60, 96), kind);
            }
        });

        test("a colour table is the command line's", async () => {
            await page.drag(slider("contrast"), 20);
            const settings = await settingsOnScreen(page);
            await page.click("#export");
            await page.click("#table-size", browser === "Chromium" ? { clickCount: 2 } : { count: 2 });
            await page.page.keyboard.type("17");
            const { bytes } = await page.download(() => page.click("#save-table"));
            assert.equal(bytes.toString(), await cubeFile(settings, 17));
        });

        test("files that cannot be read are told, and nothing changes", async () => {
            await page.drag(slider("exposure"), 20);
            const shown = await onScreen();
            const jpeg = readFileSync(photograph("nature/Dune.jpg"));
            const png = readFileSync(picture);
            const claims = Buffer.from(png);
            claims.writeUInt32BE(60000, 16);
            const bad = [
                ["text.jpg", Buffer.from("no picture at all"), /not a picture that this browser can read/],
                ["short.jpg", jpeg.subarray(0, 90000), /short\.jpg is damaged: it ends too early/],
                ["short.png", png.subarray(0, 4000), /short\.png is damaged: it ends too early/],
                ["sum.png", claims, /sum\.png is damaged: the check sum/],
                ["empty.png", Buffer.alloc(0), /not a picture/],
            ];
            for (const [name, bytes, wanted] of bad) {
                const file = join(freshName("d").replace(/[^/]*$/, ""), name);
                writeFileSync(file, bytes);
                assert.match(await page.messageAfter(() => page.chooseFile("#picture-file", file)), wanted);
                assert.equal(await onScreen(), shown, name);
            }
        });

        test("a photograph of 48 megapixels is told of before, and made smaller on request", async () => {
            const large = await small("nature/Dune.jpg", 8000, 6000, "jpg");
            await page.chooseFile("#picture-file", large);
            await page.waitFor(() => document.querySelector("#large").open);
            assert.match(await page.evaluate(() => document.querySelector("#large-text").textContent), /48 megapixels/);
            await page.press("Escape");
            await page.rest();
            assert.match(await page.evaluate(() => document.querySelector("#file-name").textContent), /150 × 94/);

            await page.chooseFile("#picture-file", large);
            await page.waitFor(() => document.querySelector("#large").open);
            await page.click("#large-reduce");
            await page.waitFor(() => document.querySelector("#file-name").textContent.includes("4619 × 3464"));
            await page.rest();
        });

        test("before is shown beside after, and while a key is held", async () => {
            const before = await onScreen();
            await page.drag(slider("exposure"), 40);
            const now = await onScreen();
            assert.notEqual(now, before);
            await page.evaluate(() => document.querySelector("#stage").focus());
            await page.page.keyboard.down("b");
            assert.equal(await onScreen(), before);
            await page.page.keyboard.up("b");
            assert.equal(await onScreen(), now);

            await page.press("v");
            const split = await onScreen();
            assert.ok(split !== before && split !== now);
            await page.drag("#divider", 300);
            assert.equal(await onScreen(), before);
            await page.drag("#divider", -600);
            assert.equal(await onScreen(), now);
        });

        test("the picture is shown at 100 % and fits again", async () => {
            await page.openPhotograph(photograph("nature/Dune.jpg"));
            const percent = () => page.evaluate(() => document.querySelector("#zoom").textContent);
            const fit = await percent();
            assert.notEqual(fit, "100 %");
            await page.click("#zoom");
            assert.equal(await percent(), "100 %");
            await page.click("#fit");
            assert.equal(await percent(), fit);
        });

        test("a worker that ends is told, and the next change is adjusted again", async () => {
            const message = await page.messageAfter(async () => {
                await page.evaluate(() => {
                    // As the browser ends a worker for want of memory: from without.
                    const { prototype } = Worker;
                    const { postMessage } = prototype;
                    prototype.postMessage = function post(message, ...rest) {
                        if (message.name === "adjust") {
                            prototype.postMessage = postMessage;
                            this.dispatchEvent(new ErrorEvent("error", { message: "out of memory" }));
                        }
                        return postMessage.call(this, message, ...rest);
                    };
                });
                await page.drag(slider("exposure"), 20, 0, 1);
            });
            assert.match(message, /could not be adjusted: .*Your settings are kept/);
            await page.drag(slider("exposure"), 30);
            assert.equal(await onScreen(), await native(await settingsOnScreen(page)));
        });

        test("nothing is asked of any other machine, and nothing is complained about", async () => {
            const others = page.requests.filter((address) => !address.startsWith(page.url) && !/^(blob|data):/.test(address));
            assert.deepEqual(others, []);
            assert.deepEqual(page.complaints, []);
        });
    });
}
