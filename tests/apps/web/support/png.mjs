// Reads the PNG files that the command line and the page write: eight bits, not interlaced. It shares
// nothing with the page's own reader.

import { inflateSync } from "node:zlib";

/**
 * @param {Buffer} file
 * @returns {{width: number, height: number, channels: number, rgba: Buffer, chunks: Map<string, Buffer>}}
 */
export function readPng(file) {
    /** @type {Map<string, Buffer>} */
    const chunks = new Map();
    for (let at = 8; at < file.length; ) {
        const length = file.readUInt32BE(at);
        const name = file.toString("latin1", at + 4, at + 8);
        const body = file.subarray(at + 8, at + 8 + length);
        chunks.set(name, Buffer.concat([chunks.get(name) ?? Buffer.alloc(0), body]));
        at += 12 + length;
    }
    const header = chunks.get("IHDR");
    const [width, height] = [header.readUInt32BE(0), header.readUInt32BE(4)];
    if (header[8] !== 8 || header[12] !== 0) throw new Error("not a plain PNG of eight bits");
    const channels = { 0: 1, 2: 3, 4: 2, 6: 4 }[header[9]];
    const packed = inflateSync(chunks.get("IDAT"));
    const stride = width * channels;
    const rows = Buffer.alloc(stride * height);
    for (let y = 0; y < height; ++y) {
        const filter = packed[y * (stride + 1)];
        const above = (y - 1) * stride;
        for (let i = 0; i < stride; ++i) {
            const left = i < channels ? 0 : rows[y * stride + i - channels];
            const up = y === 0 ? 0 : rows[above + i];
            const corner = i < channels || y === 0 ? 0 : rows[above + i - channels];
            let guess = 0;
            if (filter === 1) guess = left;
            else if (filter === 2) guess = up;
            else if (filter === 3) guess = (left + up) >> 1;
            else if (filter === 4) guess = nearest(left, up, corner);
            rows[y * stride + i] = packed[y * (stride + 1) + 1 + i] + guess;
        }
    }
    const rgba = Buffer.alloc(4 * width * height, 255);
    for (let i = 0; i < width * height; ++i) {
        for (let channel = 0; channel < 4; ++channel) {
            if (channel === 3 && channels !== 4) continue;
            rgba[4 * i + channel] = rows[i * channels + (channels === 1 ? 0 : channel)];
        }
    }
    return { width, height, channels, rgba, chunks };
}

/** Of the three the one that is nearest to left + up - corner; the first of several. */
function nearest(left, up, corner) {
    const sum = left + up - corner;
    const [toLeft, toUp, toCorner] = [Math.abs(sum - left), Math.abs(sum - up), Math.abs(sum - corner)];
    if (toLeft <= toUp && toLeft <= toCorner) return left;
    return toUp <= toCorner ? up : corner;
}
