# Products and sums are fused where that is meant, and nowhere else: a product that is not rounded
# before it is added to would give other bytes than processors without such instructions. OBJECTS names
# a file with the library's objects, one in each line.
cmake_policy(VERSION 3.25)

# The sources that call MulAdd() themselves or by quotientBy(), whose results are held exact.
set(meant
    filters/colour-ranges/ColourRanges.cpp
    filters/dehaze/DehazeRows.cpp
    filters/saturation/Saturation.cpp
    filters/temperature/Temperature.cpp
    filters/tonal/TonalRanges.cpp
    filters/vignette/VignettePixels.cpp)

# Of x86, then of ARM: vectors and single numbers.
set(fused "\tvfn?m(add|sub|addsub|subadd)[0-9]+[ps][sd]|\tf(ml[as]l?2?|cmla|n?m(add|sub))\t")

file(STRINGS ${OBJECTS} objects)
set(found "")
foreach(object IN LISTS objects)
    execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn ${object}
        OUTPUT_VARIABLE disassembly COMMAND_ERROR_IS_FATAL ANY)
    if(disassembly MATCHES "${fused}")
        string(REGEX REPLACE "^.*[.]dir/([.]/)?(.*)[.](o|obj)$" "\\2" source ${object})
        list(APPEND found ${source})
    endif()
endforeach()
list(SORT found)
if(NOT found STREQUAL meant)
    message(FATAL_ERROR "fused are products and sums in ${found}; meant are ${meant}")
endif()
