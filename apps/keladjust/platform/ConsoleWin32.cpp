#include "platform/Console.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <io.h>
#include <shellapi.h>
#include <stdio.h>

#include <algorithm>
#include <filesystem>

namespace keladjust::app::platform {

namespace {

std::string utf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

/// The files that a pattern stands for, in order; what stands for none stays as it is. No file's
/// name holds * or ?, so nothing else is taken for a pattern.
std::vector<std::wstring> filesOf(const std::wstring& argument) {
    if (argument.find_first_of(L"*?") == std::wstring::npos) return {argument};
    const std::size_t name = std::filesystem::path(argument).filename().native().size();
    const std::wstring folder = argument.substr(0, argument.size() - name);
    std::vector<std::wstring> files;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(argument.c_str(), &found);
    for (BOOL more = search != INVALID_HANDLE_VALUE; more != FALSE;
         more = FindNextFileW(search, &found)) {
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!isFolder) files.push_back(folder + found.cFileName);
    }
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
    if (files.empty()) return {argument};
    std::ranges::sort(files);
    return files;
}

}  // namespace

// What main() is given has lost every letter that the system's old code page lacks.
std::vector<std::string> arguments(int, char**) {
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> result;
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 1; values != nullptr && index < count; ++index) {
        for (const std::wstring& file : filesOf(values[index])) result.push_back(utf8(file));
    }
    LocalFree(values);
    return result;
}

bool errorsGoToTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace keladjust::app::platform
