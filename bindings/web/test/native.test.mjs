// Every byte as the native library has it: each setting, each order of channels, rows with and
// without padding, values that are no useful ones, tables.

import assert from "node:assert/strict";
import { test } from "node:test";

import { inCamelCase, load } from "./support/library.mjs";
import { nativeAdjust, nativeLut } from "./support/native.mjs";
import { waves } from "./support/pictures.mjs";
import { records } from "./support/records.mjs";

const library = await load();
const channels = { gray: 1, rgb: 3, bgr: 3, rgba: 4, bgra: 4 };
const orders = Object.keys(channels);

function picture(order, width, height) {
    return { data: waves(width, height, channels[order]), width, height, order };
}

function expectNative(order, width, height, settings) {
    const adjusted = library.adjust(picture(order, width, height), settings);
    const expected = nativeAdjust(picture(order, width, height), settings);
    assert.ok(expected.equals(Buffer.from(adjusted.data.buffer)), `${order} ${width} x ${height} ${JSON.stringify(settings)}`);
}

test("each setting, at both ends of its range", () => {
    library.settings.forEach(({ name, lowest, highest }, index) => {
        const order = orders[index % orders.length];
        expectNative(order, 67, 41, { [name]: lowest });
        expectNative(order, 67, 41, { [name]: highest });
    });
});

for (const [name, settings] of Object.entries(records)) {
    test(`${name}, in every order`, () => {
        for (const order of orders) expectNative(order, 131, 77, settings);
    });
}

// Of a quarter of a mebibyte and more the library gets a few rows at a time, where that serves.
for (const [name, settings] of Object.entries({
    "nothing": {},
    "nothing that shows": { "vignette-roundness": 30 },
    "exposure": { exposure: 20 },
    "tones": { exposure: -15, contrast: 30, vibrance: 30, saturation: -20 },
    "tones and a vignette": { exposure: 15, "vignette-amount": -60 },
    "tones and clarity": { contrast: 15, clarity: 40 },
    "eleven settings": records["eleven settings"],
})) {
    test(`large pictures, ${name}, in every order`, () => {
        for (const order of orders) expectNative(order, 1021, 601, settings);
    });
}

test("pictures of a few pixels", () => {
    for (const [width, height] of [[1, 1], [2, 1], [1, 3], [3, 2], [5, 5]]) {
        for (const order of orders) expectNative(order, width, height, records["a little of everything"]);
    }
});

for (const value of [NaN, Infinity, -Infinity, 1e30, -1e30, 1e-42, 300, 1e39]) {
    test(`every setting at ${value}`, () => {
        const settings = Object.fromEntries(library.settings
            .filter(({ isInteger }) => !isInteger)
            .map(({ name }) => [name, value]));
        for (const order of ["rgba", "rgb", "gray"]) expectNative(order, 37, 23, settings);
    });
}

test("colour tables of any size, in both orders", () => {
    const settings = { ...records["eleven settings"], ...records["three colour ranges"] };
    for (const dimension of [2, 17, 32, 33]) {
        for (const order of ["red-fastest", "blue-fastest"]) {
            const table = library.lut(inCamelCase(settings), dimension, { order });
            assert.equal(table.length, 3 * dimension ** 3);
            assert.ok(nativeLut(settings, dimension, order).equals(new Uint8Array(table.buffer)), `${dimension} ${order}`);
        }
    }
});

test("a table's size is that of the library unless given, its order that of most other programs", () => {
    assert.deepEqual(library.lut({ tint: 20 }), library.lut({ tint: 20 }, 32, { order: "red-fastest" }));
});

for (const [dimension, name, message] of [
    [1, "RangeError", "dimension must be a whole number from 2 to 256, not 1"],
    [257, "RangeError", "dimension must be a whole number from 2 to 256, not 257"],
    [3.5, "RangeError", "dimension must be a whole number from 2 to 256, not 3.5"],
    ["33", "TypeError", "dimension must be a number, not string"],
]) {
    test(`a table of size ${dimension} is refused`, () => {
        assert.throws(() => library.lut({}, dimension), { name, message });
    });
}
