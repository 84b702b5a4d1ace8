// Pages that are built with bundlers, in Chromium.

import assert from "node:assert/strict";
import { cpSync, mkdirSync, mkdtempSync, rmSync, symlinkSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";

import * as esbuild from "esbuild";
import * as vite from "vite";

import { resultsOf } from "./support/browsers.mjs";
import { packageFolder } from "./support/paths.mjs";
import { serveFolders } from "./support/server.mjs";

const folder = mkdtempSync(join(tmpdir(), "keladjust-web-"));
after(() => rmSync(folder, { recursive: true }));
cpSync(fileURLToPath(new URL("bundled", import.meta.url)), folder, { recursive: true });
mkdirSync(`${folder}/node_modules`);
symlinkSync(packageFolder, `${folder}/node_modules/keladjust`);

const lighter = Array(12).fill(Math.trunc(90 * 2 ** 0.6));

async function expectWorks(out, page) {
    const server = await serveFolders({ "": out });
    try {
        assert.deepEqual(await resultsOf("Chromium", `${server.address}/${page}`), [lighter, lighter]);
    } finally {
        server.close();
    }
}

test("esbuild", async () => {
    await esbuild.build({
        absWorkingDir: folder,
        entryPoints: ["esbuild.js", "esbuild-worker.js"],
        bundle: true,
        format: "esm",
        loader: { ".wasm": "file" },
        outdir: "esbuild",
        logLevel: "warning",
    });
    cpSync(`${folder}/esbuild.html`, `${folder}/esbuild/esbuild.html`);
    await expectWorks(`${folder}/esbuild`, "esbuild.html");
});

test("Vite", async () => {
    await vite.build({
        root: folder,
        logLevel: "warn",
        worker: { format: "es" },
        build: { outDir: "vite", rollupOptions: { input: `${folder}/vite.html` } },
    });
    await expectWorks(`${folder}/vite`, "vite.html");
});
