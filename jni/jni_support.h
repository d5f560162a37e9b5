/**
 * What the Java binding needs of JNI: scoped references, the elements of arrays, fields and
 * exceptions.
 *
 * The binding uses eighteen functions of the JNIEnv table and no others: GetObjectClass,
 * GetFieldID, GetIntField, SetIntField, SetObjectField, FindClass, ThrowNew, GetArrayLength,
 * GetObjectArrayElement, SetObjectArrayElement, NewObjectArray, NewIntArray, SetIntArrayRegion,
 * GetIntArrayElements, ReleaseIntArrayElements, GetFloatArrayElements, ReleaseFloatArrayElements
 * and DeleteLocalRef. None of them tells whether an exception is pending: a null result does, and
 * the caller then returns to Java.
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

/** The elements of a Java array, for reading, from construction to the end of the scope. */
template <class Array, class Element, auto get, auto release>
class Elements
{
public:
    /** Null counts as an array without elements. */
    Elements(JNIEnv *environment, Array source)
        : env(environment), array(source),
          length(source ? static_cast<std::size_t>(env->GetArrayLength(source)) : 0),
          elements(length > 0 ? (env->*get)(source, nullptr) : nullptr)
    {
    }
    ~Elements()
    {
        if (elements)
            (env->*release)(array, elements, 0);
    }
    Elements(const Elements &) = delete;
    Elements &operator=(const Elements &) = delete;

    /** False, with the JVM's OutOfMemoryError pending, when they cannot be had. */
    explicit operator bool() const { return elements || length == 0; }
    std::span<const Element> values() const { return {elements, length}; }

private:
    JNIEnv *env;
    Array array;
    std::size_t length;
    Element *elements;
};
using IntElements =
    Elements<jintArray, jint, &JNIEnv::GetIntArrayElements, &JNIEnv::ReleaseIntArrayElements>;
using FloatElements = Elements<jfloatArray, jfloat, &JNIEnv::GetFloatArrayElements,
                               &JNIEnv::ReleaseFloatArrayElements>;

/** Field of the object's class; null with the JVM's NoSuchFieldError pending when it has none. */
jfieldID fieldOf(JNIEnv *env, jobject obj, const char *name, const char *signature);

/**
 * Throws a new exception of the class named with slashes; when the class is not found, says so on
 * standard error and leaves the JVM's NoClassDefFoundError pending.
 *
 * @param message its text, null for none
 */
void throwNew(JNIEnv *env, const char *className, const char *message);

/** New Java array of the given ids; null with the JVM's OutOfMemoryError pending. */
jintArray newIntArray(JNIEnv *env, std::span<const Long> ids);

#endif
