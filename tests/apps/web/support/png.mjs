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
        for (let i = 0; i < stride; ++i) {
            const a = i < channels ? 0 : rows[y * stride + i - channels];
            const b = y === 0 ? 0 : rows[(y - 1) * stride + i];
            const c = i < channels || y === 0 ? 0 : rows[(y - 1) * stride + i - channels];
            const p = a + b - c;
            const [pa, pb, pc] = [a, b, c].map((value) => Math.abs(p - value));
            const nearest = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
            const guess = [0, a, b, (a + b) >> 1, nearest][filter];
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
