// Writes the program's manual pages and the completions of shells, from the program's own options,
// to a folder: keladjust-manual FOLDER DATE. Part of the build, and not installed.

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "manual/Commands.h"
#include "manual/Completions.h"
#include "manual/ManualPage.h"

namespace {

void write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

int main(int count, char** values) {
    using namespace keladjust::app;
    try {
        if (count != 3) throw std::runtime_error("usage: keladjust-manual FOLDER DATE");
        const std::filesystem::path folder = values[1];
        for (const Command& command : commands()) {
            write(folder / "man" / (manualName(command) + ".1"), manualPage(command, values[2]));
        }
        write(folder / "bash" / "keladjust", bashCompletion());
        write(folder / "zsh" / "_keladjust", zshCompletion());
        write(folder / "fish" / "keladjust.fish", fishCompletion());
    } catch (const std::exception& error) {
        std::cerr << "keladjust-manual: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
