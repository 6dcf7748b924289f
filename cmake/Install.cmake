# What `cmake --install` lays out. The library's name has no version, because that is the name by
# which a phone loads it, and beside it lie stand-ins whose names a system's own libraries may have:
# all of it, jars too, goes into one folder of its own that carries the major version. Nothing is
# found there by chance, and two major versions fit on one machine.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZOREN_INSTALL_LIBRARY ${CMAKE_INSTALL_LIBDIR}/zoren-runtime-${PROJECT_VERSION_MAJOR})
set(ZOREN_INSTALL_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/zoren_runtime)
set(ZOREN_INSTALL_CMAKE ${CMAKE_INSTALL_LIBDIR}/cmake/zoren_runtime)

# The libraries, and the classes for programs in Java.
install(TARGETS zoren_runtime android_runtime jnigraphics nativehelper log EXPORT zoren_runtime
    LIBRARY DESTINATION ${ZOREN_INSTALL_LIBRARY} COMPONENT runtime
    INCLUDES DESTINATION ${ZOREN_INSTALL_HEADERS})
install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/zoren-framework.jar
              ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/zoren-platform.jar
    DESTINATION ${ZOREN_INSTALL_LIBRARY} COMPONENT runtime)

# For those who build on it. The headers are what zoren_runtime.h includes, and nothing else.
foreach(header
        include/zoren_runtime.h
        analysis/color_cast.h analysis/gray_level.h analysis/hsb_to_rgb.h
        blur/color_mask.h blur/gaussian_blur.h blur/gaussian_kernel.h blur/region_fill.h
        jni/bitmap_struct.h jni/native_methods.h)
    cmake_path(GET header PARENT_PATH folder)
    string(REGEX REPLACE "^include" "" folder ${folder})
    install(FILES ${header} DESTINATION ${ZOREN_INSTALL_HEADERS}/${folder} COMPONENT development)
endforeach()
install(EXPORT zoren_runtime NAMESPACE zoren_runtime:: FILE zoren_runtimeTargets.cmake
    DESTINATION ${ZOREN_INSTALL_CMAKE} COMPONENT development)
configure_package_config_file(cmake/zoren_runtimeConfig.cmake.in zoren_runtimeConfig.cmake
    INSTALL_DESTINATION ${ZOREN_INSTALL_CMAKE} PATH_VARS ZOREN_INSTALL_LIBRARY)
write_basic_package_version_file(zoren_runtimeConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zoren_runtimeConfig.cmake
              ${CMAKE_BINARY_DIR}/zoren_runtimeConfigVersion.cmake
    DESTINATION ${ZOREN_INSTALL_CMAKE} COMPONENT development)
# Written when it is installed: only then is the prefix known, which the run path names.
foreach(name PROJECT_VERSION ZOREN_INSTALL_LIBRARY ZOREN_INSTALL_HEADERS)
    install(CODE "set(${name} ${${name}})" COMPONENT development)
endforeach()
install(CODE "get_filename_component(CMAKE_INSTALL_PREFIX \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
configure_file(${PROJECT_SOURCE_DIR}/cmake/zoren_runtime.pc.in
    ${CMAKE_BINARY_DIR}/zoren_runtime.pc @ONLY)" COMPONENT development)
install(FILES ${CMAKE_BINARY_DIR}/zoren_runtime.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
foreach(kind sources javadoc)  # where they were built: the target `companions`
    install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/zoren-framework-${kind}.jar
                  ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/zoren-platform-${kind}.jar
        DESTINATION ${ZOREN_INSTALL_LIBRARY} COMPONENT development OPTIONAL)
endforeach()
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)

# The command line; its manual and completion where they were built: the target `manual`, which
# wants help2man.
install(TARGETS zoren_device_root
    LIBRARY DESTINATION ${ZOREN_INSTALL_LIBRARY} COMPONENT command)
install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/zoren-cli.jar
    DESTINATION ${ZOREN_INSTALL_LIBRARY} COMPONENT command)
set(ZOREN_LAUNCHER_LIBRARY ${ZOREN_INSTALL_LIBRARY})
configure_file(cli/zoren.in ${CMAKE_BINARY_DIR}/installed/zoren @ONLY)
install(PROGRAMS ${CMAKE_BINARY_DIR}/installed/zoren
    DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)

set(manual ${CMAKE_BINARY_DIR}/manual)
add_custom_target(manual
    COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=$ENV{SOURCE_DATE_EPOCH} bash
        ${PROJECT_SOURCE_DIR}/cmake/manual.sh ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/zoren ${manual}
    DEPENDS zoren_runtime zoren_cli_jar zoren_framework_jar zoren_platform_jar VERBATIM)
install(DIRECTORY ${manual}/man1 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT command OPTIONAL)
install(FILES ${manual}/zoren
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT command OPTIONAL)
set(zsh_functions site-functions)
if(CMAKE_INSTALL_PREFIX STREQUAL /usr)  # where Debian's own packages put them
    set(zsh_functions vendor-completions)
endif()
install(FILES ${manual}/_zoren
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_functions} COMPONENT command OPTIONAL)
