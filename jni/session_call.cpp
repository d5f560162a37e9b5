#include "session_call.h"

#include "jni_support.h"
#include "sessions.h"

#include <cstdarg>
#include <cstdio>

EngineCall::~EngineCall()
{
    lock.unlock();
    if (toThrow)
        throwNew(env, toThrow, message);
}

bool EngineCall::refuse(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    toThrow = "java/lang/IllegalArgumentException";
    message = text;
    return false;
}

SessionCall::SessionCall(JNIEnv *environment, jobject engineObject)
    : EngineCall(environment), slot(loadCntx(environment, engineObject))
{
}

SessionCall::~SessionCall()
{
    if (slot >= 0)
        saveCntx(slot);
}
