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

jstring JNICALL libraryVersion(JNIEnv *env, jclass /*type*/)
{
    return env->NewStringUTF(TARNEX_VERSION);
}

/** A row of a table of methods; JNI takes names and signatures as writable text. */
JNINativeMethod method(const char *name, const char *signature, void *function)
{
    return {const_cast<char *>(name), const_cast<char *>(signature), function};
}

/** The version of the classes; empty when they do not tell. */
std::string versionOf(JNIEnv *env, jclass loader)
{
    const jfieldID field = env->GetStaticFieldID(loader, "VERSION", "Ljava/lang/String;");
    if (!field)
        return {};
    const auto text = static_cast<jstring>(env->GetStaticObjectField(loader, field));
    std::string version(static_cast<std::size_t>(env->GetStringUTFLength(text)) + 1, '\0');
    env->GetStringUTFRegion(text, 0, env->GetStringLength(text), version.data());
    version.pop_back();
    return version;
}

/** Registers the methods of both classes; false with or without a pending exception. */
bool registerMethods(JNIEnv *env, jclass loader)
{
    const JNINativeMethod ofLoader[] = {
        method("libraryVersion", "()Ljava/lang/String;", reinterpret_cast<void *>(libraryVersion)),
    };
    const JNINativeMethod ofEngines[] = {
        method("open", "([D)J", reinterpret_cast<void *>(openEngine)),
        method("close", "(J)Z", reinterpret_cast<void *>(closeEngine)),
        method("call", "(JI[D[Ljava/lang/String;)[D", reinterpret_cast<void *>(call)),
        method("countedMemory", "()J", reinterpret_cast<void *>(countedMemory)),
    };
    const jclass engines = env->FindClass("org/kestro/tarnex/Native");
    return engines != nullptr &&
           env->RegisterNatives(loader, ofLoader, static_cast<jint>(std::size(ofLoader))) ==
               JNI_OK &&
           env->RegisterNatives(engines, ofEngines, static_cast<jint>(std::size(ofEngines))) ==
               JNI_OK;
}

} // namespace

/** Registers the methods with classes of the same version; a class path with the class JNITARNEX
 * alone is fine, too. */
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM *vm, void * /*reserved*/)
{
    constexpr jint version = JNI_VERSION_1_8;
    void *found = nullptr;
    if (vm->GetEnv(&found, version) != JNI_OK)
        return JNI_ERR;
    auto *env = static_cast<JNIEnv *>(found);
    const jclass loader = env->FindClass("org/kestro/tarnex/internal/NativeLibrary");
    if (!loader) {
        env->ExceptionClear();
        return version;
    }
    const std::string ofClasses = versionOf(env, loader);
    if (ofClasses == TARNEX_VERSION && registerMethods(env, loader))
        return version;
    env->ExceptionClear();
    raise(env, "java/lang/UnsatisfiedLinkError",
          ("the library is of version " TARNEX_VERSION ", the classes are of " +
           (ofClasses.empty() ? "another" : "version " + ofClasses))
              .c_str());
    return JNI_ERR;
}
