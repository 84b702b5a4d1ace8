import file from "keladjust/keladjust.wasm";

import { adjustBoth } from "./app.js";

const wasm = new URL(file, import.meta.url);
const worker = () => new Worker(new URL("esbuild-worker.js", import.meta.url), { type: "module" });
window.results = adjustBoth({ load: { wasm }, client: { wasm, worker } });
