// npm's other packages at the library's work: each gets raw RGBA pixels and gives raw RGBA pixels, on
// one thread. Every one does what it has that is nearest; none is asked to give the library's bytes.

import * as photon from "@silvia-odwyer/photon-node";
import { Jimp } from "jimp";
import sharp from "sharp";
import Vips from "wasm-vips";

/** The 3 x 3 kernel that adds half of the Laplacian. */
const kernel = [[0, -0.5, 0], [-0.5, 3, -0.5], [0, -0.5, 0]];

/** The jobs of one package, which `run` makes of its changes, one after another. */
function jobsOf(run, [lighten, contrast, saturate, sharpen]) {
    return {
        exposure: run(lighten),
        contrast: run(contrast),
        saturation: run(saturate),
        sharpen: run(sharpen),
        "all four": run(lighten, contrast, saturate, sharpen),
    };
}

function jimp({ width, height }) {
    const run = (...changes) => (pixels) => {
        const image = Jimp.fromBitmap({ data: Buffer.from(pixels), width, height });
        for (const change of changes) change(image);
        return image.bitmap.data;
    };
    const lighten = (image) => image.brightness(1.25);
    const contrast = (image) => image.contrast(0.15);
    const saturate = (image) => image.color([{ apply: "saturate", params: [30] }]);
    const sharpen = (image) => image.convolute(kernel);
    return jobsOf(run, [lighten, contrast, saturate, sharpen]);
}

function photonNode({ width, height }) {
    const run = (...changes) => (pixels) => {
        const bytes = new Uint8Array(pixels.buffer, pixels.byteOffset, pixels.length);
        const image = new photon.PhotonImage(bytes, width, height);
        for (const change of changes) change(image);
        const changed = image.get_raw_pixels();
        image.free();
        return changed;
    };
    const lighten = (image) => photon.adjust_brightness(image, 40);
    const contrast = (image) => photon.adjust_contrast(image, 15);
    const saturate = (image) => photon.saturate_hsl(image, 0.3);
    const sharpen = (image) => photon.sharpen(image);
    return jobsOf(run, [lighten, contrast, saturate, sharpen]);
}

async function wasmVips({ width, height }) {
    const vips = await Vips();
    vips.concurrency(1);
    const run = (...changes) => (pixels) => {
        let image = vips.Image.newFromMemory(pixels, width, height, 4, "uchar").copy({ interpretation: "srgb" });
        for (const change of changes) image = change(image);
        return image.cast("uchar").writeToMemory();
    };
    const lighten = (image) => image.linear([1.25, 1.25, 1.25, 1], [0, 0, 0, 0], { uchar: true });
    const contrast = (image) => image.linear([1.15, 1.15, 1.15, 1], [-19, -19, -19, 0], { uchar: true });
    const saturate = (image) => image.colourspace("lch").linear([1, 1.3, 1, 1], [0, 0, 0, 0]).colourspace("srgb");
    const sharpen = (image) => image.conv(vips.Image.newFromArray(kernel));
    return jobsOf(run, [lighten, contrast, saturate, sharpen]);
}

function sharpNative({ width, height }) {
    sharp.concurrency(1);
    sharp.cache(false);
    const run = (...changes) => (pixels) =>
        changes.reduce((image, change) => change(image), sharp(pixels, { raw: { width, height, channels: 4 } }))
            .raw().toBuffer();
    const lighten = (image) => image.linear([1.25, 1.25, 1.25, 1], [0, 0, 0, 0]);
    const contrast = (image) => image.linear([1.15, 1.15, 1.15, 1], [-19, -19, -19, 0]);
    const saturate = (image) => image.modulate({ saturation: 1.3 });
    const sharpen = (image) => image.convolve({ width: 3, height: 3, kernel: kernel.flat() });
    return {
        ...jobsOf(run, [lighten, contrast, saturate, sharpen]),
        // One linear change for both, as it allows but one in a pipeline.
        "all four": run((image) => sharpen(saturate(
            image.linear([1.4375, 1.4375, 1.4375, 1], [-19, -19, -19, 0])))),
    };
}

export const peers = {
    "jimp": jimp,
    "@silvia-odwyer/photon-node": photonNode,
    "wasm-vips": wasmVips,
    "sharp (native)": sharpNative,
};

/** The library's settings for the same. */
export const work = {
    exposure: { exposure: 27 },
    contrast: { contrast: 15 },
    saturation: { saturation: 30 },
    sharpen: { sharpen: 127 },
    "all four": { exposure: 27, contrast: 15, saturation: 30, sharpen: 127 },
};
