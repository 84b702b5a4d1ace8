// Serves folders over HTTP on this machine, under the strictest policy that allows WebAssembly: no code
// from text, nothing from elsewhere, no headers that isolate the page.

import { createReadStream, statSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";

const types = {
    ".html": "text/html; charset=utf-8",
    ".js": "text/javascript; charset=utf-8",
    ".mjs": "text/javascript; charset=utf-8",
    ".wasm": "application/wasm",
};

/** @param folders by the first part of their addresses; "" for all others */
export async function serveFolders(folders) {
    const server = createServer((request, response) => {
        const [, first, ...rest] = normalize(decodeURIComponent(new URL(request.url, "http://host").pathname)).split("/");
        const named = Object.hasOwn(folders, first);
        const file = named ? join(folders[first], ...rest) : join(folders[""] ?? "/nowhere", first, ...rest);
        if (!statSync(file, { throwIfNoEntry: false })?.isFile()) {
            response.writeHead(404).end();
            return;
        }
        response.writeHead(200, {
            "Content-Type": types[extname(file)] ?? "application/octet-stream",
            "Content-Security-Policy": "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; " +
                "connect-src 'self'; worker-src 'self'",
        });
        createReadStream(file).pipe(response);
    });
    await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
    return {
        address: `http://127.0.0.1:${server.address().port}`,
        close: () => server.close(),
    };
}
