// The library in a worker: results, slots, cancelling, handing over.

import assert from "node:assert/strict";
import { after, test } from "node:test";

import { createWorkerClient, load, OutOfMemoryError, SupersededError } from "./support/library.mjs";
import { waves } from "./support/pictures.mjs";

const library = await load();
const client = await createWorkerClient();
after(() => client.close());

const small = () => ({ data: waves(16, 12, 4), width: 16, height: 12 });
const large = () => ({ data: waves(900, 700, 4), width: 900, height: 700 });
const long = { "colour-noise-reduction": 40, "luminance-noise-reduction": 40 };

test("the worker's library is the same", () => {
    assert.equal(client.version, library.version);
    assert.deepEqual(client.settings, library.settings);
});

test("a picture comes back adjusted, the one that was sent stays as it was", async () => {
    const sent = { ...small(), order: "bgra" };
    const adjusted = await client.adjust(sent, { redHue: 20, exposure: 10 });
    assert.deepEqual(sent, { ...small(), order: "bgra" });
    assert.deepEqual(adjusted, library.adjust({ ...small(), order: "bgra" }, { redHue: 20, exposure: 10 }));
});

test("tables and cube files come from the worker as well", async () => {
    assert.deepEqual(await client.lut({ tint: 9 }, 7), library.lut({ tint: 9 }, 7));
    assert.deepEqual(await client.lut({ tint: 9 }), library.lut({ tint: 9 }));
    const order = "blue-fastest";
    assert.equal(await client.cube({ tint: 9 }, 7, { order }), library.cube({ tint: 9 }, 7, { order }));
});

test("of a slot's waiting requests the latest alone runs", async () => {
    // Of one request more than one may be told, where a machine is slow.
    const begun = new Set();
    const request = (exposure, slot) => client.adjust(small(), { exposure },
        { slot, progress: () => { begun.add(`${slot} ${exposure}`); } });
    const requests = [
        client.adjust(large(), { clarity: 10 }),
        request(1, "a"), request(2, "a"), request(1, "b"), request(3, "a"), request(2, "b"),
    ];
    const results = await Promise.allSettled(requests);
    assert.deepEqual(results.map(({ status }) => status),
        ["fulfilled", "rejected", "rejected", "rejected", "fulfilled", "fulfilled"]);
    for (const { reason } of results.slice(1, 4)) {
        assert.ok(reason instanceof SupersededError);
        assert.equal(reason.name, "SupersededError");
    }
    // Each in the place of the first of its slot.
    assert.deepEqual([...begun], ["a 3", "b 2"]);
    assert.deepEqual(results[4].value, library.adjust(small(), { exposure: 3 }));
});

test("requests without a slot all run, in their order", async () => {
    const ended = [];
    await Promise.all([5, 6, 7].map(async (exposure) => {
        await client.adjust(small(), { exposure });
        ended.push(exposure);
    }));
    assert.deepEqual(ended, [5, 6, 7]);
});

test("settings are those at the time of the request", async () => {
    const settings = { exposure: 10 };
    const busy = client.adjust(large(), { clarity: 10 });
    const adjusted = client.adjust(small(), settings);
    settings.exposure = 90;
    await busy;
    assert.deepEqual(await adjusted, library.adjust(small(), { exposure: 10 }));
});

test("progress reaches the page", async () => {
    const shares = [];
    await client.adjust(large(), long, { progress: (share) => { shares.push(share); } });
    assert.equal(shares[0], 0);
    assert.equal(shares.at(-1), 1);
    assert.ok(shares.length > 3);
});

test("a waiting request that is aborted does not run", async () => {
    const controller = new AbortController();
    const busy = client.adjust(large(), { clarity: 10 });
    const waiting = client.adjust(small(), { exposure: 10 },
        { signal: controller.signal, progress: () => assert.fail("it has begun") });
    controller.abort();
    await assert.rejects(waiting, { name: "AbortError" });
    await busy;
});

