// The package as npm installs it: what is in it, how large it is, what it asks of the machine, what its
// types allow.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readdirSync, readFileSync, statSync, writeFileSync } from "node:fs";
import { fileURLToPath } from "node:url";
import { test } from "node:test";

import { load } from "./support/library.mjs";
import { inFolder } from "./support/native.mjs";
import { built, packageFolder, root } from "./support/paths.mjs";

const header = readFileSync(`${root}include/keladjust/keladjust.h`, "utf8");
const version = ["MAJOR", "MINOR", "PATCH"]
    .map((part) => header.match(new RegExp(`#define KELADJUST_VERSION_${part} (\\d+)`))[1])
    .join(".");
const archive = `${built}/keladjust-${version}.tgz`;
const here = fileURLToPath(new URL(".", import.meta.url));

function install(folder) {
    writeFileSync(`${folder}/package.json`, '{"private": true, "type": "module"}');
    execFileSync("npm", ["install", "--offline", "--no-audit", "--no-fund", "--silent", archive],
        { cwd: folder, stdio: "pipe" });
}

test("the version is the header's", async () => {
    assert.equal((await load()).version, version);
    assert.equal(JSON.parse(readFileSync(`${packageFolder}/package.json`, "utf8")).version, version);
});

test("all of it is less than 130,000 bytes", () => {
    assert.ok(statSync(archive).size < 130_000, `${statSync(archive).size} bytes`);
});

test("licence and instructions are in it", () => {
    const listed = execFileSync("tar", ["tzf", archive], { encoding: "utf8" }).split("\n");
    for (const name of ["LICENSE", "README.md", "package.json", "keladjust.wasm", "keladjust.d.ts", "settings.d.ts"]) {
        assert.ok(listed.includes(`package/${name}`), name);
    }
    assert.match(readFileSync(`${packageFolder}/LICENSE`, "utf8"), /MIT License[^]*The keladjust authors/);
});

test("there is one module, which shares no memory and asks for a handful of functions", async () => {
    const modules = readdirSync(packageFolder).filter((name) => name.endsWith(".wasm"));
    assert.deepEqual(modules, ["keladjust.wasm"]);
    const module = await WebAssembly.compile(readFileSync(`${packageFolder}/keladjust.wasm`));
    const imports = WebAssembly.Module.imports(module);
    assert.deepEqual(imports.filter(({ kind }) => kind !== "function").map(({ name }) => name), ["memory"]);
    assert.ok(imports.length < 12, JSON.stringify(imports));
    // An instance is refused a memory that differs in being shared.
    const shared = new WebAssembly.Memory({ initial: 64, maximum: 32768, shared: true });
    const functions = Object.fromEntries(["env", "keladjust", "wasi_snapshot_preview1"].map((from) => [from,
        Object.fromEntries(imports.filter((one) => one.module === from).map(({ name }) => [name, () => 0]))]));
    await assert.rejects(WebAssembly.instantiate(module, { ...functions, env: { ...functions.env, memory: shared } }),
        WebAssembly.LinkError);
});

test("it runs where no code is made of text", () => {
    inFolder((folder) => {
        install(folder);
        writeFileSync(`${folder}/host.js`, `
            import { load } from "keladjust";
            import { createWorkerClient } from "keladjust/worker";
            const keladjust = await load();
            const picture = { data: new Uint8Array(12).fill(90), width: 2, height: 2, order: "rgb" };
            console.log(keladjust.adjust(picture, { exposure: 50 }).data.join());
            const client = await createWorkerClient();
            console.log((await client.lut({}, 2)).length);`);
        const output = execFileSync("node", ["--disallow-code-generation-from-strings", "host.js"],
            { cwd: folder, encoding: "utf8" });
        // A client at rest keeps no program from its end.
        assert.equal(output, `${Array(12).fill(Math.trunc(90 * 2 ** 0.6)).join()}\n24\n`);
    });
});

function compileTypes(source) {
    return inFolder((folder) => {
        install(folder);
        writeFileSync(`${folder}/host.ts`, source);
        writeFileSync(`${folder}/tsconfig.json`, JSON.stringify({
            compilerOptions: {
                strict: true, exactOptionalPropertyTypes: true, noEmit: true, types: [],
                module: "nodenext", target: "es2022", lib: ["es2022", "dom"],
            },
        }));
        const compiler = `${here}node_modules/typescript/bin/tsc`;
        try {
            execFileSync("node", [compiler], { cwd: folder, encoding: "utf8", stdio: "pipe" });
            return [];
        } catch ({ stdout }) {
            return stdout.split("\n").filter((line) => line.includes("error TS"));
        }
    });
}

test("its types allow what it does", () => {
    assert.deepEqual(compileTypes(readFileSync(`${here}types/allowed.ts`, "utf8")), []);
});

test("its types refuse what it refuses", () => {
    // Each line that is marked is an error, and no other is.
    const source = readFileSync(`${here}types/refused.ts`, "utf8");
    const marked = source.split("\n").flatMap((line, index) => (line.includes("// refused") ? [index + 1] : []));
    const found = compileTypes(source).map((line) => Number(line.match(/^host\.ts\((\d+),/)[1]));
    assert.ok(marked.length > 5);
    assert.deepEqual(found, marked);
});
