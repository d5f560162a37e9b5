/**
 * One call from Java, from entry to return: what it works on and how it ends.
 *
 * Calls may come from any thread; each holds the engine's lock for its whole length.
 *
 * A call that cannot go on notes the exception that Java is to see and returns. The exception is
 * thrown when the call object goes, after everything that the call has made, after the session is
 * saved and the lock given back: looking the class up may run Java code, and that may call the
 * engine again or wait for a thread that does.
 */
#ifndef TARNEX_JNI_SESSION_CALL_H
#define TARNEX_JNI_SESSION_CALL_H

#include "common/engine_lock.h"

#include <jni.h>

/** The Java exceptions of the engine, as FindClass wants them. */
inline constexpr const char *addDBException =
    "org/kestro/repository/model/exception/AddDBException";
inline constexpr const char *noRouteToHostException =
    "org/kestro/repository/model/exception/NoRouteToHostException";
inline constexpr const char *routingException =
    "org/kestro/repository/model/exception/RoutingException";

/** A call that needs no session; the first object of its method, and so the last to go. */
class EngineCall
{
public:
    explicit EngineCall(JNIEnv *environment) : env(environment) {}
    ~EngineCall();
    EngineCall(const EngineCall &) = delete;
    EngineCall &operator=(const EngineCall &) = delete;

    /**
     * Notes an exception of that class without a message. The caller pushes its messages first and
     * returns right after, as it does after refuse.
     */
    void fail(const char *exceptionClass) { toThrow = exceptionClass; }

    /**
     * Notes an IllegalArgumentException with a text that says what is wrong with which argument.
     *
     * @return false, as the checks that refuse an argument do
     */
    bool refuse(const char *format, ...) __attribute__((format(printf, 2, 3)));

    JNIEnv *const env;

private:
    EngineLock lock = lockEngine();
    const char *toThrow = nullptr; ///< class of the exception; null: none
    const char *message = nullptr; ///< its text, in `text`; null: none
    char text[200];
};

/** A call on a session, which is in the globals from here to the end of the call. */
class SessionCall : public EngineCall
{
public:
    SessionCall(JNIEnv *environment, jobject engineObject);
    ~SessionCall();

    /** False when the object names no live session: the call returns at once. */
    explicit operator bool() const { return slot >= 0; }

private:
    int slot;
};

#endif
