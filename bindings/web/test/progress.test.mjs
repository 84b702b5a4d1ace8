// Progress, and adjustments that are cancelled.

import assert from "node:assert/strict";
import { test } from "node:test";

import { load } from "./support/library.mjs";
import { waves } from "./support/pictures.mjs";

const library = await load();
// Long enough that progress is told of in the middle.
const picture = () => ({ data: waves(640, 480, 4), width: 640, height: 480 });
const settings = { "colour-noise-reduction": 30, exposure: 10 };

test("progress begins at 0, never falls and ends at 1", () => {
    const shares = [];
    library.adjust(picture(), settings, { progress: (share) => { shares.push(share); } });
    assert.equal(shares[0], 0);
    assert.equal(shares.at(-1), 1);
    assert.ok(shares.length > 3);
    assert.deepEqual(shares, [...shares].sort((a, b) => a - b));
});

test("to be watched changes nothing about the result", () => {
    const watched = library.adjust(picture(), settings, { progress: () => {} });
    assert.deepEqual(watched.data, library.adjust(picture(), settings).data);
});

const cancelled = (message) => ({ name: "AbortError", message });
const midway = (body) => (share) => (share > 0 && share < 1 ? body() : undefined);

test("false cancels and leaves the picture as it was", () => {
    const victim = picture();
    assert.throws(() => library.adjust(victim, settings, { progress: midway(() => false) }),
        cancelled("the adjustment was cancelled"));
    assert.deepEqual(victim.data, picture().data);
});

test("what progress throws comes out and leaves the picture as it was", () => {
    const victim = picture();
    const thrown = new Error("enough");
    const progress = midway(() => { throw thrown; });
    assert.throws(() => library.adjust(victim, settings, { progress }), (error) => error === thrown);
    assert.deepEqual(victim.data, picture().data);
});

test("a signal that is aborted meanwhile cancels with its reason", () => {
    const victim = picture();
    const controller = new AbortController();
    const reason = new Error("no longer wanted");
    const progress = midway(() => controller.abort(reason));
    assert.throws(() => library.adjust(victim, settings, { progress, signal: controller.signal }),
        (error) => error === reason);
    assert.deepEqual(victim.data, picture().data);
});

test("a signal that was aborted before lets nothing begin", () => {
    const victim = picture();
    const progress = () => assert.fail("it has begun");
    assert.throws(() => library.adjust(victim, settings, { progress, signal: AbortSignal.abort() }),
        { name: "AbortError" });
    assert.deepEqual(victim.data, picture().data);
});

test("other pictures can be adjusted while one is", () => {
    const inner = { data: waves(40, 30, 4), width: 40, height: 30 };
    const expectedInner = library.adjust({ ...inner, data: inner.data.slice() }, { clarity: 30 }).data;
    const outerShares = [];
    let innerShares = 0;
    const adjusted = library.adjust(picture(), settings, {
        progress(share) {
            outerShares.push(share);
            if (outerShares.length !== 2) return;
            library.adjust(inner, { clarity: 30 }, { progress: () => { ++innerShares; } });
        },
    });
    assert.deepEqual(inner.data, expectedInner);
    assert.ok(innerShares > 0);
    assert.equal(outerShares.at(-1), 1);
    assert.deepEqual(adjusted.data, library.adjust(picture(), settings).data);
});

test("the library is as good as new after each of these", () => {
    for (let i = 0; i < 3; ++i) {
        assert.throws(() => library.adjust(picture(), settings, { progress: () => false }), { name: "AbortError" });
    }
    assert.deepEqual(library.adjust(picture(), settings).data, library.adjust(picture(), settings).data);
});
