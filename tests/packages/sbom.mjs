// Reads a list of what a package is made of with a tool that has not written it: that it is CycloneDX
// by its schema, that what it refers to is in it, and that it has these files and no others.
//
//     node sbom.mjs LIST FILE...

import { strict as assert } from "node:assert";
import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import { Spec, Validation } from "@cyclonedx/cyclonedx-library";

const [list, ...files] = process.argv.slice(2);
const text = readFileSync(list, "utf8");
const parsed = JSON.parse(text);
const validator = new Validation.JsonStrictValidator(Spec.Version.v1dot5);

assert.equal(await validator.validate(text), null);
// It does see what is wrong.
for (const wrong of [{ components: "many" }, { serialNumber: "7" }, { invented: true }]) {
    assert.notEqual(await validator.validate(JSON.stringify({ ...parsed, ...wrong })), null);
}

const own = parsed.metadata.component["bom-ref"];
const refs = [own, ...parsed.components.map(component => component["bom-ref"])];
assert.equal(new Set(refs).size, refs.length, "a component is there twice");
const reached = new Set([own]);
for (const { ref, dependsOn } of parsed.dependencies) {
    for (const name of [ref, ...dependsOn]) assert(refs.includes(name), `${name} is no component`);
    dependsOn.forEach(name => reached.add(name));
}
assert.deepEqual(refs.filter(ref => !reached.has(ref)), [], "nothing is made of these");

const listed = parsed.components.flatMap(component => component.hashes ?? []).map(hash => {
    assert.equal(hash.alg, "SHA-256");
    return hash.content;
});
const there = files.map(file => createHash("sha256").update(readFileSync(file)).digest("hex"));
assert(there.length > 0);
assert.deepEqual(listed.sort(), there.sort());
console.log(`${list} is CycloneDX ${parsed.specVersion}, with ${files.length} files and ` +
    `${parsed.components.length - files.length} packages`);