test("a running request that is aborted is given up at once, and others run after it", async () => {
    const controller = new AbortController();
    const reason = new Error("no longer wanted");
    let tellBegun;
    const begun = new Promise((resolve) => { tellBegun = resolve; });
    const sent = large();
    const running = client.adjust(sent, long, { signal: controller.signal, progress: () => tellBegun() });
    const next = client.adjust(small(), { exposure: 10 });
    await begun;
    controller.abort(reason);
    await assert.rejects(running, (error) => error === reason);
    assert.deepEqual(sent, large());
    assert.deepEqual(await next, library.adjust(small(), { exposure: 10 }));
});

test("a request whose signal was aborted before is refused", async () => {
    await assert.rejects(client.adjust(small(), {}, { signal: AbortSignal.abort() }), { name: "AbortError" });
});

test("a picture can be handed over", async () => {
    const sent = small();
    const adjusted = await client.adjust(sent, { exposure: 10 }, { transfer: true });
    assert.equal(sent.data.length, 0);
    assert.deepEqual(adjusted, library.adjust(small(), { exposure: 10 }));
});

test("a Buffer's pixels come back as bytes", async () => {
    const adjusted = await client.adjust({ data: Buffer.alloc(12, 70), width: 3, height: 1 }, { exposure: 50 });
    assert.deepEqual(adjusted.data.constructor, Uint8Array);
    assert.equal(adjusted.data[0], Math.trunc(70 * 2 ** 0.6));
});

test("part of a larger buffer is copied, not handed over", async () => {
    const buffer = new Uint8Array(1000).fill(70);
    const data = buffer.subarray(100, 100 + 48);
    const adjusted = await client.adjust({ data, width: 4, height: 3 }, { exposure: 50 }, { transfer: true });
    assert.equal(buffer.length, 1000);
    assert.equal(adjusted.data.length, 48);
    assert.equal(adjusted.data[0], Math.trunc(70 * 2 ** 0.6));
});

const wrong = [
    [() => client.adjust(small(), { exposre: 1 }), "TypeError", 'unknown setting "exposre"; did you mean exposure?'],
    [() => client.adjust(small(), { exposure: "1" }), "TypeError", "settings.exposure must be a number, not string"],
    [() => client.adjust({ ...small(), width: 3 }, {}), "RangeError",
        "picture.data must have 144 bytes for 3 x 12 pixels of 4 bytes, not 768"],
    [() => client.adjust(small(), null), "TypeError", "settings must be an object, not null"],
    [() => client.adjust(small(), {}, { progress: 1 }), "TypeError", "options.progress must be a function, not number"],
    [() => client.lut({}, 1), "RangeError", "dimension must be a whole number from 2 to 256, not 1"],
    [() => client.lut({}, 8, { order: "green" }), "TypeError",
        'options.order must be one of "red-fastest", "blue-fastest", not "green"'],
];
for (const [call, name, message] of wrong) {
    test(`refused: ${message}`, () => assert.rejects(call(), { name, message }));
}

test("short memory in the worker is an OutOfMemoryError, and the next request runs", async () => {
    const limited = await createWorkerClient({ maximumMemory: 8 * 2 ** 20 });
    try {
        const data = new Uint8Array(2000 * 2000 * 4);
        await assert.rejects(limited.adjust({ data, width: 2000, height: 2000 }, { clarity: 9 }),
            (error) => error instanceof OutOfMemoryError);
        assert.deepEqual(await limited.adjust(small(), { exposure: 9 }), library.adjust(small(), { exposure: 9 }));
    } finally {
        limited.close();
    }
});

test("closing rejects what is not done and what comes later", async () => {
    const closing = await createWorkerClient();
    const requests = [closing.adjust(large(), long), closing.adjust(small(), {})];
    closing.close();
    for (const request of [...requests, closing.adjust(small(), {})]) {
        await assert.rejects(request, { name: "AbortError", message: "the client was closed" });
    }
});

test("a module that cannot be loaded is an error of the client's", async () => {
    await assert.rejects(createWorkerClient({ wasm: "/nowhere/keladjust.wasm" }), { code: "ENOENT" });
    await assert.rejects(createWorkerClient({ wasm: new Uint8Array([1, 2, 3]) }), { name: "CompileError" });
    await assert.rejects(createWorkerClient({ wasm: 7 }), { name: "TypeError" });
});
