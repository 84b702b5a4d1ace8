# keladjust_write_export_list(<list> <header> <names>): the names that the shared library exports, one a
# line: the functions that the C header declares with KELADJUST_API and the names in the file, in which
# lines that start with # are comments.
function(keladjust_write_export_list list header names)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header} ${names})
    file(READ ${header} text)
    string(REGEX REPLACE "\n#[^\n]*" "" text "${text}")
    string(REPLACE ";" " ; " text "${text}")  # lists leave out what is empty
    string(REGEX MATCHALL "KELADJUST_API[^()]*[(]" functions "${text}")
    list(TRANSFORM functions REPLACE "^.*[ *]([A-Za-z0-9_]+)[(]$" "\\1")
    list(SORT functions)
    file(STRINGS ${names} others REGEX "^[^#]")
    list(JOIN functions "\n" functions)
    list(JOIN others "\n" others)
    file(CONFIGURE OUTPUT ${list} CONTENT "${functions}\n${others}\n")
endfunction()

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
