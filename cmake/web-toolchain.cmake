# Builds for WebAssembly with Debian's Emscripten. Programs of the build run in Node, whose fetch
# they would take for a browser's, which reads no files.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)

set(GTest_DIR ${CMAKE_CURRENT_LIST_DIR}/web)
