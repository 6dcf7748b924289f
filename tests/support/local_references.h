#pragma once

#include <jni.h>

// Counts the local references that native code makes and does not delete. The virtual machine drops
// them when a native returns, so nothing can be seen of them afterwards.
namespace local_references {

inline JNINativeInterface_ machine;  // the functions as they were
inline thread_local jlong held;      // made less deleted, by this thread

template <auto Function, typename Result, typename... Arguments>
auto counted(Result (JNICALL* JNINativeInterface_::*)(JNIEnv*, Arguments...)) {
    return [](JNIEnv* env, Arguments... arguments) {
        const Result made = (machine.*Function)(env, arguments...);
        held += made != nullptr;
        return made;
    };
}

template <auto... Functions>
void countThoseOf(JNINativeInterface_* table) {
    ((table->*Functions = counted<Functions>(Functions)), ...);
}

// From now on, for who uses the table.
inline void count(JNINativeInterface_* table) {
    using Table = JNINativeInterface_;
    machine = *table;
    // What the library and the stand-in call or may; the C++ calls with dots come in by their V.
    countThoseOf<&Table::FindClass, &Table::GetObjectClass, &Table::NewLocalRef, &Table::NewObjectV,
                 &Table::CallObjectMethodV, &Table::CallStaticObjectMethodV, &Table::GetObjectField,
                 &Table::GetStaticObjectField, &Table::NewStringUTF, &Table::ExceptionOccurred>(
        table);
    table->DeleteLocalRef = [](JNIEnv* env, jobject reference) {
        held -= reference != nullptr;
        machine.DeleteLocalRef(env, reference);
    };
}

}  // namespace local_references
