// What the page knows of picture files, in Node: pixels of PNG files against the command line's,
// metadata that is carried over, orientation, colour profiles, cube files.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { describe, test } from "node:test";
import { deflateSync } from "node:zlib";

import { levelText } from "../../../apps/web/src/engine/cube.js";
import { interpolate, latticeOf } from "../../../apps/web/src/engine/lattice.js";
import { paletteOf, spread } from "../../../apps/web/src/engine/palette.js";
import { crc32 } from "../../../apps/web/src/photo/crc32.js";
import { orientationOf, uprightExif } from "../../../apps/web/src/photo/exif.js";
import { readJpegHeader, withJpegMetadata } from "../../../apps/web/src/photo/jpeg.js";
import { forCanvas, upright } from "../../../apps/web/src/photo/pixels.js";
import { readPngHeader, readPngPixels, writePng } from "../../../apps/web/src/photo/png.js";
import { convert, spaceOf } from "../../../apps/web/src/photo/profile.js";
import { readWebpHeader, withWebpMetadata } from "../../../apps/web/src/photo/webp.js";
import { adobeRgb, exifWith } from "./support/metadata.mjs";
import { adjusted, freshName, small } from "./support/native.mjs";
import { readPng } from "./support/png.mjs";

describe("PNG", () => {
    const kinds = ["rgb24", "rgba", "gray", "ya8", "pal8", "monob", "rgb48be", "rgba64be", "gray16be", "ya16be"];
    for (const kind of kinds) {
        test(`pixels of ${kind} are the command line's`, async () => {
            const file = await small("nature/Dune.jpg", 61, 37, "png", "-pix_fmt", kind);
            const ours = await readPngPixels(new Uint8Array(readFileSync(file)));
            const theirs = await adjusted(file, {});
            assert.deepEqual(Buffer.from(forCanvas(ours)), theirs.rgba);
            assert.equal(ours.channels === 1, theirs.channels === 1);
            assert.equal(ours.hasAlpha, theirs.channels === 4);
        });
    }

    test("interlaced pixels are the command line's", async () => {
        for (const [width, height] of [[61, 37], [1, 1], [3, 2], [8, 9]]) {
            const plain = await small("nature/Dune.jpg", width, height);
            const file = freshName("png");
            writeFileSync(file, interlaced(readPng(readFileSync(plain))));
            const ours = await readPngPixels(new Uint8Array(readFileSync(file)));
            assert.deepEqual(Buffer.from(forCanvas(ours)), (await adjusted(file, {})).rgba);
        }
    });

    test("what is written reads as what it was, with its metadata", async () => {
        const exif = exifWith({ orientation: 1 });
        const icc = Uint8Array.from({ length: 5000 }, (_, i) => (i * i) & 255);
        for (const [channels, hasAlpha] of [[1, false], [4, false], [4, true]]) {
            const data = Uint8Array.from({ length: 31 * 17 * channels }, (_, i) =>
                channels === 4 && !hasAlpha && i % 4 === 3 ? 255 : (i * 7919) >> 3 & 255);
            const file = await writePng({ data, width: 31, height: 17, channels, hasAlpha }, { exif, icc });
            const read = readPng(Buffer.from(file));
            assert.deepEqual(read.rgba, Buffer.from(forCanvas({ data, channels })));
            const header = await readPngHeader(file);
            assert.deepEqual([header.exif, header.icc], [exif, icc]);
        }
    });
});

/** An interlaced file of eight bits RGB without filters, which neither ffmpeg nor the command line writes. */
function interlaced({ width, height, rgba }) {
    const rows = [];
    const passes = [[0, 0, 8, 8], [4, 0, 8, 8], [0, 4, 4, 8], [2, 0, 4, 4], [0, 2, 2, 4], [1, 0, 2, 2], [0, 1, 1, 2]];
    for (const [left, top, stepX, stepY] of passes) {
        for (let y = top; left < width && y < height; y += stepY) {
            const row = [0];
            for (let x = left; x < width; x += stepX) {
                row.push(...rgba.subarray(4 * (y * width + x), 4 * (y * width + x) + 3));
            }
            rows.push(Buffer.from(row));
        }
    }
    const chunk = (name, body) => {
        const whole = Buffer.concat([Buffer.alloc(4), Buffer.from(name, "latin1"), body, Buffer.alloc(4)]);
        whole.writeUInt32BE(body.length);
        whole.writeUInt32BE(crc32(whole.subarray(4, -4)), whole.length - 4);
        return whole;
    };
    const header = Buffer.from([0, 0, 0, width, 0, 0, 0, height, 8, 2, 0, 0, 1]);
    return Buffer.concat([
        Buffer.from("\x89PNG\r\n\x1a\n", "latin1"),
        chunk("IHDR", header),
        chunk("IDAT", deflateSync(Buffer.concat(rows))),
        chunk("IEND", Buffer.alloc(0)),
    ]);
}

