// EXIF data and colour profiles as cameras and editors write them.

/** A TIFF structure with an orientation, a size, an EXIF folder and a thumbnail, in either order of bytes. */
export function exifWith({ orientation, little = true }) {
    const tiff = Buffer.alloc(140);
    const u16 = (value, at) => (little ? tiff.writeUInt16LE(value, at) : tiff.writeUInt16BE(value, at));
    const u32 = (value, at) => (little ? tiff.writeUInt32LE(value, at) : tiff.writeUInt32BE(value, at));
    const entry = (at, tag, type, value) => {
        u16(tag, at);
        u16(type, at + 2);
        u32(1, at + 4);
        if (type === 3) u16(value, at + 8);
        else u32(value, at + 8);
    };
    tiff.write(little ? "II*\0" : "MM\0*", "latin1");
    u32(8, 4);
    u16(2, 8);
    entry(10, 0x0112, 3, orientation);
    entry(22, 0x8769, 4, 40);
    u32(70, 34);
    u16(2, 40);
    entry(42, 0xa002, 4, 4000);
    entry(54, 0xa003, 4, 3000);
    u16(2, 70);
    entry(72, 0x0201, 4, 110);
    entry(84, 0x0202, 4, 20);
    tiff.fill(0x55, 110, 130);
    return new Uint8Array(tiff);
}

/** A profile of a matrix and one curve of an exponent, as cameras and editors embed it. */
function profileWith(columns, gamma) {
    const icc = Buffer.alloc(300);
    icc.writeUInt32BE(icc.length);
    icc.write("RGB ", 16, "latin1");
    icc.write("acsp", 36, "latin1");
    icc.writeUInt32BE(6, 128);
    ["rXYZ", "gXYZ", "bXYZ"].forEach((name, i) => {
        const at = 210 + 20 * i;
        icc.write(name, 132 + 12 * i, "latin1");
        icc.writeUInt32BE(at, 136 + 12 * i);
        icc.writeUInt32BE(20, 140 + 12 * i);
        icc.write("XYZ ", at, "latin1");
        columns[i].forEach((value, k) => icc.writeInt32BE(Math.round(value * 65536), at + 8 + 4 * k));
    });
    ["rTRC", "gTRC", "bTRC"].forEach((name, i) => {
        icc.write(name, 168 + 12 * i, "latin1");
        icc.writeUInt32BE(270, 172 + 12 * i);
        icc.writeUInt32BE(14, 176 + 12 * i);
    });
    icc.write("curv", 270, "latin1");
    icc.writeUInt32BE(1, 278);
    icc.writeUInt16BE(Math.round(gamma * 256), 282);
    return new Uint8Array(icc);
}

/** Adobe RGB (1998): its published primaries under D50, and its exponent. */
export const adobeRgb = profileWith(
    [[0.60974, 0.31111, 0.01947], [0.20528, 0.62567, 0.06087], [0.14919, 0.06322, 0.74457]], 2.2);
