# keladjust_header_version(<header> <variable>): the version that the public header tells, so that it
# stands in one place, and hosts that only include the header know it, too.
function(keladjust_header_version header variable)
    file(STRINGS ${header} lines REGEX "^#define KELADJUST_VERSION_(MAJOR|MINOR|PATCH) [0-9]+$")
    list(TRANSFORM lines REPLACE ".* " "")
    list(JOIN lines "." version)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
    set(${variable} ${version} PARENT_SCOPE)
endfunction()
