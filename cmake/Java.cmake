# The JDK: jni.h for the native code, javac for the jars. FindJNI looks at JAVA_HOME alone, so where
# that is not set it is taken from the javac on the path.
if(NOT JAVA_HOME AND NOT DEFINED ENV{JAVA_HOME})
    find_program(ZOREN_JAVAC javac REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    file(REAL_PATH ${ZOREN_JAVAC} ZOREN_JAVAC_REAL)
    cmake_path(GET ZOREN_JAVAC_REAL PARENT_PATH JAVA_HOME)
    cmake_path(GET JAVA_HOME PARENT_PATH JAVA_HOME)
endif()
find_package(Java 17 REQUIRED COMPONENTS Development Runtime)
find_package(JNI REQUIRED COMPONENTS JVM)
include(UseJava)
set(CMAKE_JAVA_COMPILE_FLAGS -Xlint:all -Werror --release 17 -encoding UTF-8)

string(TIMESTAMP jar_date "%Y-%m-%dT%H:%M:%SZ" UTC)  # that of cmake/Dates.cmake
set(Java_JAR_EXECUTABLE sh ${PROJECT_SOURCE_DIR}/cmake/jar.sh ${Java_JAR_EXECUTABLE} ${jar_date})

# zoren_jar_manifest(NAME MODULE): writes the manifest of NAME.jar, which says its version and the
# module it is on a module path, and gives its path as ZOREN_MANIFEST.
function(zoren_jar_manifest name module)
    set(ZOREN_MANIFEST ${CMAKE_CURRENT_BINARY_DIR}/${name}.manifest)
    file(CONFIGURE OUTPUT ${ZOREN_MANIFEST} CONTENT "Automatic-Module-Name: ${module}
Implementation-Title: ${name}
Implementation-Version: ${PROJECT_VERSION}
")
    set(ZOREN_MANIFEST ${ZOREN_MANIFEST} PARENT_SCOPE)
endfunction()

# zoren_java_companions(NAME ROOT CLASS_PATH FILE...): NAME-sources.jar with the sources FILE...
# below the folder ROOT, and NAME-javadoc.jar with what javadoc makes of them. Only the target
# `companions` builds them, and they are installed where they were built.
add_custom_target(companions)
function(zoren_java_companions name root class_path)
    set(jar ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name})
    set(pages ${CMAKE_BINARY_DIR}/javadoc/${name})
    list(TRANSFORM ARGN PREPEND ${root}/ OUTPUT_VARIABLE sources)
    add_custom_command(OUTPUT ${jar}-sources.jar
        COMMAND ${Java_JAR_EXECUTABLE} -cf ${jar}-sources.jar ${ARGN}
        DEPENDS ${sources} WORKING_DIRECTORY ${root} VERBATIM)
    add_custom_command(OUTPUT ${jar}-javadoc.jar
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${pages}
        COMMAND ${Java_JAVADOC_EXECUTABLE} -quiet -notimestamp -Xdoclint:all,-missing -Werror
            --release 17 -encoding UTF-8 -docencoding UTF-8
            -windowtitle "${name} ${PROJECT_VERSION}" -classpath "${class_path}" -d ${pages} ${ARGN}
        COMMAND ${Java_JAR_EXECUTABLE} -cf ${jar}-javadoc.jar -C ${pages} .
        DEPENDS ${sources} WORKING_DIRECTORY ${root} VERBATIM)
    add_custom_target(${name}-companions DEPENDS ${jar}-sources.jar ${jar}-javadoc.jar)
    add_dependencies(companions ${name}-companions)
endfunction()
