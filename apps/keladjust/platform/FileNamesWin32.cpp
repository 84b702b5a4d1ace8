#include "platform/FileNames.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace keladjust::app::platform {

namespace {

/// In the code page that narrow functions expect; nothing if it lacks one of the letters.
std::optional<std::string> inCodePage(const std::wstring& text) {
    const bool anyLetter = GetACP() == CP_UTF8;
    const DWORD exactly = anyLetter ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL lost = FALSE;
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_ACP, exactly, text.data(), length, nullptr, 0, nullptr,
                                         anyLetter ? nullptr : &lost);
    if (lost || (size == 0 && length != 0)) return std::nullopt;
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, exactly, text.data(), length, result.data(), size, nullptr,
                        nullptr);
    return result;
}

/// With every part in its form of eight letters and three, where the disk has those.
std::wstring shortName(const std::wstring& text) {
    std::wstring result(GetShortPathNameW(text.c_str(), nullptr, 0), L'\0');
    result.resize(
        GetShortPathNameW(text.c_str(), result.data(), static_cast<DWORD>(result.size())));
    return result;
}

}  // namespace

std::filesystem::path comparable(const std::filesystem::path& path) {
    std::wstring name = path.native();
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    return name;
}

std::optional<std::pair<std::uint64_t, std::uint64_t>> fileIdentity(
    const std::filesystem::path& path) {
    constexpr DWORD anybodyElse = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileW(path.c_str(), 0, anybodyElse, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION found{};
    const BOOL known = GetFileInformationByHandle(file, &found);
    CloseHandle(file);
    if (known == FALSE) return std::nullopt;
    return std::pair<std::uint64_t, std::uint64_t>(
        found.dwVolumeSerialNumber,
        std::uint64_t{found.nFileIndexHigh} << 32 | found.nFileIndexLow);
}

std::optional<std::string> narrow(const std::filesystem::path& path) {
    if (const auto name = inCodePage(path.native())) return name;
    const std::wstring shorter = shortName(path.native());
    return shorter.empty() ? std::nullopt : inCodePage(shorter);
}

std::optional<std::string> faultIn(const std::filesystem::path& path) {
    constexpr std::size_t longestName = 255;
    constexpr std::size_t longestPath = MAX_PATH - 1;  // without the terminating zero
    for (const auto& name : path.relative_path()) {
        const std::wstring& text = name.native();
        if (text.size() > longestName) {
            return "a name of more than " + std::to_string(longestName) + " letters is too long";
        }
        if (text.find_first_of(L"<>:\"|?*") != std::wstring::npos) {
            return "names hold none of < > : \" | ? *";
        }
    }
    std::error_code error;
    if (std::filesystem::absolute(path, error).native().size() > longestPath) {
        return "with its folders, a name of more than " + std::to_string(longestPath) +
               " letters is too long";
    }
    return std::nullopt;
}

}  // namespace keladjust::app::platform
