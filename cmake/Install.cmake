include(CMakePackageConfigHelpers)

install(TARGETS keladjust EXPORT keladjustTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(KELADJUST_ENGINE)
    # Beside the library, which looks for it there; nothing is linked to it.
    install(TARGETS keladjust-engine
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY include/keladjust DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET keladjust-host)
    install(TARGETS keladjust-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(KELADJUST_ENGINE)
        install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/plugins.cfg
            ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources.cfg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/keladjust)
    endif()
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/keladjust)
install(EXPORT keladjustTargets NAMESPACE keladjust:: FILE keladjustConfig.cmake
    DESTINATION ${package_dir})
write_basic_package_version_file(keladjustConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/keladjustConfigVersion.cmake DESTINATION ${package_dir})
