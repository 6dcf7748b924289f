// Registration of native methods, under the platform's own names.
#ifndef ANDROID_RUNTIME_ANDROID_RUNTIME_H
#define ANDROID_RUNTIME_ANDROID_RUNTIME_H

#include <jni.h>

#pragma GCC visibility push(default)
namespace android {

class AndroidRuntime {
  public:
    // Registers `numMethods` native methods of the class `className` ("package/of/Class"), which is
    // looked up through the class loader of the calling Java method. The table is only read.
    //
    // Returns 0, or a negative value when the class is missing or does not declare one of the
    // methods; methods listed before that one stay registered. Leaves no
    // exception pending and no local reference. An exception that is already pending stays, and
    // nothing is registered.
    static int registerNativeMethods(JNIEnv* env, const char* className,
                                     const JNINativeMethod* gMethods, int numMethods);
};

}  // namespace android
#pragma GCC visibility pop

#endif  // ANDROID_RUNTIME_ANDROID_RUNTIME_H
