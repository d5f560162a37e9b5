/**
 * One call from Java on a live session: the session's context is loaded on entry and saved on every
 * way out, before an exception is thrown.
 */
#ifndef TARNEX_JNI_SESSION_CALL_H
#define TARNEX_JNI_SESSION_CALL_H

#include "admission/placement.h"
#include "common/types.h"
#include "jni_support.h"

#include <jni.h>

#include <span>

/** The Java exceptions of the engine, as FindClass wants them. */
inline constexpr const char *addDBException =
    "org/kestro/repository/model/exception/AddDBException";
inline constexpr const char *noRouteToHostException =
    "org/kestro/repository/model/exception/NoRouteToHostException";
inline constexpr const char *routingException =
    "org/kestro/repository/model/exception/RoutingException";

/** Throws IllegalArgumentException with a text that says what is wrong with which argument. */
void throwIllegalArgument(JNIEnv *env, const char *format, ...)
    __attribute__((format(printf, 2, 3)));

/**
 * @name Contract checks
 * Each is true when the argument is within the contract; otherwise IllegalArgumentException (or an
 * exception of the JVM itself) is pending and the call must return. They change nothing.
 */
///@{
bool checkCount(JNIEnv *env, const char *name, jint count, int max);
bool checkLevel(JNIEnv *env, jint level);
bool checkBandwidth(JNIEnv *env, const char *name, jfloat bandwidth);
bool checkArray(JNIEnv *env, const char *name, jarray array, jsize minLength);
/** Reads `rows` rows of `columns` floats into the front of the rows of `matrix`. */
bool readMatrix(JNIEnv *env, const char *name, jobjectArray array, int rows, int columns,
                double (&matrix)[MAXOA][MAXPL]);
///@}

/** What a path computation is to do with the network beside computing. */
inline PlacementGoal goalOf(jboolean addLSP, jboolean preempt)
{
    return addLSP ? PlacementGoal::lsp : preempt ? PlacementGoal::room : PlacementGoal::pathOnly;
}

/** The caller's session in the globals, from entry to return. */
class SessionCall
{
public:
    SessionCall(JNIEnv *environment, jobject engineObject);
    ~SessionCall();
    SessionCall(const SessionCall &) = delete;
    SessionCall &operator=(const SessionCall &) = delete;

    /**
     * False when the object names no live session or an exception was pending on entry: the call
     * returns at once.
     */
    explicit operator bool() const { return slot >= 0; }

    /**
     * Saves the session and throws an exception of that class without a message; when the class is
     * not found, says so on standard error and leaves the JVM's own error pending. The caller
     * pushes its messages first and returns right after. An exception that is pending already
     * stays.
     */
    void fail(const char *exceptionClass);

    JNIEnv *const env;
    const jobject obj;

private:
    void save();

    int slot;
    bool isSaved = false;
};

#endif
