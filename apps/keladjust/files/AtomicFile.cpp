#include "files/AtomicFile.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <random>
#include <system_error>

#include "platform/FileNames.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

// Random, because several processes may write to one folder at a time.
std::filesystem::path nameBeside(const std::filesystem::path& target) {
    std::random_device random;
    std::filesystem::path candidate;
    std::error_code error;
    do {
        const std::uint64_t number = (std::uint64_t{random()} << 32) | random();
        std::array<char, 16> digits{};
        const auto end =
            std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
        candidate = target;
        candidate.replace_filename(".keladjust-" + std::string(digits.data(), end) + ".tmp");
    } while (std::filesystem::exists(candidate, error));
    return candidate;
}

/// @param refused the name that the system did not take: the target's or the temporary one
Failure unwritable(const std::filesystem::path& target, const std::filesystem::path& refused,
                   const std::string& reason) {
    return Failure("cannot write " + textOf(target) + ": " +
                   platform::faultIn(refused).value_or(reason) + "; choose another place with -o");
}

}  // namespace

AtomicFile::AtomicFile(std::filesystem::path target)
    : target_(std::move(target)), temporary_(nameBeside(target_)) {}

AtomicFile::~AtomicFile() {
    std::error_code ignored;
    if (committed_) return;
    // Windows removes no file that may not be written to, as one that was to replace such a one.
    std::filesystem::permissions(temporary_, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove(temporary_, ignored);
}

void AtomicFile::write(std::span<const unsigned char> bytes) {
    errno = 0;
    std::ofstream file(temporary_, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw unwritable(
            target_, temporary_,
            errno ? std::generic_category().message(errno) : std::string("the disk refused it"));
    }
}

void AtomicFile::commit() {
    std::error_code error;
    const auto replaced = std::filesystem::status(target_, error);
    if (std::filesystem::is_directory(replaced))
        throw unwritable(target_, target_, "it is a folder");
    if (std::filesystem::exists(replaced)) {
        std::filesystem::permissions(temporary_, replaced.permissions(), error);
    }
    std::filesystem::rename(temporary_, target_, error);
    if (error) throw unwritable(target_, target_, error.message());
    committed_ = true;
}

void writeFile(const std::filesystem::path& target, std::span<const unsigned char> bytes) {
    AtomicFile file(target);
    file.write(bytes);
    file.commit();
}

void writeFile(const std::filesystem::path& target, std::string_view text) {
    writeFile(target, std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
}

}  // namespace keladjust::app
