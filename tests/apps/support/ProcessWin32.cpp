#include "support/Process.h"
#include "text/PathText.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <stdexcept>

namespace keladjust::test {

namespace {

/// As programs take their command line apart: a backslash stands for itself but before a quote.
std::wstring quoted(const std::wstring& text) {
    std::wstring result = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : text) {
        if (letter == L'"') result.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        result += letter;
    }
    return result.append(backslashes, L'\\') + L'"';
}

/// A new file that a child process writes to.
class OutputFile {
public:
    explicit OutputFile(const std::filesystem::path& path) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        handle_ = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE) {
            throw std::runtime_error("cannot write " + app::textOf(path));
        }
    }
    ~OutputFile() { CloseHandle(handle_); }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    HANDLE handle() const { return handle_; }

private:
    HANDLE handle_;
};

}  // namespace

int runProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& output, const std::filesystem::path& errors) {
    std::wstring command = quoted(program.native());
    for (const std::string& argument : arguments) {
        command += L' ' + quoted(app::pathFromText(argument).native());
    }
    const OutputFile outputFile(output);
    const OutputFile errorFile(errors);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = INVALID_HANDLE_VALUE;
    start.hStdOutput = outputFile.handle();
    start.hStdError = errorFile.handle();
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &start, &process) == FALSE) {
        throw std::runtime_error("cannot run " + app::textOf(program));
    }
    CloseHandle(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

}  // namespace keladjust::test
