// Where the WebAssembly module may come from, wherever the package runs.

import { kindOf } from "./checks.js";

async function compileResponse(response) {
    if (!response.ok) throw new Error(`${response.url} cannot be loaded: status ${response.status}`);
    // Compiled while it arrives, which servers that do not know the type stand in the way of.
    const type = response.headers.get("content-type") ?? "";
    if (type.startsWith("application/wasm")) return WebAssembly.compileStreaming(response);
    return WebAssembly.compile(await response.arrayBuffer());
}

/** @param read gets a file by its URL or its address as text: a Response, or its bytes */
export async function compile(wasm, read) {
    if (wasm instanceof WebAssembly.Module) return wasm;
    const source = typeof wasm === "string" || wasm instanceof URL ? await read(wasm) : await wasm;
    if (typeof Response === "function" && source instanceof Response) return compileResponse(source);
    if (source instanceof ArrayBuffer || ArrayBuffer.isView(source)) return WebAssembly.compile(source);
    throw new TypeError("options.wasm must be a URL, a Response, bytes or a WebAssembly.Module, not " +
        kindOf(source));
}
