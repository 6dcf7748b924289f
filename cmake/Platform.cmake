# Where the phone's parts come from: jni.h, <android/...>, libandroid_runtime, libjnigraphics,
# libnativehelper, liblog and libcrypto.
#   stand-in  platform/, the JDK's jni.h and OpenSSL
#   debian    the phone's own log, native helper, libcrypto and jni.h, which Debian packages as
#             android-lib*; platform/ for the two libraries that it has not
#   device    an NDK (preset `device`); what none has is linked from stubs, for the phone's own
set(ZOREN_PLATFORM stand-in CACHE STRING "Where the platform's parts come from")
set_property(CACHE ZOREN_PLATFORM PROPERTY STRINGS stand-in debian device)

add_library(zoren_platform_headers INTERFACE)
set(ZOREN_RUN_PATH "$ORIGIN")  # the libraries lie beside each other, wherever the folder lies
set(stand_in ${PROJECT_SOURCE_DIR}/platform/include)
if(ZOREN_PLATFORM STREQUAL stand-in)
    find_package(OpenSSL REQUIRED COMPONENTS Crypto)
    target_include_directories(zoren_platform_headers INTERFACE ${stand_in})
elseif(ZOREN_PLATFORM STREQUAL device)
    set(ZOREN_RUN_PATH "")
    # Last, and libcrypto's headers from Debian; -I /usr/include would be the host's C library.
    target_compile_options(zoren_platform_headers INTERFACE
        "SHELL:-idirafter ${stand_in} -idirafter /usr/include/android")
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/highway)
    file(CREATE_LINK /usr/include/hwy ${CMAKE_BINARY_DIR}/highway/hwy SYMBOLIC)
    target_include_directories(zoren_highway SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/highway)
    file(STRINGS ${PROJECT_SOURCE_DIR}/jni/imports.txt lines)
    foreach(line ${lines})
        if(line MATCHES "^lib(.*)\\.so$")
            set(library ${CMAKE_MATCH_1})
        elseif(line MATCHES "^    ([A-Za-z_][^ ]*) ")
            string(APPEND stub_${library} "extern \"C\" void ${CMAKE_MATCH_1}() {}\n")
        endif()
    endforeach()
    foreach(library android_runtime nativehelper crypto)
        file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/stubs/${library}.cpp CONTENT "${stub_${library}}")
        add_library(${library} SHARED ${CMAKE_BINARY_DIR}/stubs/${library}.cpp)
        set_target_properties(${library} PROPERTIES
            LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stubs)
    endforeach()
    add_library(OpenSSL::Crypto ALIAS crypto)
else()
    set(folder /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
    string(APPEND ZOREN_RUN_PATH ":${folder}")
    set(JNI_INCLUDE_DIRS /usr/include/android/nativehelper)
    target_include_directories(zoren_platform_headers SYSTEM INTERFACE /usr/include/android)
    # Last, for what the others lack.
    target_compile_options(zoren_platform_headers INTERFACE "SHELL:-idirafter ${stand_in}")
    foreach(part log nativehelper OpenSSL::Crypto)
        string(REPLACE OpenSSL::C c file ${part})
        add_library(${part} SHARED IMPORTED GLOBAL)
        set_target_properties(${part} PROPERTIES IMPORTED_LOCATION ${folder}/lib${file}.so.0)
        target_link_libraries(${part} INTERFACE zoren_platform_headers)
    endforeach()
endif()
target_include_directories(zoren_platform_headers SYSTEM INTERFACE ${JNI_INCLUDE_DIRS})
if(NOT ZOREN_PLATFORM STREQUAL device)
    add_subdirectory(platform)
endif()
