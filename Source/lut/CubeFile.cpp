#include "lut/CubeFile.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "arithmetic/BitCast.h"

namespace keladjust {

namespace {

// A sign, the 39 digits of the largest float, the point and 8 decimals.
constexpr std::size_t longestNumber = 1 + 39 + 1 + 8;
constexpr std::size_t longestLine = 3 * (longestNumber + 1);

constexpr std::string_view header =
    "#LUT size\n"
    "LUT_3D_SIZE 32\n\n"
    "#data domain\n"
    "DOMAIN_MIN 0.0 0.0 0.0\n"
    "DOMAIN_MAX 1.0 1.0 1.0\n\n"
    "#LUT data points\n";

constexpr std::uint64_t decimalScale = 100'000'000;

// |value| x 10^8, rounded half to even, of a number with bits behind the binary point: those are
// the magnitudes below 2^23, and for them the product is exact in 64 bits.
std::uint64_t scaledMagnitude(std::uint32_t bits) {
    const std::uint32_t biasedExponent = bits >> 23 & 0xFF;
    const std::uint32_t fraction = bits & 0x7FFFFF;
    const std::uint64_t significand = biasedExponent == 0 ? fraction : fraction | 0x800000;
    const std::uint32_t shift = 150 - (biasedExponent == 0 ? 1 : biasedExponent);
    if (shift >= 64) return 0;  // below 2^-40

    const std::uint64_t product = significand * decimalScale;
    const std::uint64_t whole = product >> shift;
    const std::uint64_t rest = product & ((std::uint64_t{1} << shift) - 1);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    const bool up = rest > half || (rest == half && (whole & 1) != 0);
    return whole + (up ? 1 : 0);
}

// The lowest digits of a number, leading zeros among them.
template <int count>
char* putDigits(char* out, std::uint32_t number) {
    for (int place = count - 1; place >= 0; --place, number /= 10) {
        out[place] = static_cast<char>('0' + number % 10);
    }
    return out + count;
}

// The magnitude of a number without bits behind the binary point, in groups of nine digits of which
// the lowest come first. std::to_chars() of floating-point numbers would do, where there is one.
class WholeMagnitude {
public:
    explicit WholeMagnitude(std::uint32_t bits) : groups_{(bits & 0x7FFFFF) | 0x800000} {
        for (std::uint32_t doublings = (bits >> 23 & 0xFF) - 150; doublings > 0; --doublings) {
            std::uint32_t carry = 0;
            for (std::uint32_t& group : groups_) {
                group = 2 * group + carry;
                carry = group / groupEnd;
                group %= groupEnd;
            }
        }
    }

    char* append(char* out) const {
        std::size_t group = groups_.size() - 1;
        while (groups_[group] == 0) --group;
        out = std::to_chars(out, out + digitsPerGroup, groups_[group]).ptr;
        while (group > 0) out = putDigits<digitsPerGroup>(out, groups_[--group]);
        return out;
    }

private:
    static constexpr int digitsPerGroup = 9;
    static constexpr std::uint32_t groupEnd = 1'000'000'000;

    std::array<std::uint32_t, 5> groups_;
};

char* appendText(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

// Fixed-point notation with 8 decimals: the exact value, rounded half to even.
char* appendNumber(char* out, float value) {
    if (std::isnan(value)) return appendText(out, "nan");  // never with a sign
    const auto bits = bitCast<std::uint32_t>(value);
    if (bits >> 31 != 0) *out++ = '-';  // negative zero, too
    if (std::isinf(value)) return appendText(out, "inf");
    if (!(std::fabs(value) < 8388608.0f)) {
        return appendText(WholeMagnitude(bits).append(out), ".00000000");
    }
    const std::uint64_t scaled = scaledMagnitude(bits);
    out = std::to_chars(out, out + longestNumber, scaled / decimalScale).ptr;
    *out++ = '.';
    return putDigits<8>(out, static_cast<std::uint32_t>(scaled % decimalScale));
}

}  // namespace

CubeFile::CubeFile(const char* path) {
    if (path == nullptr) {
        std::fputs("Path cannot be NULL!\n", stdout);
        return;
    }
    // Text mode: line ends are the platform's.
    file_.reset(std::fopen(path, "wt+"));
    if (!isOpen()) {
        std::fputs("Cannot open the path file!\n", stdout);
        return;
    }
    appendText(block_.data(), header);
    used_ = header.size();
}

CubeFile::~CubeFile() {
    if (isOpen()) flush();
}

void CubeFile::writeColour(float red, float green, float blue) {
    if (block_.size() - used_ < longestLine) flush();
    char* out = block_.data() + used_;
    out = appendNumber(out, red);
    *out++ = ' ';
    out = appendNumber(out, green);
    *out++ = ' ';
    out = appendNumber(out, blue);
    *out++ = '\n';
    used_ = static_cast<std::size_t>(out - block_.data());
}

void CubeFile::flush() {
    std::fwrite(block_.data(), 1, used_, file_.get());
    used_ = 0;
}

}  // namespace keladjust