describe("EXIF", () => {
    for (const little of [true, false]) {
        test(`is made to fit the upright picture, nothing in it moves (${little ? "II" : "MM"})`, () => {
            const before = exifWith({ orientation: 6, little });
            assert.equal(orientationOf(before), 6);
            const after = uprightExif(before, 1234, 987);
            assert.equal(after.length, before.length);
            assert.equal(orientationOf(after), 1);
            const view = new DataView(after.buffer);
            assert.deepEqual([view.getUint32(50, little), view.getUint32(62, little)], [1234, 987]);
            assert.equal(view.getUint32(34, little), 0, "no second folder");
            assert.ok(after.subarray(110, 130).every((byte) => byte === 0), "no thumbnail");
            assert.equal(orientationOf(before), 6, "the original is as it was");
        });
    }

    test("that makes no sense is left out, wherever it is cut off", () => {
        const whole = exifWith({ orientation: 6 });
        for (let length = 0; length < whole.length; ++length) {
            const cut = whole.slice(0, length);
            const orientation = orientationOf(cut);
            assert.ok(orientation === 1 || orientation === 6);
            const made = uprightExif(cut, 10, 10);
            if (made) assert.equal(orientationOf(made), 1);
        }
        assert.equal(uprightExif(new Uint8Array([1, 2, 3]), 10, 10), null);
    });

    test("turns a picture upright as the command line does", async () => {
        for (let orientation = 1; orientation <= 8; ++orientation) {
            const plain = await small("nature/Dune.jpg", 24, 16);
            const pixels = await readPngPixels(new Uint8Array(readFileSync(plain)));
            const file = freshName("png");
            writeFileSync(file, await writePng(pixels, { exif: exifWith({ orientation }), icc: null }));
            const theirs = await adjusted(file, {});
            const ours = upright(pixels, orientation);
            assert.deepEqual([ours.width, ours.height], [theirs.width, theirs.height]);
            assert.deepEqual(Buffer.from(forCanvas(ours)), theirs.rgba, `orientation ${orientation}`);
        }
    });
});

describe("JPEG and WebP", () => {
    const metadata = {
        exif: exifWith({ orientation: 1 }),
        // Longer than one segment of a JPEG file can be.
        icc: Uint8Array.from({ length: 150001 }, (_, i) => (i * 31) & 255),
    };
    for (const [extension, read, write] of [
        ["jpg", readJpegHeader, withJpegMetadata],
        ["webp", readWebpHeader, withWebpMetadata],
    ]) {
        test(`${extension}: metadata goes in and comes out, and the pixels stay`, async () => {
            const plain = await small("nature/Dune.jpg", 60, 38, extension);
            const file = new Uint8Array(readFileSync(plain));
            const written = write(file, metadata);
            const header = read(written);
            assert.deepEqual([header.exif, header.icc], [metadata.exif, metadata.icc]);
            assert.deepEqual([header.width, header.height], [60, 38]);
            const name = freshName(extension);
            writeFileSync(name, written);
            assert.deepEqual((await adjusted(name, {})).rgba, (await adjusted(plain, {})).rgba);
        });

        test(`${extension}: a file that is cut off is an error, never a picture`, async () => {
            const file = new Uint8Array(readFileSync(await small("nature/Dune.jpg", 60, 38, extension)));
            for (let length = 12; length < file.length - 1; length += 7) {
                assert.throws(() => read(file.slice(0, length)), /too early|no picture|no size|too short|should/);
            }
        });
    }
});

