#include "platform/Console.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <io.h>
#include <shellapi.h>
#include <stdio.h>

namespace keladjust::app::platform {
namespace {

std::string utf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back();  // the terminating zero
    return result;
}

}  // namespace

// What main() is given has lost every letter that the system's old code page lacks.
std::vector<std::string> arguments(int, char**) {
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> result;
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 1; values && index < count; ++index) result.push_back(utf8(values[index]));
    LocalFree(values);
    return result;
}

bool errorsGoToTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace keladjust::app::platform
