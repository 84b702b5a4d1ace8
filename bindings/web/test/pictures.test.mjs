// Pictures of every order and size, and values that are none.

import assert from "node:assert/strict";
import { test } from "node:test";

import { load } from "./support/library.mjs";
import { waves } from "./support/pictures.mjs";

const library = await load();

test("a picture is adjusted in place and given back", () => {
    const picture = { data: waves(9, 5, 4), width: 9, height: 5 };
    const { data } = picture;
    const before = data.slice();
    assert.equal(library.adjust(picture, { exposure: 50 }), picture);
    assert.equal(picture.data, data);
    assert.notDeepEqual(data, before);
});

test("exposure multiplies by two to the power of 0.6 at 50", () => {
    const data = new Uint8Array([10, 20, 30, 77, 100, 150, 200, 255]);
    library.adjust({ data, width: 2, height: 1 }, { exposure: 50 });
    const lighter = (level) => Math.min(255, Math.trunc(level * 2 ** 0.6));
    const expected = [10, 20, 30, 77, 100, 150, 200, 255].map((level, i) => (i % 4 === 3 ? level : lighter(level)));
    assert.deepEqual([...data], expected);
});

test("the order of the channels does not matter to a pixel", () => {
    const rgba = waves(7, 6, 4);
    const settings = { temperature: 13000, blueHue: 30, saturation: 40 };
    const swapped = (data, step) => data.map((_, i) => {
        const channel = i % step;
        return channel > 2 ? data[i] : data[i - channel + 2 - channel];
    });
    const bgra = swapped(rgba, 4);
    library.adjust({ data: rgba, width: 7, height: 6 }, settings);
    library.adjust({ data: bgra, width: 7, height: 6, order: "bgra" }, settings);
    assert.deepEqual(swapped(bgra, 4), rgba);
});

test("views into a larger buffer are pictures, and nothing beside them changes", () => {
    const buffer = new Uint8Array(100).fill(90);
    const data = buffer.subarray(10, 10 + 48);
    library.adjust({ data, width: 4, height: 4, order: "rgb" }, { exposure: 50 });
    assert.ok(buffer.subarray(0, 10).every((byte) => byte === 90));
    assert.ok(buffer.subarray(58).every((byte) => byte === 90));
    assert.ok(data.every((byte) => byte === Math.trunc(90 * 2 ** 0.6)));
});

test("a Buffer of Node is a picture's data", () => {
    const data = Buffer.alloc(12, 90);
    library.adjust({ data, width: 3, height: 1 }, { exposure: 50 });
    assert.equal(data[0], Math.trunc(90 * 2 ** 0.6));
});

test("a picture without pixels stays so", () => {
    for (const [width, height] of [[0, 0], [5, 0], [0, 5]]) {
        const picture = { data: new Uint8Array(0), width, height };
        assert.equal(library.adjust(picture, { dehaze: 50 }), picture);
    }
});

const data = new Uint8Array(16);
const wrong = [
    [undefined, "TypeError", "picture must be an object, not undefined"],
    [null, "TypeError", "picture must be an object, not null"],
    [{ data, height: 2 }, "TypeError", "picture.width must be a number, not undefined"],
    [{ width: 2, height: 2 }, "TypeError", "picture.data must be a Uint8ClampedArray or a Uint8Array, not undefined"],
    [{ data: [1, 2], width: 2, height: 2 }, "TypeError",
        "picture.data must be a Uint8ClampedArray or a Uint8Array, not array"],
    [{ data: new Float32Array(16), width: 2, height: 2 }, "TypeError",
        "picture.data must be a Uint8ClampedArray or a Uint8Array, not Float32Array"],
    [{ data: data.buffer, width: 2, height: 2 }, "TypeError",
        "picture.data must be a Uint8ClampedArray or a Uint8Array, not object"],
    [{ data, width: "2", height: 2 }, "TypeError", "picture.width must be a number, not string"],
    [{ data, width: 2, height: 2.5 }, "RangeError",
        "picture.height must be a whole number from 0 to 2147483647, not 2.5"],
    [{ data, width: -2, height: -2 }, "RangeError",
        "picture.width must be a whole number from 0 to 2147483647, not -2"],
    [{ data, width: 2, height: 2, order: "argb" }, "TypeError",
        'picture.order must be one of "gray", "rgb", "bgr", "rgba", "bgra", not "argb"'],
    [{ data, width: 2, height: 2, order: 4 }, "TypeError",
        'picture.order must be one of "gray", "rgb", "bgr", "rgba", "bgra", not number'],
    [{ data, width: 2, height: 2, order: "rgb" }, "RangeError",
        "picture.data must have 12 bytes for 2 x 2 pixels of 3 bytes, not 16"],
];
for (const [picture, name, message] of wrong) {
    test(`refused: ${message}`, () => {
        assert.throws(() => library.adjust(picture, {}), { name, message });
    });
}

const wrongOptions = [
    ["options", null, "options must be an object, not null"],
    ["progress", { progress: "yes" }, "options.progress must be a function, not string"],
    ["signal", { signal: {} }, "options.signal must be an AbortSignal, not object"],
];
for (const [name, options, message] of wrongOptions) {
    test(`wrong ${name} are a TypeError`, () => {
        assert.throws(() => library.adjust({ data, width: 2, height: 2 }, {}, options), { name: "TypeError", message });
    });
}
