#ifndef KELADJUST_FUZZ_SUPPORT_FINDING_H
#define KELADJUST_FUZZ_SUPPORT_FINDING_H

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace keladjust::fuzz {

/// Ends the program as a finding: the fuzzer keeps the input that led here.
[[noreturn]] [[gnu::format(printf, 1, 2)]] inline void finding(const char* format, ...) {
    std::fputs("\nFINDING: ", stderr);
    std::va_list words;
    va_start(words, format);
    std::vfprintf(stderr, format, words);
    va_end(words);
    std::fputs("\n", stderr);
    std::abort();
}

}  // namespace keladjust::fuzz

#endif
