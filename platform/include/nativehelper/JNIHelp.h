// Helpers for native methods, under the platform's own names.
#ifndef NATIVEHELPER_JNIHELP_H
#define NATIVEHELPER_JNIHELP_H

#include <jni.h>

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

// Leaves a java.lang.NullPointerException with the message `msg` pending; a null `msg` gives one
// whose getMessage() is null. Replaces an exception that is already pending. Returns 0, or -1 when
// the exception could not be made; another one (out of memory) is pending then.
int jniThrowNullPointerException(JNIEnv* env, const char* msg);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif  // NATIVEHELPER_JNIHELP_H
