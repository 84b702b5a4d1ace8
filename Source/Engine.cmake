# The engine: a module that the library loads when a host starts it. It alone needs OGRE, OpenGL and
# what opens a window.
find_package(OGRE 1.12 REQUIRED CONFIG GLOBAL)
find_package(OpenGL REQUIRED)

add_library(keladjust_engine_objects OBJECT
    engine/EffectFactory.cpp
    engine/EngineLog.cpp
    engine/GlBuffers.cpp
    engine/GlErrors.cpp
    engine/KelEffectBase.cpp
    engine/KelOgreBase.cpp
    engine/KelOgreEffectBase.cpp
    engine/KelOgrePicturePlane.cpp
    engine/KelOgreRenderThread.cpp
    engine/KelOgreShader.cpp
    engine/ManualTexture.cpp
    engine/Md5.cpp
    engine/MyCSingleLock.cpp
    engine/OgreEngine.cpp
    engine/PictureFile.cpp
    engine/PictureRows.cpp
    engine/ReadBack.cpp
    engine/RenderSystemOptions.cpp
    engine/SoftwareRenderer.cpp)
if(WIN32)
    target_sources(keladjust_engine_objects PRIVATE
        engine/platform/EngineWindowWin32.cpp engine/platform/GlEntryPointsWin32.cpp
        engine/platform/MessageWaitWin32.cpp)
else()
    target_sources(keladjust_engine_objects PRIVATE
        engine/platform/EngineWindowX11.cpp engine/platform/GlEntryPointsX11.cpp
        engine/platform/MessageWaitX11.cpp)
endif()
keladjust_embed_program(keladjust_engine_objects defaultVertexGlsl DefaultVertex.glsl)
keladjust_embed_program(keladjust_engine_objects defaultFragmentGlsl DefaultFragment.glsl)
keladjust_embed_program(keladjust_engine_objects defaultVertexHlsl DefaultVertex.hlsl)
keladjust_embed_program(keladjust_engine_objects defaultFragmentHlsl DefaultFragment.hlsl)

# The engine's main library alone: its other components bring along what this one does not need.
target_link_libraries(keladjust_engine_objects
    PUBLIC keladjust_platform OgreMain OpenGL::GL
    PRIVATE keladjust_options)
target_compile_definitions(keladjust_engine_objects PRIVATE KELADJUST_ENGINE_BUILD)
if(UNIX AND NOT APPLE)
    find_package(X11 REQUIRED)
    target_link_libraries(keladjust_engine_objects PUBLIC X11::X11)
endif()
keladjust_hidden(keladjust_engine_objects)
# OGRE's exceptions say in its log which file they are from: by its name in this tree, not by the folder
# that somebody has built in. Compiler caches name files from the build's folder.
if(NOT MSVC)
    file(RELATIVE_PATH from_build ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR})
    target_compile_options(keladjust_engine_objects PRIVATE
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${from_build}/=)
endif()
# The engine's headers take longer to compile than the code: a unity build joins all of it.
set_target_properties(keladjust_engine_objects PROPERTIES UNITY_BUILD_BATCH_SIZE 0)

add_library(keladjust-engine SHARED)
target_link_libraries(keladjust-engine PRIVATE keladjust_engine_objects keladjust_options)
set(description "${PROJECT_DESCRIPTION}: rendering engine")
keladjust_shared(keladjust-engine ${CMAKE_CURRENT_SOURCE_DIR}/engine/exports.txt)
# Whoever builds the library has beside it what it loads.
add_dependencies(keladjust keladjust-engine)

# Programs made of all objects take the engine that is linked in.
add_library(keladjust_linked_engine OBJECT engine/LinkedEngine.cpp)
target_link_libraries(keladjust_linked_engine PRIVATE keladjust_platform keladjust_options)
target_link_libraries(keladjust_objects INTERFACE
    keladjust_engine_objects $<TARGET_OBJECTS:keladjust_engine_objects>
    $<TARGET_OBJECTS:keladjust_linked_engine>)

# The engine's two configuration files, beside the programs that are built.
if(WIN32)
    # Its DLL, too, since that is where Windows looks for it.
    configure_file(${OGRE_PREFIX_DIR}/bin/OgreMain.dll ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/OgreMain.dll
        COPYONLY)
endif()
if(MINGW)
    # The linker sorts what a module imports by the names of the libraries that say so. Those in the build
    # are named from there, so that it comes out the same wherever somebody builds.
    set(import_library ${CMAKE_CURRENT_BINARY_DIR}/libOgreMain.dll.a)
    configure_file(${OGRE_PREFIX_DIR}/lib/libOgreMain.dll.a ${import_library} COPYONLY)
    set_target_properties(OgreMain PROPERTIES
        IMPORTED_IMPLIB ${import_library} IMPORTED_IMPLIB_RELEASE ${import_library})
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/plugins.cfg.in
    ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/plugins.cfg @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/resources.cfg.in
    ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources.cfg @ONLY)
