# Builds for a phone with the NDK that ANDROID_NDK_HOME names.
set(ANDROID_ABI arm64-v8a)
set(ANDROID_PLATFORM android-28)
set(ANDROID_STL c++_static)  # three symbols; an app's shared one is not there for the system
include($ENV{ANDROID_NDK_HOME}/build/cmake/android.toolchain.cmake)
