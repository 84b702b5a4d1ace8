// Presets and cube files, which the command line reads and writes alike.

import assert from "node:assert/strict";
import { readdirSync, readFileSync, writeFileSync } from "node:fs";
import { test } from "node:test";

import { inCamelCase, load } from "./support/library.mjs";
import { commandLine, inFolder } from "./support/native.mjs";
import { root } from "./support/paths.mjs";
import { records } from "./support/records.mjs";

const library = await load();
const presets = readdirSync(`${root}docs/presets`).filter((name) => name.endsWith(".json"));

test("there are presets to read", () => assert.ok(presets.length > 0));

for (const name of presets) {
    const text = readFileSync(`${root}docs/presets/${name}`, "utf8");

    test(`${name} is read as it stands there`, () => {
        assert.deepEqual(library.readPreset(text, name), inCamelCase(JSON.parse(text)));
    });
    test(`${name} can be settings as it is`, () => {
        assert.deepEqual(library.lut(JSON.parse(text), 9), library.lut(library.readPreset(text), 9));
    });
    test(`${name} gives the command line's cube file`, () => {
        inFolder((folder) => {
            for (const order of ["red-fastest", "blue-fastest"]) {
                commandLine("lut", "--preset", `${root}docs/presets/${name}`, "--size", "21", "--order", order,
                    "-o", `${folder}/table.cube`);
                assert.equal(library.cube(library.readPreset(text), 21, { order }),
                    readFileSync(`${folder}/table.cube`, "utf8"));
            }
        });
    });
}

test("numbers of every size stand in a cube file as the command line writes them", () => {
    inFolder((folder) => {
        for (const settings of [{ temperature: 11500, exposure: 1e30 }, { brightness: -1e30 }, { tint: 1e-42 }]) {
            writeFileSync(`${folder}/preset.json`, library.writePreset(settings));
            commandLine("lut", "--preset", `${folder}/preset.json`, "--size", "5", "-o", `${folder}/table.cube`);
            assert.equal(library.cube(settings, 5, { order: "blue-fastest" }),
                readFileSync(`${folder}/table.cube`, "utf8"));
        }
    });
});

test("a preset is written as the command line writes it", () => {
    const given = {
        ...records["a little of everything"], sharpen: 0.1, tint: -1.5e-7, "vignette-size": 33.333,
        exposure: 2 ** 60, contrast: 123456789, shadows: 1e-4, blacks: 9.99e-5, whites: 0, "red-hue": 1.25e-30,
    };
    inFolder((folder) => {
        writeFileSync(`${folder}/given.json`, JSON.stringify(given));
        commandLine("--preset", `${folder}/given.json`, "--save-preset", `${folder}/saved.json`);
        const saved = readFileSync(`${folder}/saved.json`, "utf8");
        assert.equal(library.writePreset(inCamelCase(given)), saved);
        assert.deepEqual(library.readPreset(saved), inCamelCase(given));
    });
});

test("a preset without settings is an empty object", () => {
    assert.equal(library.writePreset({}), "{}\n");
    assert.deepEqual(library.readPreset("{}"), {});
});

const refused = [
    ["an unknown name", '{"exposre": 1}'],
    ["a name of no likeness", '{"brilliancy-of-the-sky": 1}'],
    ["JavaScript's spelling", '{"redHue": 1}'],
    ["a text", '{"exposure": "20"}'],
    ["null", '{"exposure": null}'],
    ["a list", '{"exposure": [20]}'],
    ["an object", '{"exposure": {}}'],
    ["a truth", '{"exposure": true}'],
    ["half a kelvin", '{"temperature": 6500.5}'],
    ["a number beyond the record's", '{"exposure": 1e39}'],
    ["a temperature beyond the record's", '{"temperature": 3000000000}'],
    ["a list of presets", "[]"],
    ["a number by itself", "5"],
    ["nothing but a text", '"evening"'],
    ["null by itself", "null"],
];
for (const [what, text] of refused) {
    test(`a preset with ${what} is refused in the command line's words`, () => {
        inFolder((folder) => {
            const file = `${folder}/preset.json`;
            writeFileSync(file, text);
            const { status, error } = commandLine("lut", "--preset", file, "-o", `${folder}/table.cube`);
            assert.notEqual(status, 0);
            assert.throws(() => library.readPreset(text, file), ({ message }) => {
                assert.ok(error.includes(message), `${JSON.stringify(message)} is not in ${JSON.stringify(error)}`);
                return true;
            });
        });
    });
}

test("a preset that is no JSON is a SyntaxError that names it", () => {
    for (const text of ["", "{", "{exposure: 20}", '{"exposure": 1e}']) {
        assert.throws(() => library.readPreset(text, "evening.json"),
            { name: "SyntaxError", message: /^evening\.json: not valid JSON: ./ });
    }
});
