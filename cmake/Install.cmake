include(CMakePackageConfigHelpers)

# Parts, for whoever packs them apart: Runtime, Engine, Development, Program.
install(TARGETS keladjust EXPORT keladjustTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
install(DIRECTORY include/keladjust DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)

# What finds it: pkg-config and CMake, from wherever the whole has been moved to.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/keladjust)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pc
    ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
get_target_property(type keladjust TYPE)
set(private_libraries "-lstdc++ -lm -pthread")
if(CMAKE_DL_LIBS)
    string(APPEND private_libraries " -l${CMAKE_DL_LIBS}")
endif()
if(type STREQUAL "STATIC_LIBRARY")
    # There is nothing else to link here, whoever asks.
    set(libraries " ${private_libraries}")
    set(definitions " -DKELADJUST_STATIC")
    set(dependencies "find_dependency(Threads)")
else()
    set(libraries "")
    set(definitions "")
    set(dependencies "")
endif()

if(KELADJUST_ENGINE)
    # Beside the library, which looks there for the name with the version. Nothing is linked to it, so
    # it has no other.
    if(WIN32)
        set(engine_dir ${CMAKE_INSTALL_BINDIR})
    else()
        set(engine_dir ${CMAKE_INSTALL_LIBDIR})
    endif()
    install(TARGETS keladjust-engine
        RUNTIME DESTINATION ${engine_dir} COMPONENT Engine
        LIBRARY DESTINATION ${engine_dir} COMPONENT Engine NAMELINK_SKIP)
    file(RELATIVE_PATH engine_from_config
        ${CMAKE_INSTALL_PREFIX}/${package_dir} ${CMAKE_INSTALL_PREFIX}/${engine_dir})
    if(WIN32)
        string(APPEND engine_from_config /${KELADJUST_ENGINE_FILE})
    else()
        string(APPEND engine_from_config
            /${KELADJUST_ENGINE_FILE}.${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    endif()
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/keladjustEngine.cmake @ONLY CONTENT [[
if(NOT TARGET keladjust::engine)
    add_library(keladjust::engine MODULE IMPORTED)
    get_filename_component(engine ${CMAKE_CURRENT_LIST_DIR}/@engine_from_config@ ABSOLUTE)
    set_property(TARGET keladjust::engine PROPERTY IMPORTED_LOCATION ${engine})
endif()
]])
    install(FILES ${PROJECT_BINARY_DIR}/keladjustEngine.cmake
        DESTINATION ${package_dir} COMPONENT Development)
endif()

install(EXPORT keladjustTargets NAMESPACE keladjust:: DESTINATION ${package_dir}
    COMPONENT Development)
configure_file(cmake/keladjustConfig.cmake.in ${PROJECT_BINARY_DIR}/keladjustConfig.cmake @ONLY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/keladjustConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/keladjustConfig.cmake
    ${PROJECT_BINARY_DIR}/keladjustConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT Development)
configure_file(cmake/keladjust.pc.in ${PROJECT_BINARY_DIR}/keladjust.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/keladjust.pc DESTINATION ${pkgconfig_dir} COMPONENT Development)

if(TARGET keladjust-host)
    install(TARGETS keladjust-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Program)
    if(KELADJUST_ENGINE)
        install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/plugins.cfg
            ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources.cfg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/keladjust COMPONENT Program)
    endif()
endif()
