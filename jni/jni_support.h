/**
 * What the Java binding needs of JNI: scoped references, array views, fields and exceptions.
 *
 * The helpers leave an exception that the JVM has raised pending and say so in their result; the
 * caller then returns to Java without further JNI calls.
 */
#ifndef TARNEX_JNI_JNI_SUPPORT_H
#define TARNEX_JNI_JNI_SUPPORT_H

#include "common/common.h"

#include <jni.h>

#include <span>
#include <utility>

static_assert(sizeof(jint) == sizeof(Long));

/** A local reference, deleted at the end of the scope unless released. */
template <class Ref>
class LocalRef
{
public:
    LocalRef(JNIEnv *environment, Ref reference) : env(environment), ref(reference) {}
    ~LocalRef() { reset(nullptr); }
    LocalRef(const LocalRef &) = delete;
    LocalRef &operator=(const LocalRef &) = delete;

    /** The reference, still owned. */
    Ref get() const { return ref; }
    explicit operator bool() const { return ref != nullptr; }
    /** Gives the reference up to the caller. */
    Ref release() { return std::exchange(ref, nullptr); }
    /** Takes over another reference in place of the present one. */
    void reset(Ref other)
    {
        if (ref)
            env->DeleteLocalRef(ref);
        ref = other;
    }

private:
    JNIEnv *env;
    Ref ref;
};

/** Field of the object's class; null with the JVM's NoSuchFieldError pending when it has none. */
jfieldID fieldOf(JNIEnv *env, jobject obj, const char *name, const char *signature);

/**
 * Throws a new exception of the class named with slashes.
 *
 * @param message its text, null for none
 * @return false, with the JVM's NoClassDefFoundError pending, when the class is not found
 */
bool throwNew(JNIEnv *env, const char *className, const char *message);

/** Copies the first floats of a long enough array into `values`; false: exception pending. */
bool readFloats(JNIEnv *env, jfloatArray array, std::span<double> values);

/**
 * Fills an empty list with the first `count` elements of an array that has as many; 0, or -1 after
 * a message.
 */
[[nodiscard]] int readInts(JNIEnv *env, jintArray array, jsize count, LongList &list);

/** New Java array of the given ids; null with the JVM's OutOfMemoryError pending. */
jintArray newIntArray(JNIEnv *env, std::span<const Long> ids);

#endif
