# Manual pages and completions of the command-line host: written by a program that is linked with its
# options, and installed. Where that program cannot run, as when building for Windows, there are none.
if(NOT TARGET keladjust-host OR WIN32 OR (CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR))
    return()
endif()

add_executable(keladjust-manual
    apps/keladjust/manual/BashCompletion.cpp
    apps/keladjust/manual/Commands.cpp
    apps/keladjust/manual/FishCompletion.cpp
    apps/keladjust/manual/ManualPage.cpp
    apps/keladjust/manual/ZshCompletion.cpp
    apps/keladjust/manual/main.cpp)
target_link_libraries(keladjust-manual PRIVATE keladjust_host_objects keladjust_options)
# GCC 12 takes the sum of a literal and a string for a copy onto itself (its bug 105651).
target_compile_options(keladjust-manual PRIVATE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)

set(manual ${PROJECT_BINARY_DIR}/manual)
set(manual_pages
    ${manual}/man/keladjust.1 ${manual}/man/keladjust-bench.1 ${manual}/man/keladjust-lut.1)
set(completions ${manual}/bash/keladjust ${manual}/zsh/_keladjust ${manual}/fish/keladjust.fish)
# The date of SOURCE_DATE_EPOCH, where that is set.
string(TIMESTAMP today "%B %d, %Y" UTC)
add_custom_command(OUTPUT ${manual_pages} ${completions}
    COMMAND keladjust-manual ${manual} ${today}
    DEPENDS keladjust-manual
    VERBATIM)
add_custom_target(keladjust_manual ALL DEPENDS ${manual_pages} ${completions})

# A component, so that it can be installed by itself: cmake --install build --component manual
install(FILES ${manual_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT manual)
foreach(shell_folder IN ITEMS
        bash/keladjust:bash-completion/completions
        zsh/_keladjust:zsh/site-functions
        fish/keladjust.fish:fish/vendor_completions.d)
    string(REPLACE ":" ";" pair ${shell_folder})
    list(GET pair 0 file)
    list(GET pair 1 folder)
    install(FILES ${manual}/${file} DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder} COMPONENT manual)
endforeach()
