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
if(EMSCRIPTEN)
    # What all engines have: vectors, and exceptions without a detour through JavaScript.
    target_compile_options(keladjust_options INTERFACE -msimd128 -fwasm-exceptions)
    target_link_options(keladjust_options INTERFACE -fwasm-exceptions)
endif()
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC takes the stack of a Windows program for aligned to whatever its vectors need, but it is
    # aligned to 16 bytes only (GCC bug 54412): wider aligned moves would crash.
    target_compile_options(keladjust_options INTERFACE -Wa,-muse-unaligned-vector-move)
endif()

# Instruction sets that are not compiled for, of those that Highway would try by itself.
set(disabled_targets "")
include(${CMAKE_CURRENT_LIST_DIR}/Processor.cmake)
keladjust_processor(KELADJUST_PROCESSOR)
if(KELADJUST_PROCESSOR STREQUAL "Arm64")
    # Their vectors have no length that the compiler knows, so no structure may hold one.
    list(APPEND disabled_targets HWY_SVE HWY_SVE2 HWY_SVE_256 HWY_SVE2_128)
endif()

if(KELADJUST_SANITIZE)
    target_compile_options(keladjust_options INTERFACE
        -fsanitize=${KELADJUST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(keladjust_options INTERFACE -fsanitize=${KELADJUST_SANITIZE})

    # They take minutes over vector code. One instruction set a width of vectors is enough for them, and
    # for what runs on several threads the best; what this machine cannot run need not be there.
    list(APPEND disabled_targets HWY_SSSE3)
    if(KELADJUST_SANITIZE STREQUAL "thread")
        list(APPEND disabled_targets HWY_SSE4)
    endif()
    set(avx512 "")
    if(EXISTS /proc/cpuinfo)
        file(STRINGS /proc/cpuinfo avx512 REGEX avx512bw LIMIT_COUNT 1)
    endif()
    if(NOT avx512)
        list(APPEND disabled_targets HWY_AVX3)
    endif()
endif()

if(KELADJUST_BUILD_FUZZERS)
    if(KELADJUST_FUZZ_COVERAGE)
        set(fuzzed -fprofile-instr-generate -fcoverage-mapping)
        target_link_options(keladjust_options INTERFACE ${fuzzed})
        # A line of vector code is one line for all instruction sets: one and the scalar one will do.
        list(APPEND disabled_targets HWY_SSSE3 HWY_SSE4 HWY_AVX3)
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

if(disabled_targets)
    list(JOIN disabled_targets "|" disabled_targets)
    target_compile_definitions(keladjust_options INTERFACE
        "HWY_DISABLED_TARGETS=(${disabled_targets})")
endif()
