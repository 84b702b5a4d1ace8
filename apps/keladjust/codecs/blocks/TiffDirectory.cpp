#include "codecs/blocks/TiffDirectory.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

namespace keladjust::app {

namespace {

constexpr std::size_t recordSize = 12;

/// Bytes of one number of each type; those of a type's numbers are swapped together.
struct TypeSize {
    std::size_t number;
    std::size_t whole;
};

constexpr std::array<TypeSize, 14> typeSizes = {{
    {0, 0},  // not defined
    {1, 1},  // BYTE
    {1, 1},  // ASCII
    {2, 2},  // SHORT
    {4, 4},  // LONG
    {4, 8},  // RATIONAL
    {1, 1},  // SBYTE
    {1, 1},  // UNDEFINED
    {2, 2},  // SSHORT
    {4, 4},  // SLONG
    {4, 8},  // SRATIONAL
    {4, 4},  // FLOAT
    {8, 8},  // DOUBLE
    {4, 4},  // IFD
}};

TypeSize sizeOf(std::uint16_t type) {
    return type < typeSizes.size() ? typeSizes[type] : TypeSize{0, 0};
}

// How many values an entry has; none of a type that is not known.
std::uint32_t countOf(const TiffEntry& entry) {
    const std::size_t size = sizeOf(entry.type).whole;
    return size == 0 ? 0 : static_cast<std::uint32_t>(entry.value.size() / size);
}

bool pointsToDirectory(std::uint16_t tag) {
    return tag == tagExif || tag == tagGps || tag == tagInteroperability;
}

std::uint32_t number(std::span<const unsigned char> bytes, ByteOrder order) {
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const std::size_t from = order == ByteOrder::big ? index : bytes.size() - 1 - index;
        value = value << 8 | bytes[from];
    }
    return value;
}

void put(Bytes& bytes, std::size_t position, std::uint32_t value, std::size_t size,
         ByteOrder order) {
    for (std::size_t index = 0; index < size; ++index) {
        const std::size_t shift = 8 * (order == ByteOrder::little ? index : size - 1 - index);
        bytes[position + index] = static_cast<unsigned char>(value >> shift);
    }
}

class DirectoryReader {
public:
    DirectoryReader(std::span<const unsigned char> bytes, ByteOrder order)
        : bytes_(bytes), order_(order), left_(bytes.size()) {}

    std::uint32_t number32(std::size_t position) const {
        return number(bytes_.subspan(position, 4), order_);
    }

    /// The entries at `position`, and where it says what comes next (0: nowhere).
    TiffDirectory directory(std::size_t position, std::size_t& nextLink, int depth = 0) {
        TiffDirectory entries;
        nextLink = 0;
        // Nothing stands in the header; and directories may point to each other in a ring.
        constexpr int deepest = 3;
        if (depth == deepest || position < 8 || position + 2 > bytes_.size()) return entries;
        const std::size_t count = number(bytes_.subspan(position, 2), order_);
        const std::size_t end = position + 2 + count * recordSize;
        if (end > bytes_.size()) return entries;
        for (std::size_t record = position + 2; record < end; record += recordSize) {
            addEntry(entries, record, depth);
        }
        if (end + 4 <= bytes_.size()) nextLink = end;
        return entries;
    }

private:
    void addEntry(TiffDirectory& entries, std::size_t record, int depth) {
        TiffEntry entry;
        entry.tag = static_cast<std::uint16_t>(number(bytes_.subspan(record, 2), order_));
        entry.type = static_cast<std::uint16_t>(number(bytes_.subspan(record + 2, 2), order_));
        entry.record = record;
        const std::uint64_t size = std::uint64_t{number32(record + 4)} * sizeOf(entry.type).whole;
        const std::size_t position = size <= 4 ? record + 8 : number32(record + 8);
        // All values together are no more than the bytes, unless they overlap to look like more.
        if (size == 0 || position > bytes_.size() || size > bytes_.size() - position ||
            size > left_) {
            return;
        }
        left_ -= static_cast<std::size_t>(size);
        const auto value = bytes_.subspan(position, static_cast<std::size_t>(size));
        entry.value.assign(value.begin(), value.end());
        if (pointsToDirectory(entry.tag)) {
            std::size_t nextLink = 0;
            entry.directory = directory(numberIn(entry, order_), nextLink, depth + 1);
            if (entry.directory.empty()) return;
        }
        entries.push_back(std::move(entry));
    }

