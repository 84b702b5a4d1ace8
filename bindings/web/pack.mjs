// Puts the npm package together in build/web/package and packs it: the JavaScript beside this file,
// the module that was built, and what the module itself says of its version and its settings.
//
//   node bindings/web/pack.mjs

import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { fileURLToPath } from "node:url";

const here = fileURLToPath(new URL(".", import.meta.url));
const root = fileURLToPath(new URL("../../", import.meta.url));
const built = `${root}build/web`;
const folder = `${built}/package`;

rmSync(folder, { recursive: true, force: true });
mkdirSync(folder, { recursive: true });
cpSync(`${here}package`, folder, { recursive: true });
cpSync(`${built}/bin/keladjust.wasm`, `${folder}/keladjust.wasm`);
cpSync(`${root}LICENSE`, `${folder}/LICENSE`);

const { load } = await import(`${folder}/node.js`);
const library = await load();

const usefulRange = ({ lowest, highest, identity }) => `${lowest}..${highest}; identity ${identity}`;
const members = library.settings.map((setting) =>
    `    /** ${setting.label} (${setting.group}): ${setting.help}. ${usefulRange(setting)}. */\n` +
    `    ${setting.key}?: number;\n`);
writeFileSync(`${folder}/settings.d.ts`,
    `${readFileSync(`${here}settings.d.ts`, "utf8")}
/** The settings of this version. */
export interface NamedSettings {
${members.join("")}}
`);

const description = JSON.parse(readFileSync(`${here}package.json`, "utf8"));
writeFileSync(`${folder}/package.json`,
    `${JSON.stringify({ ...description, version: library.version }, null, 4)}\n`);
const packed = execFileSync("npm", ["pack", "--silent", "--pack-destination", built],
    { cwd: folder, encoding: "utf8" });
console.log(`build/web/${packed.trim()}`);
