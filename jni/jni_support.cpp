#include "jni_support.h"

#include "common/types.h"

#include <algorithm>
#include <array>

jfieldID fieldOf(JNIEnv *env, jobject obj, const char *name, const char *signature)
{
    const LocalRef<jclass> objectClass{env, env->GetObjectClass(obj)};
    return env->GetFieldID(objectClass.get(), name, signature);
}

bool throwNew(JNIEnv *env, const char *className, const char *message)
{
    const LocalRef<jclass> exceptionClass{env, env->FindClass(className)};
    if (!exceptionClass)
        return false;
    env->ThrowNew(exceptionClass.get(), message);
    return true;
}

bool readFloats(JNIEnv *env, jfloatArray array, std::span<double> values)
{
    std::array<jfloat, std::max(MAXOA, MAXPL)> floats{};
    env->GetFloatArrayRegion(array, 0, static_cast<jsize>(values.size()), floats.data());
    if (env->ExceptionCheck())
        return false;
    std::copy_n(floats.begin(), values.size(), values.begin());
    return true;
}

int readInts(JNIEnv *env, jintArray array, jsize count, LongList &list)
{
    if (longVecResize(&list, count) != 0)
        return -1;
    env->GetIntArrayRegion(array, 0, count, list.cont);
    if (env->ExceptionCheck())
        return -1;
    list.top = count;
    return 0;
}

jintArray newIntArray(JNIEnv *env, std::span<const Long> ids)
{
    const auto length = static_cast<jsize>(ids.size());
    jintArray array = env->NewIntArray(length);
    if (array)
        env->SetIntArrayRegion(array, 0, length, ids.data());
    return array;
}
