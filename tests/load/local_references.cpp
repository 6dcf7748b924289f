#include <jvmti.h>

#include <type_traits>

// Loaded into a virtual machine, counts the local references that native code has made and not
// deleted. The machine drops them when a native returns, so nothing can be seen of them afterwards.

namespace {

using Table = JNINativeInterface_;

Table machine;           // the functions as they were
thread_local jlong net;  // made less deleted, by this thread

template <auto Function>
struct Counted;

template <typename... Arguments, typename Result,
          Result (JNICALL* Table::*Function)(JNIEnv*, Arguments...)>
struct Counted<Function> {
    static Result JNICALL call(JNIEnv* env, Arguments... arguments) {
        const Result made = (machine.*Function)(env, arguments...);
        net += made != nullptr;
        return made;
    }
};

void JNICALL deleteLocalRef(JNIEnv* env, jobject reference) {
    net -= reference != nullptr;
    machine.DeleteLocalRef(env, reference);
}

template <auto... Functions>
void count(Table* table) {
    ((table->*Functions = Counted<Functions>::call), ...);
}

}  // namespace

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    jvmtiEnv* tool = nullptr;
    Table* table = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&tool), JVMTI_VERSION_1_2) != JNI_OK) return JNI_ERR;
    if (tool->GetJNIFunctionTable(&table) != JVMTI_ERROR_NONE) return JNI_ERR;
    machine = *table;
    // The C++ calls with dots come in by their V.
    count<&Table::FindClass, &Table::GetSuperclass, &Table::GetObjectClass, &Table::NewLocalRef,
          &Table::AllocObject, &Table::NewObjectV, &Table::NewObjectA, &Table::CallObjectMethodV,
          &Table::CallObjectMethodA, &Table::CallStaticObjectMethodV, &Table::GetObjectField,
          &Table::GetStaticObjectField, &Table::NewString, &Table::NewStringUTF,
          &Table::NewObjectArray, &Table::GetObjectArrayElement, &Table::NewByteArray,
          &Table::NewIntArray, &Table::ExceptionOccurred, &Table::NewDirectByteBuffer>(table);
    table->DeleteLocalRef = deleteLocalRef;
    const bool set = tool->SetJNIFunctionTable(table) == JVMTI_ERROR_NONE;
    tool->Deallocate(reinterpret_cast<unsigned char*>(table));
    return set ? JNI_VERSION_1_6 : JNI_ERR;
}

extern "C" JNIEXPORT jlong JNICALL Java_zoren_load_LoadRun_localReferences(JNIEnv*, jclass) {
    return net;
}
