# Builds for a phone with the NDK that ANDROID_NDK_HOME names.
set(ZOREN_NDK_TOOLCHAIN $ENV{ANDROID_NDK_HOME}/build/cmake/android.toolchain.cmake)
if(NOT EXISTS ${ZOREN_NDK_TOOLCHAIN})
    message(FATAL_ERROR "ANDROID_NDK_HOME must name an Android NDK")
endif()
set(ANDROID_ABI arm64-v8a)
set(ANDROID_PLATFORM android-28)
set(ANDROID_STL c++_static)  # three symbols; an app's shared one is not there for the system
include(${ZOREN_NDK_TOOLCHAIN})
