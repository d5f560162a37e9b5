/**
 * Base of the tests that call the native methods in a JVM of their own. The methods are those
 * linked into the program, so that the tests reach the session table and the counted memory. A test
 * ends with every session killed and must leave no counted byte behind.
 */
#ifndef TARNEX_TESTS_JVM_JVM_TEST_H
#define TARNEX_TESTS_JVM_JVM_TEST_H

#include "jvm/jvm.h"
#include "support/session_view.h"

class JvmTest : public testing::Test
{
protected:
    ~JvmTest() override
    {
        killAll();
        env->PopLocalFrame(nullptr);
        EXPECT_EQ(bytesHeld(), bytesBefore);
    }

    void killAll()
    {
        for (jint slot = 0; slot < maxSessions; ++slot) {
            if (!sessions[slot])
                continue;
            env->SetIntField(engine, sessId, slot);
            printed([&] { CALL(killTarnex); });
        }
        startFreshErrorStack();
    }

    /** Clears the pending exception; its class and text as toString has them, empty without one. */
    static std::string takeException()
    {
        const LocalRef<jthrowable> thrown{env, env->ExceptionOccurred()};
        if (!thrown)
            return "";
        env->ExceptionClear();
        const LocalRef<jclass> type{env, env->GetObjectClass(thrown.get())};
        const jmethodID text = env->GetMethodID(type.get(), "toString", "()Ljava/lang/String;");
        const LocalRef<jobject> string{env, env->CallObjectMethod(thrown.get(), text)};
        EXPECT_FALSE(env->ExceptionCheck());
        std::string result(400, '\0');
        const auto value = static_cast<jstring>(string.get());
        env->GetStringUTFRegion(value, 0, env->GetStringLength(value), result.data());
        return result.c_str();
    }

    /** Takes the messages of the session called last, or of the stack that belongs to none. */
    static Trail takeSessionTrail()
    {
        const Trail trail = takeTrail();
        if (currentSessId >= 0)
            saveCntx(currentSessId);
        return trail;
    }

    /** The ids that the last call preempted, null when it has not said. */
    jintArray preempted() const
    {
        return static_cast<jintArray>(env->GetObjectField(engine, lsps));
    }

    const Long bytesBefore = (startFreshErrorStack(), bytesHeld());
    const jint frame = env->PushLocalFrame(64);
    jobject engine = newObject("org/kestro/repository/TARNEX/JNITARNEX");
    const jfieldID sessId = fieldOf(env, engine, "sessId", "I");
    const jfieldID lsps = fieldOf(env, engine, "lsps", "[I");
    const jobjectArray zeros = rows(std::vector(8, floats(std::vector<jfloat>(8))));
};

#endif
