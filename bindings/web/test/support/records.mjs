// Records from every part of the library, by the names of the command line.

export const records = {
    "exposure": { exposure: 20 },
    "temperature and tint": { temperature: 14000, tint: -12 },
    "eleven settings": {
        temperature: 12500, tint: 8, exposure: 15, brightness: -6, contrast: 15, vibrance: 30,
        saturation: 12, highlights: -40, shadows: 35, whites: 10, blacks: -15,
    },
    "three colour ranges": {
        "red-hue": 14, "orange-saturation": 30, "blue-hue": -20, "blue-saturation": 25, "blue-brightness": -30,
    },
    "clarity and sharpening": { clarity: 40, sharpen: 120 },
    "vignette": { "vignette-amount": -60, "vignette-size": 70, "vignette-feather": 45, "vignette-highlights": 80 },
    "lens": { distortion: 18, fringing: -35 },
    "dehaze and diffuse": { dehaze: 45, diffuse: 30 },
    "noise reduction": { "colour-noise-reduction": 25, "luminance-noise-reduction": 15 },
    "a little of everything": {
        temperature: 10200, exposure: -8, contrast: -20, vibrance: 25, clarity: -15, sharpen: 30,
        "green-hue": 25, "magenta-brightness": 40, "aqua-saturation": -60, "vignette-amount": 30,
        distortion: -7, fringing: 12, dehaze: -20, diffuse: 10, "colour-noise-reduction": 10,
    },
};
