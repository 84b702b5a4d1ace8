// PNG's check sum.

const table = Uint32Array.from({ length: 256 }, (_, byte) => {
    let crc = byte;
    for (let bit = 0; bit < 8; ++bit) crc = crc & 1 ? 0xedb88320 ^ (crc >>> 1) : crc >>> 1;
    return crc;
});

/** @param {Uint8Array} bytes */
export function crc32(bytes) {
    let crc = ~0;
    for (let i = 0; i < bytes.length; ++i) crc = table[(crc ^ bytes[i]) & 255] ^ (crc >>> 8);
    return ~crc >>> 0;
}
