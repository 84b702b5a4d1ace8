// Pictures with every level, many hues and all kinds of edge, in whole numbers alone: no two engines
// differ in those.

/** From 0 up to 220 and down again, once in two periods. */
const triangle = (at, period) => Math.floor((Math.abs((at % (2 * period)) - period) * 220) / period);

/** Bytes of a picture of that many channels: a wave of its own in each, and noise over all. */
export function waves(width, height, channels) {
    const data = new Uint8ClampedArray(width * height * channels);
    let state = 1;
    for (let i = 0; i < data.length; ++i) {
        const channel = i % channels;
        const pixel = (i - channel) / channels;
        const x = pixel % width;
        const y = (pixel - x) / width;
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        data[i] = triangle(x * (channel + 2) + y * (4 - channel) + 31 * channel, 97) + (state >>> 27);
    }
    return data;
}

/** The same with nothing to see through, as a canvas gives it back unchanged. */
export function opaqueWaves(width, height) {
    const data = waves(width, height, 4);
    for (let alpha = 3; alpha < data.length; alpha += 4) data[alpha] = 255;
    return data;
}
