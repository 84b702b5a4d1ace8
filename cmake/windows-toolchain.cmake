# Cross-builds for 64-bit Windows with Debian's MinGW compilers. The libraries that a program needs
# are looked for in build/windows-dependencies, which packaging/windows/dependencies fills, and
# never among those of the building machine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The compilers whose standard library has threads.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Nothing that is built needs a run-time library of MinGW beside it. Those among the libraries come
# before MinGW's own. What is built does not say when.
set(linker_flags
    "-static -Wl,--no-insert-timestamp -L${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies/lib")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${linker_flags})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${linker_flags})
set(CMAKE_MODULE_LINKER_FLAGS_INIT ${linker_flags})

if(NOT CMAKE_FIND_ROOT_PATH)
    set(CMAKE_FIND_ROOT_PATH
        ${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies
        /usr/x86_64-w64-mingw32)
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/wine)
