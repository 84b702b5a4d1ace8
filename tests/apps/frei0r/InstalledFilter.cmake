# Installs the project into an empty folder and has ffmpeg load the filter from there: a grey frame
# becomes brighter. (A width of 16: ffmpeg pads rows of others.)
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
set(ENV{FREI0R_PATH} ${PREFIX}/lib/frei0r-1)
execute_process(
    COMMAND ${FFMPEG} -v error -y -f lavfi -i color=0x404040:s=16x8:d=0.04,format=bgra
        -vf "frei0r=keladjust:exposure 100" -frames:v 1 -f rawvideo -pix_fmt gray
        ${PREFIX}/frame.gray
    COMMAND_ERROR_IS_FATAL ANY)
# 0x40 times 2^1.2, cut off: 147.
file(READ ${PREFIX}/frame.gray frame HEX)
if(NOT frame MATCHES "^(93)+$")
    message(FATAL_ERROR "unexpected: ${frame}")
endif()
