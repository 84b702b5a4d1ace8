# keladjust_install_plugin(<target> <folder> <user's folder>): installs a plug-in where its hosts look:
# below the prefix, or in a folder of the user's own with KELADJUST_USER_PLUGINS. It finds the library
# that is installed with it: from where it lies itself or, as the user's folders do not move with the
# prefix, where the build was told that the library will be.
function(keladjust_install_plugin target folder user_folder)
    if(KELADJUST_USER_PLUGINS)
        set(folder ${user_folder})
        set(library ${CMAKE_INSTALL_FULL_LIBDIR})
    else()
        file(RELATIVE_PATH library
            ${CMAKE_INSTALL_PREFIX}/${folder} ${CMAKE_INSTALL_FULL_LIBDIR})
        set(library $ORIGIN/${library})
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH ${library})
    install(TARGETS ${target} RUNTIME DESTINATION ${folder} LIBRARY DESTINATION ${folder})
endfunction()
