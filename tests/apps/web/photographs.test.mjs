// A hundred photographs in a row, as someone looks through a card: memory stays where it is.

import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { after, before, test } from "node:test";

import { startPage } from "./support/browser.mjs";
import { small } from "./support/native.mjs";

let page;
before(async () => {
    page = await startPage("Chromium");
});
after(() => page?.close());

/** Mebibytes that the renderers of this test's browser hold by themselves. */
function memory() {
    const mine = readdirSync("/proc").filter((entry) => /^\d+$/.test(entry)).filter((process) => {
        try {
            const line = readFileSync(`/proc/${process}/cmdline`, "latin1");
            return line.includes("--type=renderer") && isDescendant(process);
        } catch {
            return false;
        }
    });
    return mine.reduce((sum, process) => {
        const status = readFileSync(`/proc/${process}/status`, "latin1");
        return sum + Number(/RssAnon:\s+(\d+)/.exec(status)?.[1] ?? 0) / 1024;
    }, 0);
}

/** @param {string} child */
function isDescendant(child) {
    for (let at = Number(child); at > 1; ) {
        if (at === process.pid) return true;
        at = Number(/\) \S (\d+)/.exec(readFileSync(`/proc/${at}/stat`, "latin1"))[1]);
    }
    return false;
}

test("a hundred photographs in a row leave memory flat", async () => {
    const [width, height] = [1600, 1000];
    const files = [];
    for (const name of ["Dune", "Aqua", "LadyBird", "Storm"]) {
        files.push(await small(`nature/${name}.jpg`, width, height, "jpg"));
    }
    const session = await page.context.newCDPSession(page.page);
    await session.send("HeapProfiler.enable");
    const settled = async () => {
        await session.send("HeapProfiler.collectGarbage");
        await page.page.waitForTimeout(1500);
        return memory();
    };
    let early = 0;
    for (let i = 0; i < 100; ++i) {
        await page.openPhotograph(files[i % files.length]);
        if (i === 19) early = await settled();
    }
    const late = await settled();
    console.log(`after 20 photographs ${early.toFixed(0)} MiB, after 100 ${late.toFixed(0)} MiB`);
    assert.ok(early > 0);
    // A photograph that stayed would be 6 MiB; of eighty a tenth would show.
    assert.ok(late - early < 48, `${early.toFixed(0)} MiB became ${late.toFixed(0)} MiB`);
});
