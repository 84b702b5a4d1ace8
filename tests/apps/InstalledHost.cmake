# Installs the project into an empty folder and adjusts a photograph with what is there.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${WITH_DISPLAY} ${PREFIX}/${BINDIR}/keladjust ${PHOTO} --exposure 20 --gpu -v
        -o ${PREFIX}/adjusted.jpg
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output MATCHES "adjusted on the GPU path" OR NOT EXISTS ${PREFIX}/adjusted.jpg)
    message(FATAL_ERROR "unexpected: ${output}")
endif()
