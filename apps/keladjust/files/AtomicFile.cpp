#include "files/AtomicFile.h"

#include <array>
#include <charconv>
#include <mutex>
#include <random>
#include <system_error>
#include <utility>

#include "platform/FileNames.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

// Random, because several processes may write to one folder at a time.
std::filesystem::path nameBeside(const std::filesystem::path& target) {
    std::random_device random;
    const std::uint64_t number = (std::uint64_t{random()} << 32) | random();
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    std::filesystem::path name = target;
    name.replace_filename(".keladjust-" + std::string(digits.data(), end) + ".tmp");
    return name;
}

/// @param refused the name that the system did not take: the target's or the temporary one
Failure unwritable(const std::filesystem::path& target, const std::filesystem::path& refused,
                   const std::string& reason) {
    return Failure("cannot write " + textOf(target) + ": " +
                   platform::faultIn(refused).value_or(reason) + "; choose another place with -o");
}

std::mutex livingLock;
AtomicFile* living = nullptr;

}  // namespace

AtomicFile::AtomicFile(std::filesystem::path target) : target_(std::move(target)) {
    const std::lock_guard lock(livingLock);
    next_ = std::exchange(living, this);
}

AtomicFile::~AtomicFile() {
    const std::lock_guard lock(livingLock);
    AtomicFile** place = &living;
    while (*place != this) place = &(*place)->next_;
    *place = next_;
    removeTemporary();
}

void AtomicFile::abandonAll() noexcept {
    livingLock.lock();
    for (AtomicFile* file = living; file != nullptr; file = file->next_) file->removeTemporary();
}

void AtomicFile::removeTemporary() noexcept {
    file_.reset();  // Windows removes no open file
    if (temporary_.empty()) return;
    std::error_code ignored;
    // Windows removes no file that may not be written to, as one that was to replace such a one.
    std::filesystem::permissions(temporary_, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove(temporary_, ignored);
}

void AtomicFile::create() {
    while (!file_) {
        std::filesystem::path name = nameBeside(target_);
        try {
            const std::lock_guard lock(livingLock);
            file_.emplace(platform::File::toCreate(name));
            temporary_ = std::move(name);
        } catch (const std::system_error& error) {
            if (error.code() == std::errc::file_exists) continue;
            throw unwritable(target_, name, error.code().message());
        }
    }
}

void AtomicFile::write(std::span<const unsigned char> bytes) {
    create();
    try {
        file_->write(bytes);
    } catch (const std::system_error& error) {
        throw unwritable(target_, temporary_, error.code().message());
    }
}

void AtomicFile::commit() {
    std::error_code error;
    const auto replaced = std::filesystem::status(target_, error);
    if (std::filesystem::is_directory(replaced))
        throw unwritable(target_, target_, "it is a folder");
    try {
        if (std::filesystem::exists(replaced)) {
            std::filesystem::permissions(temporary_, replaced.permissions(), error);
            file_->flushToDisk();
        }
        file_->close();
    } catch (const std::system_error& failure) {
        throw unwritable(target_, temporary_, failure.code().message());
    }
    const std::lock_guard lock(livingLock);
    std::filesystem::rename(temporary_, target_, error);
    if (error) throw unwritable(target_, target_, error.message());
    temporary_.clear();
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
