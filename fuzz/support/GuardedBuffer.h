#ifndef KELADJUST_FUZZ_SUPPORT_GUARDEDBUFFER_H
#define KELADJUST_FUZZ_SUPPORT_GUARDEDBUFFER_H

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace keladjust::fuzz {

/// Bytes between guards. AddressSanitizer stops whoever touches a guard, reading or writing; what
/// it does not see, such as a masked vector store, isIntact() does.
class GuardedBuffer {
public:
    /// @param offset of the first byte from an address that is a multiple of 64
    GuardedBuffer(const std::vector<std::uint8_t>& bytes, std::size_t offset)
        : size_(bytes.size()), storage_(guard + 128 + size_ + guard, guardByte) {
        const auto base = reinterpret_cast<std::uintptr_t>(storage_.data()) + guard;
        first_ = storage_.data() + guard + (64 - base % 64) % 64 + offset % 64;
        std::copy(bytes.begin(), bytes.end(), first_);
        ASAN_POISON_MEMORY_REGION(storage_.data(), before());
        ASAN_POISON_MEMORY_REGION(first_ + size_, behind());
    }
    ~GuardedBuffer() { unpoison(); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    std::uint8_t* data() { return first_; }
    std::size_t size() const { return size_; }

    /// False once a guard has changed; from here on guards may be touched.
    bool isIntact() {
        unpoison();
        const auto isGuard = [](std::uint8_t byte) { return byte == guardByte; };
        return std::all_of(storage_.data(), first_, isGuard) &&
               std::all_of(first_ + size_, storage_.data() + storage_.size(), isGuard);
    }

private:
    static constexpr std::size_t guard = 128;
    static constexpr std::uint8_t guardByte = 0xA5;

    std::size_t before() const { return static_cast<std::size_t>(first_ - storage_.data()); }
    std::size_t behind() const { return storage_.size() - before() - size_; }
    void unpoison() { ASAN_UNPOISON_MEMORY_REGION(storage_.data(), storage_.size()); }

    std::size_t size_;
    std::vector<std::uint8_t> storage_;
    std::uint8_t* first_;
};

}  // namespace keladjust::fuzz

#endif
