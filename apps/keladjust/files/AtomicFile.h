#ifndef KELADJUST_APP_FILES_ATOMICFILE_H
#define KELADJUST_APP_FILES_ATOMICFILE_H

#include <filesystem>
#include <span>
#include <string_view>

namespace keladjust::app {

/// A file that appears under its name only when it is complete: it grows beside its target under
/// another name and takes the target's place in one step. Without commit() nothing remains of it.
class AtomicFile {
public:
    explicit AtomicFile(std::filesystem::path target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// The name to write to until commit().
    const std::filesystem::path& temporary() const { return temporary_; }

    /// @throws Failure if the file cannot be written
    void write(std::span<const unsigned char> bytes);

    /// Puts the file in the target's place, with the permissions of what it replaces.
    ///
    /// @throws Failure if that is not possible
    void commit();

private:
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    bool committed_ = false;
};

/// Writes a whole file in one step.
void writeFile(const std::filesystem::path& target, std::span<const unsigned char> bytes);
void writeFile(const std::filesystem::path& target, std::string_view text);

}  // namespace keladjust::app

#endif