    std::span<const unsigned char> bytes_;
    ByteOrder order_;
    std::size_t left_;
};

}  // namespace

TiffStructure::TiffStructure(std::span<const unsigned char> bytes) {
    if (bytes.size() < 8) return;
    constexpr std::array<unsigned char, 4> littleStart = {'I', 'I', 42, 0};
    constexpr std::array<unsigned char, 4> bigStart = {'M', 'M', 0, 42};
    const bool little = std::ranges::equal(bytes.first(4), littleStart);
    if (!little && !std::ranges::equal(bytes.first(4), bigStart)) return;
    order = little ? ByteOrder::little : ByteOrder::big;
    DirectoryReader reader(bytes, order);
    first = reader.directory(reader.number32(4), nextLink);
    if (nextLink != 0) {
        std::size_t last = 0;
        second = reader.directory(reader.number32(nextLink), last);
    }
}

std::uint32_t numberIn(const TiffEntry& entry, ByteOrder order) {
    const std::size_t size = sizeOf(entry.type).whole;
    const bool whole = entry.type == typeShort || entry.type == typeLong || entry.type == 13;
    return whole && entry.value.size() == size ? number(entry.value, order) : 0;
}

void put16(Bytes& bytes, std::size_t position, std::uint16_t value, ByteOrder order) {
    put(bytes, position, value, 2, order);
}

void put32(Bytes& bytes, std::size_t position, std::uint32_t value, ByteOrder order) {
    put(bytes, position, value, 4, order);
}

void swapNumbers(TiffEntry& entry) {
    const auto size = static_cast<std::ptrdiff_t>(sizeOf(entry.type).number);
    for (auto start = entry.value.begin(); entry.value.end() - start >= size; start += size) {
        std::reverse(start, start + size);
    }
    std::ranges::for_each(entry.directory, swapNumbers);
}

std::uint32_t append(Bytes& bytes, TiffDirectory directory, ByteOrder order) {
    // Readers look for tags in their order.
    std::ranges::stable_sort(directory, {}, &TiffEntry::tag);
    bytes.resize(bytes.size() + bytes.size() % 2);
    const std::size_t start = bytes.size();
    bytes.resize(start + 2 + directory.size() * recordSize + 4);
    put16(bytes, start, static_cast<std::uint16_t>(directory.size()), order);
    std::size_t record = start + 2;
    for (TiffEntry& entry : directory) {
        put16(bytes, record, entry.tag, order);
        if (!entry.directory.empty()) {
            put16(bytes, record + 2, typeLong, order);
            put32(bytes, record + 4, 1, order);
            const std::uint32_t position = append(bytes, std::move(entry.directory), order);
            put32(bytes, record + 8, position, order);
        } else {
            put16(bytes, record + 2, entry.type, order);
            put32(bytes, record + 4, countOf(entry), order);
            if (entry.value.size() <= 4) {
                std::ranges::copy(entry.value,
                                  bytes.begin() + static_cast<std::ptrdiff_t>(record + 8));
            } else {
                bytes.resize(bytes.size() + bytes.size() % 2);
                put32(bytes, record + 8, static_cast<std::uint32_t>(bytes.size()), order);
                bytes.insert(bytes.end(), entry.value.begin(), entry.value.end());
            }
        }
        record += recordSize;
    }
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("TIFF counts in 32 bits");
    }
    return static_cast<std::uint32_t>(start);
}

}  // namespace keladjust::app
