# Debian packages of the three components that cmake/Install.cmake lays out.
set(runtime libzoren-runtime${PROJECT_VERSION_MAJOR})
set(development libzoren-runtime-dev)
set(command zoren)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development command)
set(CPACK_SET_DESTDIR ON)  # what is written when it is installed names /usr
set(CPACK_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER
    "The zoren runtime's maintainers <maintainers@zoren-runtime.example>")
if(DEFINED ENV{DEBFULLNAME} AND DEFINED ENV{DEBEMAIL})
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
endif()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

# The packages that hold the jars of the launcher's class path.
string(REPLACE ":" ";" jars "${ZOREN_CLI_CLASS_PATH}")
execute_process(COMMAND dpkg-query --search ${jars}
    OUTPUT_VARIABLE jar_packages COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE ":[^\n]*\n" ";" jar_packages "${jar_packages}")
list(REMOVE_DUPLICATES jar_packages)
list(JOIN jar_packages ", " jar_packages)

set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "blurs, tints and measures bitmaps
Gaussian blur, colour overlay, mean gray level and colour cast of RGBA
bitmaps, every result defined bit for bit. The native library of a phone's
application framework with stand-ins for the phone's own libraries, in a
folder of its own.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)

set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "blurs, tints and measures bitmaps - development files
Headers, CMake package and pkg-config file of the library, examples, and the
sources and documentation of its Java classes.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${PROJECT_VERSION}-1)")

set(CPACK_DEBIAN_COMMAND_DESCRIPTION "command line that blurs, tints and measures pictures
Blurs PNG, JPEG, WebP, TIFF, GIF and BMP pictures and lays a colour over them,
tells their gray level and colour cast, opens and seals configurations, reads
traffic totals.")
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "${runtime} (= ${PROJECT_VERSION}-1), \
${jar_packages}default-jre-headless (>= 2:1.17) | java17-runtime-headless")

# Scripts that make the archive of the command's classes, by a run over a picture, and remove it.
foreach(script postinst prerm)
    configure_file(cmake/debian/${script}.in ${CMAKE_BINARY_DIR}/${script} @ONLY
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                         WORLD_READ WORLD_EXECUTE)
    list(APPEND CPACK_DEBIAN_COMMAND_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/${script})
endforeach()
install(FILES samples/photo.jpg DESTINATION ${ZOREN_INSTALL_LIBRARY} RENAME archived.jpg
    COMPONENT command)

# What every Debian package says of itself.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # that of cmake/Dates.cmake
file(CONFIGURE OUTPUT changelog.Debian CONTENT
"zoren-runtime (@PROJECT_VERSION@-1) stable; urgency=medium

  * The release @PROJECT_VERSION@, as its change log describes it.

 -- @CPACK_DEBIAN_PACKAGE_MAINTAINER@  @date@
" @ONLY)
configure_file(CHANGELOG.md changelog COPYONLY)
execute_process(COMMAND gzip --best --no-name --force --keep changelog changelog.Debian
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR} COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${${component}})
    install(FILES ${CMAKE_BINARY_DIR}/changelog.gz ${CMAKE_BINARY_DIR}/changelog.Debian.gz
                  ${PROJECT_SOURCE_DIR}/cmake/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${${component}} COMPONENT ${component})
endforeach()
include(CPack)
