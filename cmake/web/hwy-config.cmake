# Highway's headers as Debian's libhwy-dev has them. In a folder of their own: those beside them in
# /usr/include are of another system.
set(folder ${CMAKE_BINARY_DIR}/packages)
file(MAKE_DIRECTORY ${folder})
if(NOT EXISTS /usr/include/hwy/highway.h)
    message(FATAL_ERROR "Highway's headers (libhwy-dev) are missing")
endif()
file(CREATE_LINK /usr/include/hwy ${folder}/hwy SYMBOLIC)
add_library(hwy::hwy INTERFACE IMPORTED GLOBAL)
target_include_directories(hwy::hwy INTERFACE ${folder})
