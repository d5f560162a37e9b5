#include "session_call.h"

#include "sessions.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

void throwIllegalArgument(JNIEnv *env, const char *format, ...)
{
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    throwNew(env, "java/lang/IllegalArgumentException", text);
}

bool checkCount(JNIEnv *env, const char *name, jint count, int max)
{
    if (count >= 1 && count <= max)
        return true;
    throwIllegalArgument(env, "%s must lie between 1 and %d, but is %d", name, max, count);
    return false;
}

bool checkLevel(JNIEnv *env, jint level)
{
    if (level >= 0 && level < MAXPL)
        return true;
    throwIllegalArgument(env, "PL must lie between 0 and %d, but is %d", MAXPL - 1, level);
    return false;
}

bool checkBandwidth(JNIEnv *env, const char *name, jfloat bandwidth)
{
    if (std::isfinite(bandwidth) && bandwidth >= 0.0F)
        return true;
    throwIllegalArgument(env, "%s must be a finite bandwidth of at least 0, but is %g", name,
                         static_cast<double>(bandwidth));
    return false;
}

bool checkArray(JNIEnv *env, const char *name, jarray array, jsize minLength)
{
    if (!array) {
        throwIllegalArgument(env, "%s must not be null", name);
        return false;
    }
    const jsize length = env->GetArrayLength(array);
    if (length >= minLength)
        return true;
    throwIllegalArgument(env, "%s needs %d elements or more, but has %d", name, minLength, length);
    return false;
}

bool readMatrix(JNIEnv *env, const char *name, jobjectArray array, int rows, int columns,
                double (&matrix)[MAXOA][MAXPL])
{
    if (!checkArray(env, name, array, rows))
        return false;
    for (int i = 0; i < rows; ++i) {
        char rowName[64];
        std::snprintf(rowName, sizeof rowName, "%s[%d]", name, i);
        const LocalRef<jfloatArray> row{
            env, static_cast<jfloatArray>(env->GetObjectArrayElement(array, i))};
        if (env->ExceptionCheck() || !checkArray(env, rowName, row.get(), columns) ||
            !readFloats(env, row.get(), {matrix[i], static_cast<std::size_t>(columns)}))
            return false;
    }
    return true;
}

SessionCall::SessionCall(JNIEnv *environment, jobject engineObject)
    : env(environment), obj(engineObject), slot(loadCntx(environment, engineObject))
{
}

SessionCall::~SessionCall() { save(); }

void SessionCall::fail(const char *exceptionClass)
{
    save();
    if (env->ExceptionCheck())
        return;
    if (!throwNew(env, exceptionClass, nullptr))
        std::fputs("Unable to find the exception class, giving up\n", stderr);
}

void SessionCall::save()
{
    if (slot >= 0 && !isSaved)
        saveCntx(slot);
    isSaved = true;
}