describe("Colour profiles", () => {
    test("none, and one that is cut off, mean the screen's own colours", () => {
        assert.deepEqual(spaceOf(null), { canvas: "srgb", conversion: null });
        for (let length = 0; length < adobeRgb.length - 30; length += 9) {
            assert.equal(spaceOf(adobeRgb.slice(0, length)).canvas, "srgb");
        }
    });

    test("another space is converted for the screen, to the same colours", () => {
        const { canvas, conversion } = spaceOf(adobeRgb);
        assert.equal(canvas, "display-p3");
        const before = [[0, 0, 0], [128, 128, 128], [255, 255, 255], [60, 120, 90], [200, 150, 40]];
        const colours = Uint8ClampedArray.from(before.flatMap((colour) => [...colour, 77]));
        convert(conversion, colours);
        const displayP3 = [[0.51512, 0.29198, 0.1571], [0.2412, 0.69225, 0.06657], [-0.00105, 0.04189, 0.78407]];
        const primaries = [[0.60974, 0.20528, 0.14919], [0.31111, 0.62567, 0.06322], [0.01947, 0.06087, 0.74457]];
        const light = (level) => (level <= 0.04045 ? level / 12.92 : ((level + 0.055) / 1.055) ** 2.4);
        const tristimulus = (matrix, linear) =>
            matrix.map((row) => row.reduce((sum, share, i) => sum + share * linear[i], 0));
        before.forEach((colour, i) => {
            const after = [...colours.subarray(4 * i, 4 * i + 3)];
            const wanted = tristimulus(primaries, colour.map((level) => (level / 255) ** 2.2));
            const shown = tristimulus(displayP3, after.map((level) => light(level / 255)));
            // Half a level is at most 0.0045 of the light, the table's steps are a tenth of that.
            wanted.forEach((value, k) =>
                assert.ok(Math.abs(value - shown[k]) < 0.005, `${colour} became ${after}`));
            assert.equal(colours[4 * i + 3], 77);
        });
    });
});

describe("Cube files", () => {
    test("levels have eight places, halves go to the even digit", () => {
        assert.equal(levelText(0), "0.00000000");
        assert.equal(levelText(-0), "-0.00000000");
        assert.equal(levelText(1), "1.00000000");
        assert.equal(levelText(1 / 512), "0.00195312");
        assert.equal(levelText(3 / 512), "0.00585938");
        assert.equal(levelText(-1 / 512), "-0.00195312");
        assert.equal(levelText(Math.fround(0.1)), "0.10000000");
        assert.equal(levelText(NaN), "nan");
    });
});

describe("A palette", () => {
    test("gives back the picture it was made of, and counts its pixels", () => {
        const words = Uint32Array.from({ length: 5003 }, (_, i) => Math.imul(i % 700, 0x01030507) >>> 0);
        const palette = paletteOf(words);
        assert.equal(palette.colours.length, 700);
        assert.equal(palette.weights.reduce((sum, weight) => sum + weight), words.length);
        const again = new Uint32Array(words.length);
        spread(palette, palette.colours, again);
        assert.deepEqual(again, words);
    });
});

describe("A lattice", () => {
    // Every grey, and colours all over the cube, each with another alpha.
    const colours = Uint32Array.from({ length: 20000 }, (_, i) =>
        i < 256 ? i * 0x01010101 : Math.imul(i, 0x9e3779b1));
    const lattice = latticeOf(colours);
    const told = (change) => {
        const result = colours.slice();
        interpolate(lattice, lattice.nodes.map(change), result);
        return result;
    };

    test("gives back the colours that it was made of", () => {
        assert.deepEqual(told((word) => word), colours);
    });

    test("tells what is linear from the corners, and keeps alpha", () => {
        const inverted = (word) => (word ^ 0xffffff) >>> 0;
        assert.deepEqual(told(inverted), colours.map(inverted));
        const turned = (word) =>
            ((word & 0xff000000) | ((word & 0xffff) << 8) | ((word >>> 16) & 255)) >>> 0;
        assert.deepEqual(told(turned), colours.map(turned));
    });

    test("keeps greys grey where corners that are grey stay so", () => {
        const curve = (word) => {
            const [red, green, blue] = [16, 8, 0].map((shift) => ((word >>> shift) & 255) ** 2 >> 8);
            const grey = red === green && green === blue;
            return grey ? (0xff000000 | (red * 0x10101)) >>> 0 : 0xff00ff00;
        };
        for (const word of told(curve).subarray(0, 256)) {
            assert.equal(word & 0xffffff, (word & 255) * 0x10101);
        }
    });
});
