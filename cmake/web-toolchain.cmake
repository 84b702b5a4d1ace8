# Builds for WebAssembly with Debian's Emscripten: vectors of 128 bits, the engine's own exceptions,
# no threads. What programs need of the machine outside, Node gives them.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)

# In the language's own way of throwing, exceptions cost nothing where none is thrown.
set(features "-msimd128 -fwasm-exceptions")
set(CMAKE_C_FLAGS_INIT ${features})
set(CMAKE_CXX_FLAGS_INIT ${features})
set(CMAKE_EXE_LINKER_FLAGS_INIT -fwasm-exceptions)

# Emscripten has neither Highway nor GoogleTest: both are taken from Debian's packages.
set(HWY_DIR ${CMAKE_CURRENT_LIST_DIR}/web)
set(GTest_DIR ${CMAKE_CURRENT_LIST_DIR}/web)

# Programs take Node's fetch for a browser's, which reads no files.
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)
