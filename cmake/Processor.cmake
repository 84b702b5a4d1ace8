# keladjust_processor(<variable>): the processor that is built for: X64, Arm64 or Wasm. The compiler is
# asked, for the names that systems have for processors are many, and some tool sets give another's.
include(CheckCXXSourceCompiles)
function(keladjust_processor variable)
    set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
    foreach(macros IN ITEMS X64:__x86_64__|_M_X64 Arm64:__aarch64__|_M_ARM64 Wasm:__wasm__|__wasm__)
        string(REGEX MATCH "(.*):(.*)[|](.*)" matched ${macros})
        set(processor ${CMAKE_MATCH_1})
        check_cxx_source_compiles(
            "#if !defined(${CMAKE_MATCH_2}) && !defined(${CMAKE_MATCH_3})\n#error\n#endif"
            KELADJUST_FOR_${processor})
        if(KELADJUST_FOR_${processor})
            set(${variable} ${processor} PARENT_SCOPE)
            return()
        endif()
    endforeach()
    message(FATAL_ERROR "There are no files for this processor in Source/platform.")
endfunction()
