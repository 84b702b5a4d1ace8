#include "platform/File.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>
#include <system_error>

#include "files/InputFile.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::app;
using keladjust::app::platform::File;
using keladjust::test::TemporaryFolder;

std::span<const unsigned char> bytesOf(std::string_view text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// The reason for which the system refuses.
template <class Call>
std::error_code refusalOf(Call call) {
    try {
        call();
    } catch (const std::system_error& error) {
        return error.code();
    }
    return {};
}

TEST(File, KeepsEveryByteOfWhatIsWritten) {
    const TemporaryFolder folder;
    File file = File::toCreate(folder / "a");
    file.write(bytesOf("line\r\n\n"));
    file.write({});
    file.write(bytesOf("\x1A after the end of a text"));
    file.flushToDisk();
    file.close();
    EXPECT_EQ(readFile(folder / "a"),
              (Bytes{'l', 'i', 'n', 'e', '\r', '\n', '\n', 0x1A, ' ', 'a', 'f',
                     't', 'e', 'r', ' ', 't',  'h',  'e',  ' ',  'e', 'n', 'd',
                     ' ', 'o', 'f', ' ', 'a',  ' ',  't',  'e',  'x', 't'}));
}

TEST(File, ReadsToItsEnd) {
    const TemporaryFolder folder;
    File::toCreate(folder / "a").write(bytesOf("abc"));
    File file = File::toRead(folder / "a");
    std::array<unsigned char, 2> room{};
    EXPECT_EQ(file.read(room), 2u);
    EXPECT_EQ(file.read(room), 1u);
    EXPECT_EQ(room[0], 'c');
    EXPECT_EQ(file.read(room), 0u);
}

TEST(File, TakesNoNameThatIsTaken) {
    const TemporaryFolder folder;
    File::toCreate(folder / "a").write(bytesOf("abc"));
    EXPECT_EQ(refusalOf([&] { File::toCreate(folder / "a"); }), std::errc::file_exists);
    EXPECT_EQ(readFile(folder / "a"), (Bytes{'a', 'b', 'c'}));
}

TEST(File, SaysWhyItCannotBeOpened) {
    const TemporaryFolder folder;
    EXPECT_EQ(refusalOf([&] { File::toRead(folder / "none"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(refusalOf([&] { File::toCreate(folder / "none" / "a"); }),
              std::errc::no_such_file_or_directory);
}

}  // namespace
