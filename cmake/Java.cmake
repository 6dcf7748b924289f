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
