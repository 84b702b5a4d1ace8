# GoogleTest built from the sources in Debian's package googletest. Test programs read and write the
# machine's own files.
set(source /usr/src/googletest/googletest)
add_library(gtest STATIC ${source}/src/gtest-all.cc)
target_include_directories(gtest SYSTEM PUBLIC ${source}/include PRIVATE ${source})
target_compile_options(gtest PRIVATE -fwasm-exceptions)
target_link_options(gtest INTERFACE
    -sNODERAWFS=1 -sALLOW_MEMORY_GROWTH=1 -sEXIT_RUNTIME=1 -sENVIRONMENT=node)
add_library(gtest_main STATIC ${source}/src/gtest_main.cc)
target_compile_options(gtest_main PRIVATE -fwasm-exceptions)
target_link_libraries(gtest_main PUBLIC gtest)
add_library(GTest::gtest ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest_main)
