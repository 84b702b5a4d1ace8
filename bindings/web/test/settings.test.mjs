// Settings by name: spellings, slips and values of other kinds.

import assert from "node:assert/strict";
import { test } from "node:test";

import { camelCase, load } from "./support/library.mjs";
import { waves } from "./support/pictures.mjs";

const library = await load();
const picture = () => ({ data: waves(8, 8, 4), width: 8, height: 8 });
const adjusted = (settings) => library.adjust(picture(), settings).data;

test("a picture stays as it is without settings", () => {
    assert.deepEqual(adjusted({}), picture().data);
});

test("every setting is described once, in the record's order, with a value to start from", () => {
    assert.deepEqual(library.settings.map(({ slot }) => slot), Array.from({ length: 65 }, (_, slot) => slot));
    assert.equal(new Set(library.settings.map(({ key }) => key)).size, 65);
    for (const { name, key, label, group, help, lowest, highest, identity } of library.settings) {
        assert.match(name, /^[a-z]+(-[a-z]+)*$/);
        assert.equal(key, camelCase(name));
        assert.ok(label && group && help, name);
        assert.ok(lowest < highest && lowest <= identity && identity <= highest, name);
    }
});

test("the description cannot be changed", () => {
    assert.throws(() => { library.settings[0].lowest = 0; }, TypeError);
    assert.throws(() => { library.settings.push({}); }, TypeError);
});

test("both spellings of a name mean the same", () => {
    const kebab = adjusted({ "red-min-degree": 0, "red-max-degree": 360, "red-hue": 50 });
    assert.deepEqual(kebab, adjusted({ redMinDegree: 0, redMaxDegree: 360, redHue: 50 }));
    assert.notDeepEqual(kebab, picture().data);
});

test("a setting that is undefined is not given", () => {
    assert.deepEqual(adjusted({ exposure: undefined, contrast: 20 }), adjusted({ contrast: 20 }));
});

const slips = [
    ["exposre", 'unknown setting "exposre"; did you mean exposure?'],
    ["redHeu", 'unknown setting "redHeu"; did you mean redHue?'],
    ["red-heu", 'unknown setting "red-heu"; did you mean red-hue?'],
    ["Clarity", 'unknown setting "Clarity"; did you mean clarity?'],
    ["zzzzzzzzz", 'unknown setting "zzzzzzzzz"'],
    ["", 'unknown setting ""'],
    ["toString", 'unknown setting "toString"'],
    ["__proto__", 'unknown setting "__proto__"'],
];
for (const [slip, message] of slips) {
    test(`the setting "${slip}" is refused, with what may have been meant`, () => {
        assert.throws(() => library.adjust(picture(), JSON.parse(`{"${slip}": 1}`)),
            { name: "TypeError", message });
    });
}

test("a setting that is given in both spellings is refused", () => {
    assert.throws(() => adjusted({ redHue: 1, "red-hue": 2 }),
        { name: "TypeError", message: "settings names red-hue twice" });
});

for (const [value, kind] of [["20", "string"], [null, "null"], [true, "boolean"], [[1], "array"], [{}, "object"], [20n, "bigint"]]) {
    test(`a setting that is ${kind} is a TypeError that names it`, () => {
        assert.throws(() => adjusted({ exposure: value }),
            { name: "TypeError", message: `settings.exposure must be a number, not ${kind}` });
    });
}

for (const value of [0.5, NaN, Infinity, -Infinity, 2 ** 31, -(2 ** 31) - 1]) {
    test(`a temperature of ${value} is no whole number of the record's`, () => {
        assert.throws(() => adjusted({ temperature: value }),
            { name: "RangeError", message: `settings.temperature must be a whole number of 32 bits, not ${value}` });
    });
}

for (const [settings, kind] of [[undefined, "undefined"], [null, "null"], [[], "array"], ["warm", "string"]]) {
    test(`settings that are ${kind} are a TypeError`, () => {
        assert.throws(() => library.adjust(picture(), settings),
            { name: "TypeError", message: `settings must be an object, not ${kind}` });
    });
}
