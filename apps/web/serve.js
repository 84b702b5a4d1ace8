// Serves a folder at 127.0.0.1, to this machine alone: node serve.js FOLDER PORT

import { createReadStream } from "node:fs";
import { realpath, stat } from "node:fs/promises";
import { createServer } from "node:http";
import { extname, join, sep } from "node:path";
import { fileURLToPath } from "node:url";

const types = new Map([
    [".css", "text/css; charset=utf-8"],
    [".html", "text/html; charset=utf-8"],
    [".js", "text/javascript; charset=utf-8"],
    [".json", "application/json"],
    [".svg", "image/svg+xml"],
    [".wasm", "application/wasm"],
]);

/**
 * @param {string} folder
 * @param {number} port 0: any that is free
 * @returns {Promise<import("node:http").Server>} which listens
 */
export async function serve(folder, port) {
    const root = await realpath(folder);
    const server = createServer(async (request, response) => {
        try {
            const path = decodeURIComponent(new URL(request.url ?? "/", "http://localhost").pathname);
            const file = await realpath(join(root, path.endsWith("/") ? `${path}index.html` : path));
            if (!file.startsWith(root + sep) || !(await stat(file)).isFile()) throw new Error("not here");
            response.setHeader("Content-Type", types.get(extname(file)) ?? "application/octet-stream");
            response.setHeader("X-Content-Type-Options", "nosniff");
            response.setHeader("Cache-Control", "no-cache");
            createReadStream(file).pipe(response);
        } catch {
            response.writeHead(404).end();
        }
    });
    await new Promise((resolve, reject) => {
        server.once("error", reject).listen(port, "127.0.0.1", () => resolve(undefined));
    });
    return server;
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    const [folder, port] = process.argv.slice(2);
    const server = await serve(folder, Number(port));
    const address = server.address();
    const bound = address && typeof address === "object" ? address.port : port;
    console.log(`http://127.0.0.1:${bound}/ (Ctrl-C ends it)`);
}
