# keladjust_export_only(<target> <list>): the shared library exports the names in the file and no
# others. Lines that start with # are comments.
#
# Microsoft's compiler exports what the headers mark, because its names for C++ are its own; the
# others take the list as the linker wants it. (GCC could export what is marked on Windows, too, but
# adds the run-time type information of unrelated classes.)
function(keladjust_export_only target list)
    file(STRINGS ${list} names REGEX "^[^#]")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    if(MINGW)
        # Tables, as opposed to functions.
        list(TRANSFORM names APPEND " DATA" REGEX "^_ZT")
        list(JOIN names "\n" lines)
        set(definition ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
        file(CONFIGURE OUTPUT ${definition} CONTENT "LIBRARY ${target}.dll\nEXPORTS\n${lines}\n")
        target_sources(${target} PRIVATE ${definition})
    elseif(UNIX AND NOT APPLE)
        list(JOIN names ";\n" lines)
        set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
        file(CONFIGURE OUTPUT ${script} CONTENT "{\nglobal:\n${lines};\nlocal: *;\n};\n")
        target_link_options(${target} PRIVATE -Wl,--version-script,${script})
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
    endif()
endfunction()
