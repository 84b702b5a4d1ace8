# keladjust_embed_program(<target> <name> <file>...): gives the target the constant
# keladjust::shaders::<name>, declared in Source/shaders/Programs.h. Its text is that of the files,
# one after the other, up to the end of the last line. Files are named from Source/shaders.
#
# Run as a script, this file writes that constant's source; the characters stand there one by one
# because compilers differ in how long a string they take.

if(CMAKE_SCRIPT_MODE_FILE)
    set(characters "")
    string(REPLACE "," ";" pieces "${PIECES}")
    foreach(piece IN LISTS pieces)
        file(READ ${FOLDER}/${piece} hex HEX)
        string(APPEND characters ${hex})
    endforeach()
    string(REGEX REPLACE "0a$" "" characters ${characters})
    string(REGEX REPLACE "(..)" "0x\\1," characters ${characters})
    string(REPLACE "0x0a," "0x0a,\n" characters ${characters})
    file(WRITE ${OUTPUT}
        "#include \"shaders/Programs.h\"\n\n"
        "namespace {\nconstexpr char text[] = {\n${characters}0};\n}\n\n"
        "const char* const keladjust::shaders::${NAME} = text;\n")
    return()
endif()

set(keladjust_embed_script ${CMAKE_CURRENT_LIST_FILE})

function(keladjust_embed_program target name)
    set(folder ${PROJECT_SOURCE_DIR}/Source/shaders)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/shaders/${name}.cpp)
    list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE files)
    list(JOIN ARGN "," pieces)
    add_custom_command(OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -DNAME=${name} -DPIECES=${pieces} -DFOLDER=${folder}
            -DOUTPUT=${output} -P ${keladjust_embed_script}
        DEPENDS ${files} ${keladjust_embed_script}
        COMMENT "Embedding ${name}"
        VERBATIM)
    target_sources(${target} PRIVATE ${output})
    # Each has a text of its own by the same name.
    set_source_files_properties(${output} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
