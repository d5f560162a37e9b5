#include "jni_support.h"

#include <cstdio>

jfieldID fieldOf(JNIEnv *env, jobject obj, const char *name, const char *signature)
{
    const LocalRef<jclass> objectClass{env, env->GetObjectClass(obj)};
    return env->GetFieldID(objectClass.get(), name, signature);
}

void throwNew(JNIEnv *env, const char *className, const char *message)
{
    const LocalRef<jclass> exceptionClass{env, env->FindClass(className)};
    if (exceptionClass)
        env->ThrowNew(exceptionClass.get(), message);
    else
        std::fputs("Unable to find the exception class, giving up\n", stderr);
}

jintArray newIntArray(JNIEnv *env, std::span<const Long> ids)
{
    const auto length = static_cast<jsize>(ids.size());
    jintArray array = env->NewIntArray(length);
    if (array)
        env->SetIntArrayRegion(array, 0, length, ids.data());
    return array;
}
