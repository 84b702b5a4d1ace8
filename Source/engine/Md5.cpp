#include "engine/Md5.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace keladjust {

namespace {

using State = std::array<std::uint32_t, 4>;

// Rotations of the four rounds.
constexpr int rotations[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

std::uint32_t sineConstant(int step) {
    return static_cast<std::uint32_t>(4294967296.0 * std::fabs(std::sin(step + 1.0)));
}

std::uint32_t wordAt(std::string_view block, int place) {
    std::uint32_t word = 0;
    for (int byte = 3; byte >= 0; --byte) {
        const int at = 4 * place + byte;
        word = word << 8 | static_cast<unsigned char>(block[static_cast<std::size_t>(at)]);
    }
    return word;
}

void addBlock(State& state, std::string_view block) {
    auto [a, b, c, d] = state;
    for (int step = 0; step < 64; ++step) {
        std::uint32_t mix = 0;
        int place = 0;
        switch (step / 16) {
            case 0:
                mix = (b & c) | (~b & d);
                place = step;
                break;
            case 1:
                mix = (d & b) | (~d & c);
                place = 5 * step + 1;
                break;
            case 2:
                mix = b ^ c ^ d;
                place = 3 * step + 5;
                break;
            default:
                mix = c ^ (b | ~d);
                place = 7 * step;
                break;
        }
        const std::uint32_t sum = a + mix + sineConstant(step) + wordAt(block, place % 16);
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, rotations[step / 16][step % 4]);
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

}  // namespace

std::string md5Hex(std::string_view text) {
    constexpr std::size_t blockSize = 64;
    constexpr std::size_t lengthSize = 8;
    std::string padded(text);
    padded += '\x80';
    while (padded.size() % blockSize != blockSize - lengthSize) padded += '\0';
    const std::uint64_t bits = std::uint64_t{text.size()} * 8;
    for (unsigned byte = 0; byte < lengthSize; ++byte) {
        padded += static_cast<char>(bits >> (8 * byte) & 0xFF);
    }

    State state{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    for (std::size_t begin = 0; begin < padded.size(); begin += blockSize) {
        addBlock(state, std::string_view(padded).substr(begin, blockSize));
    }

    constexpr const char* digits = "0123456789abcdef";
    std::string hex;
    for (const std::uint32_t word : state) {
        for (int shift = 0; shift < 32; shift += 8) {
            hex += digits[word >> (shift + 4) & 15];
            hex += digits[word >> shift & 15];
        }
    }
    return hex;
}

}  // namespace keladjust
