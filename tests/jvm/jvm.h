/**
 * A JVM inside the program, and what the native methods linked into the program are called with.
 */
#ifndef TARNEX_TESTS_JVM_JVM_H
#define TARNEX_TESTS_JVM_JVM_H

#include "jni_support.h"

#include <string>
#include <vector>

inline JNIEnv *env = nullptr; ///< of the main thread, the only one that calls the engine

/** Starts the JVM; whether it runs. */
inline bool startJvm(std::vector<std::string> options)
{
    std::vector<JavaVMOption> given;
    for (std::string &option : options)
        given.push_back({option.data(), nullptr});
    JavaVMInitArgs arguments{JNI_VERSION_10, static_cast<jint>(given.size()), given.data(),
                             JNI_FALSE};
    JavaVM *machine = nullptr;
    return JNI_CreateJavaVM(&machine, reinterpret_cast<void **>(&env), &arguments) == JNI_OK;
}

inline jobject newObject(const char *className)
{
    const LocalRef<jclass> type{env, env->FindClass(className)};
    return env->NewObject(type.get(), env->GetMethodID(type.get(), "<init>", "()V"));
}

inline jfloatArray floats(const std::vector<jfloat> &values)
{
    const auto length = static_cast<jsize>(values.size());
    jfloatArray array = env->NewFloatArray(length);
    env->SetFloatArrayRegion(array, 0, length, values.data());
    return array;
}

inline jobjectArray rows(const std::vector<jfloatArray> &values)
{
    const LocalRef<jclass> type{env, env->FindClass("[F")};
    const auto length = static_cast<jsize>(values.size());
    jobjectArray array = env->NewObjectArray(length, type.get(), nullptr);
    for (jsize i = 0; const jfloatArray row : values)
        env->SetObjectArrayElement(array, i++, row);
    return array;
}

inline std::vector<jint> valuesOf(jarray array)
{
    std::vector<jint> values(static_cast<std::size_t>(env->GetArrayLength(array)));
    env->GetIntArrayRegion(static_cast<jintArray>(array), 0, static_cast<jsize>(values.size()),
                           values.data());
    return values;
}

#endif
