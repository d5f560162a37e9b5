/*
 * The native methods of org.kestro.tarnex.Native, which are registered when the library is loaded.
 * No C++ exception leaves them: wrong use becomes IllegalArgumentException, a handle that is not
 * live IllegalStateException, lack of memory OutOfMemoryError.
 */
#include "engine_calls.h"
#include "engine_handles.h"

#include <jni.h>

#include <exception>
#include <iterator>
#include <limits>
#include <new>
#include <string>

namespace
{

EngineHandles &handles()
{
    static EngineHandles table;
    return table;
}

/** Raises a Java exception; the method then returns at once. */
void raise(JNIEnv *env, const char *className, const char *message)
{
    if (const jclass type = env->FindClass(className))
        env->ThrowNew(type, message);
}

/** Runs the body of a native method; `failed` when it ends with an exception. */
template <class Value, class Body>
Value guarded(JNIEnv *env, Value failed, Body body)
{
    try {
        return body();
    } catch (const tarnex::WrongUse &wrong) {
        raise(env, "java/lang/IllegalArgumentException", wrong.what());
    } catch (const std::bad_alloc &) {
        raise(env, "java/lang/OutOfMemoryError", "The engine has no memory left.");
    } catch (const std::exception &other) {
        raise(env, "java/lang/InternalError", other.what());
    }
    return failed;
}

/** A copy of the elements of an array, which is not null. */
std::vector<double> valuesOf(JNIEnv *env, jdoubleArray array)
{
    const jsize length = env->GetArrayLength(array);
    std::vector<double> values(static_cast<std::size_t>(length));
    env->GetDoubleArrayRegion(array, 0, length, values.data());
    return values;
}

/** Puts the texts into the first elements of an array; false with a pending exception. */
bool putTexts(JNIEnv *env, const std::vector<std::string> &texts, jobjectArray array)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const jstring text = env->NewStringUTF(texts[i].c_str());
        if (!text)
            return false;
        env->SetObjectArrayElement(array, static_cast<jsize>(i), text);
        if (env->ExceptionCheck())
            return false;
        env->DeleteLocalRef(text);
    }
    return true;
}

/** The values as a Java array; null with a pending exception. */
jdoubleArray toJava(JNIEnv *env, const EngineAnswer &answer, jobjectArray texts)
{
    constexpr std::size_t most = std::numeric_limits<jsize>::max() - 8;
    if (answer.values.size() > most)
        throw std::bad_alloc{};
    if (!putTexts(env, answer.texts, texts))
        return nullptr;
    const auto length = static_cast<jsize>(answer.values.size());
    const jdoubleArray values = env->NewDoubleArray(length);
    if (values)
        env->SetDoubleArrayRegion(values, 0, length, answer.values.data());
    return values;
}

jlong JNICALL openEngine(JNIEnv *env, jclass /*type*/, jdoubleArray options)
{
    return guarded(env, jlong{-1},
                   [&]() -> jlong { return handles().open(readOptions(valuesOf(env, options))); });
}

jboolean JNICALL closeEngine(JNIEnv * /*env*/, jclass /*type*/, jlong handle)
{
    return handles().close(handle) ? JNI_TRUE : JNI_FALSE;
}

jdoubleArray JNICALL call(JNIEnv *env, jclass /*type*/, jlong handle, jint operation,
                          jdoubleArray arguments, jobjectArray texts)
{
    return guarded(env, jdoubleArray{}, [&]() -> jdoubleArray {
        const auto values = valuesOf(env, arguments);
        EngineAnswer answer;
        {
            const auto held = handles().find(handle);
            if (!held) {
                raise(env, "java/lang/IllegalStateException", "The engine is closed.");
                return nullptr;
            }
            const std::lock_guard turn{held->turn};
            answer = callEngine(held->engine, operation, values);
        }
        return toJava(env, answer, texts);
    });
}

jlong JNICALL countedMemory(JNIEnv * /*env*/, jclass /*type*/)
{
    return tarnex::Engine::countedMemory();
}

/** A row of the table of methods; JNI takes names and signatures as writable text. */
JNINativeMethod method(const char *name, const char *signature, void *function)
{
    return {const_cast<char *>(name), const_cast<char *>(signature), function};
}

} // namespace

/** Registers the methods; a class path with the class JNITARNEX alone is fine, too. */
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM *vm, void * /*reserved*/)
{
    constexpr jint version = JNI_VERSION_1_8;
    void *found = nullptr;
    if (vm->GetEnv(&found, version) != JNI_OK)
        return JNI_ERR;
    auto *env = static_cast<JNIEnv *>(found);
    const jclass type = env->FindClass("org/kestro/tarnex/Native");
    if (!type) {
        env->ExceptionClear();
        return version;
    }
    const JNINativeMethod methods[] = {
        method("open", "([D)J", reinterpret_cast<void *>(openEngine)),
        method("close", "(J)Z", reinterpret_cast<void *>(closeEngine)),
        method("call", "(JI[D[Ljava/lang/String;)[D", reinterpret_cast<void *>(call)),
        method("countedMemory", "()J", reinterpret_cast<void *>(countedMemory)),
    };
    const auto count = static_cast<jint>(std::size(methods));
    return env->RegisterNatives(type, methods, count) == JNI_OK ? version : JNI_ERR;
}
