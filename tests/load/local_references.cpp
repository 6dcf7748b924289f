#include "tests/support/local_references.h"

#include <jvmti.h>

// Loaded into a virtual machine, counts the local references of the load run's threads.

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    jvmtiEnv* tool = nullptr;
    JNINativeInterface_* table = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&tool), JVMTI_VERSION_1_2) != JNI_OK) return JNI_ERR;
    if (tool->GetJNIFunctionTable(&table) != JVMTI_ERROR_NONE) return JNI_ERR;
    local_references::count(table);
    const bool set = tool->SetJNIFunctionTable(table) == JVMTI_ERROR_NONE;
    tool->Deallocate(reinterpret_cast<unsigned char*>(table));
    return set ? JNI_VERSION_1_6 : JNI_ERR;
}

extern "C" JNIEXPORT jlong JNICALL Java_zoren_load_LoadRun_localReferences(JNIEnv*, jclass) {
    return local_references::held;
}
