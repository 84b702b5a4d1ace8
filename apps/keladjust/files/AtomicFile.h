#ifndef KELADJUST_APP_FILES_ATOMICFILE_H
#define KELADJUST_APP_FILES_ATOMICFILE_H

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

#include "platform/File.h"

namespace keladjust::app {

/// A file that appears under its name only when it is complete: it grows beside its target under
/// another name and takes the target's place in one step. Without commit() nothing remains of it.
class AtomicFile {
public:
    explicit AtomicFile(std::filesystem::path target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Once.
    ///
    /// @throws Failure if the file cannot be written
    void write(std::span<const unsigned char> bytes);

    /// Puts the file in the target's place, with the permissions of what it replaces. That is gone
    /// only when the new one is on the disk.
    ///
    /// @throws Failure if that is not possible
    void commit();

    /// Removes what all that live have begun, for a program that ends in the middle of its work:
    /// none begins or commits after that, and who tries waits for the end. Needs no memory.
    static void abandonAll() noexcept;

private:
    void create();
    void removeTemporary() noexcept;

    std::filesystem::path target_;
    std::filesystem::path temporary_;  // empty: there is none
    std::optional<platform::File> file_;
    AtomicFile* next_ = nullptr;  // of all that live
};

/// Writes a whole file in one step.
void writeFile(const std::filesystem::path& target, std::span<const unsigned char> bytes);
void writeFile(const std::filesystem::path& target, std::string_view text);

}  // namespace keladjust::app

#endif
