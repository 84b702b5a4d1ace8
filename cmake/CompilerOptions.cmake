# Options that every target of the project takes through keladjust_options.
add_library(keladjust_options INTERFACE)

if(MSVC)
    target_compile_options(keladjust_options INTERFACE /W4 /WX /permissive- /utf-8 /fp:precise)
    # Functions of the standard library that have a variant by Microsoft are not errors; min and max
    # are functions.
    target_compile_definitions(keladjust_options INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
else()
    target_compile_options(keladjust_options INTERFACE
        -Wall -Wextra -Wconversion -Wshadow -Werror
        # Results are the same on every machine: no fused multiply-add where the source has two steps.
        -ffp-contract=off
        # A name local to one file is none to the others that it is compiled with.
        $<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow>)
endif()
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC takes the stack of a Windows program for aligned to whatever its vectors need, but it is
    # aligned to 16 bytes only (GCC bug 54412): wider aligned moves would crash.
    target_compile_options(keladjust_options INTERFACE -Wa,-muse-unaligned-vector-move)
endif()

if(KELADJUST_SANITIZE)
    target_compile_options(keladjust_options INTERFACE
        -fsanitize=${KELADJUST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(keladjust_options INTERFACE -fsanitize=${KELADJUST_SANITIZE})

    # They take minutes over vector code. One instruction set a width of vectors is enough for them, and
    # for what runs on several threads the best; what this machine cannot run need not be there.
    set(unwatched HWY_SSSE3)
    if(KELADJUST_SANITIZE STREQUAL "thread")
        list(APPEND unwatched HWY_SSE4)
    endif()
    set(avx512 "")
    if(EXISTS /proc/cpuinfo)
        file(STRINGS /proc/cpuinfo avx512 REGEX avx512bw LIMIT_COUNT 1)
    endif()
    if(NOT avx512)
        list(APPEND unwatched HWY_AVX3)
    endif()
    list(JOIN unwatched "|" unwatched)
    target_compile_definitions(keladjust_options INTERFACE "HWY_DISABLED_TARGETS=(${unwatched})")
endif()

if(KELADJUST_BUILD_FUZZERS)
    if(KELADJUST_FUZZ_COVERAGE)
        set(fuzzed -fprofile-instr-generate -fcoverage-mapping)
        target_link_options(keladjust_options INTERFACE ${fuzzed})
        # A line of vector code is one line for all instruction sets: one and the scalar one will do.
        target_compile_definitions(keladjust_options INTERFACE
            "HWY_DISABLED_TARGETS=(HWY_SSSE3|HWY_SSE4|HWY_AVX3)")
    else()
        # All instruction sets, which is why functions of Highway's headers are not checked by
        # UndefinedBehaviorSanitizer: inlined everywhere, they would take ten times as long to
        # compile. Where the library goes is counted; what it compares with is not, for no input
        # names it. The list's name is one for all checkouts, as compiler caches like it.
        file(RELATIVE_PATH unchecked ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}/fuzz/unchecked.txt)
        set(fuzzed
            -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
            -fsanitize-coverage=edge,inline-8bit-counters,pc-table,indirect-calls
            -fsanitize-ignorelist=${unchecked})
        target_link_options(keladjust_options INTERFACE -fsanitize=address,undefined)
    endif()
    target_compile_options(keladjust_options INTERFACE ${fuzzed})
    # Its assertions would need its library.
    target_compile_definitions(keladjust_options INTERFACE HWY_IS_DEBUG_BUILD=0)
endif()
