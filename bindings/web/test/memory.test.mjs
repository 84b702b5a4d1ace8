// Memory that is short, and that none is lost.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

import { load, OutOfMemoryError } from "./support/library.mjs";
import { packageFolder } from "./support/paths.mjs";
import { waves } from "./support/pictures.mjs";
import { records } from "./support/records.mjs";

const mebibyte = 2 ** 20;
const wasm = await WebAssembly.compile(readFileSync(`${packageFolder}/keladjust.wasm`));

test("nothing is lost over 10,000 calls of every kind", async () => {
    const library = await load();
    const data = waves(24, 16, 4);
    const round = () => {
        for (const settings of Object.values(records)) {
            library.adjust({ data, width: 24, height: 16 }, settings);
            library.adjust({ data: data.subarray(0, 1152), width: 24, height: 16, order: "rgb" }, settings);
        }
        library.adjust({ data, width: 24, height: 16 }, { clarity: 9 }, { progress: () => {} });
        assert.throws(() => library.adjust({ data, width: 24, height: 16 }, { clarity: 9 }, { progress: () => false }));
        assert.throws(() => library.adjust({ data, width: 24, height: 16 }, { claritty: 9 }));
        library.lut({ exposure: 5 }, 5);
        library.cube({ exposure: 5 }, 5);
    };
    const callsOfRound = 25;
    // Whatever is kept for good is there after a few.
    for (let i = 0; i < 4; ++i) round();
    const before = library.memory;
    for (let calls = 0; calls < 10_000; calls += callsOfRound) round();
    assert.equal(library.memory, before);
});

test("a large picture's memory is used again for the next", async () => {
    const library = await load();
    const picture = () => ({ data: new Uint8Array(1200 * 1000 * 4).fill(99), width: 1200, height: 1000 });
    library.adjust(picture(), { dehaze: 20, clarity: 10 });
    const before = library.memory;
    for (let i = 0; i < 20; ++i) library.adjust(picture(), { dehaze: 20, clarity: 10 });
    assert.equal(library.memory, before);
});

test("a picture that does not fit is refused and untouched", async () => {
    const library = await load({ maximumMemory: 8 * mebibyte });
    const data = new Uint8Array(2000 * 2000 * 4).fill(99);
    assert.throws(() => library.adjust({ data, width: 2000, height: 2000 }, { clarity: 20 }), (error) => {
        assert.ok(error instanceof OutOfMemoryError && error instanceof RangeError);
        assert.equal(error.message, "out of memory: there is none for 16000000 bytes");
        return true;
    });
    assert.ok(data.every((byte) => byte === 99));
});

test("what changes each pixel by itself needs no memory for the whole picture", async () => {
    const library = await load({ maximumMemory: 8 * mebibyte });
    const before = library.memory;
    const data = new Uint8Array(2000 * 2000 * 4).fill(99);
    library.adjust({ data, width: 2000, height: 2000 }, { brightness: 100 });
    assert.ok(data.every((byte, at) => byte === (at % 4 === 3 ? 99 : 2 * 99)));
    assert.equal(library.memory, before);
});

for (const [name, settings] of Object.entries({
    "dehaze": { dehaze: 40 },
    "clarity": { clarity: 40 },
    "the vignette": { "vignette-amount": -50 },
    "lens distortion": { distortion: 30 },
    "noise reduction": { "luminance-noise-reduction": 30 },
    "exposure, then clarity": { exposure: 30, clarity: 40 },
})) {
    test(`a stage without the memory it needs is an exception, the picture untouched: ${name}`, async () => {
        // Of pictures that fill the memory more and more, some leave the stage less than it needs.
        let outOfMemoryInStages = 0;
        for (let height = 200; ; height += 50) {
            const library = await load({ wasm, maximumMemory: 8 * mebibyte });
            const picture = { data: new Uint8Array(700 * height * 4).fill(99), width: 700, height };
            try {
                library.adjust(picture, settings);
            } catch (error) {
                assert.ok(error instanceof OutOfMemoryError, error);
                assert.ok(picture.data.every((byte) => byte === 99));
                if (error.message !== "out of memory") break;  // not even the picture fits
                ++outOfMemoryInStages;
                // What is smaller still can be adjusted.
                library.adjust({ data: new Uint8Array(400), width: 10, height: 10 }, settings);
            }
        }
        assert.ok(outOfMemoryInStages > 0);
    });
}

test("a table that does not fit is refused", async () => {
    const library = await load({ maximumMemory: 8 * mebibyte });
    assert.throws(() => library.lut({ exposure: 20 }, 256), OutOfMemoryError);
    assert.throws(() => library.cube({ exposure: 20 }, 80), OutOfMemoryError);
    assert.equal(library.lut({ exposure: 20 }, 8).length, 3 * 8 ** 3);
});

test("less memory than the library begins with is refused", async () => {
    for (const maximumMemory of [0, mebibyte, NaN, "8388608"]) {
        await assert.rejects(load({ maximumMemory }),
            { name: "RangeError", message: "maximumMemory must be 4194304 bytes or more" });
    }
});
