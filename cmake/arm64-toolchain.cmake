# Cross-builds for 64-bit ARM Linux with GCC, and runs programs in QEMU. Libraries are those that
# packaging/arm64/packages unpacks, never those of the building machine.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-packages)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# What libraries need for themselves is in the same folders, some of it in the second.
set(needed "")
foreach(folder IN ITEMS usr/lib lib)
    string(APPEND needed " -Wl,-rpath-link,${CMAKE_FIND_ROOT_PATH}/${folder}/aarch64-linux-gnu")
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT "${needed}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${needed}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${needed}")

set(CMAKE_CROSSCOMPILING_EMULATOR "/usr/bin/qemu-aarch64-static;-L;${CMAKE_FIND_ROOT_PATH}")
