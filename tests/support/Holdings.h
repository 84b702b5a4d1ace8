#ifndef KELADJUST_TESTS_HOLDINGS_H
#define KELADJUST_TESTS_HOLDINGS_H

namespace keladjust::test {

/// What a process has of something that must not grow.
struct Holdings {
    long residentKilobytes = 0;
    long threads = 0;
    long handles = 0;   ///< file descriptors, or what the system has in their place
    long mappings = 0;  ///< parts of the address space that hold something
};

Holdings holdingsNow();

}  // namespace keladjust::test

#endif
