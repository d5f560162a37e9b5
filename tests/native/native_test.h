/**
 * Base of the tests that call the native methods without a JVM: a session whose LSPs 1 and 2 are in
 * the way of a larger one. A test ends with every session killed and must leave no counted byte, no
 * reference and no array with its elements out.
 */
#ifndef TARNEX_TESTS_NATIVE_NATIVE_TEST_H
#define TARNEX_TESTS_NATIVE_NATIVE_TEST_H

#include "native/caller.h"
#include "support/session_view.h"

class NativeTest : public testing::Test
{
protected:
    ~NativeTest() override
    {
        killAll();
        EXPECT_EQ(bytesHeld(), bytesBefore);
        EXPECT_EQ(caller.misuse, std::vector<std::string>{});
    }

    void killAll()
    {
        for (jint session = 0; session < maxSessions; ++session) {
            if (!sessions[session])
                continue;
            Caller::at(engine).sessId = session;
            printed([&] { CALL(killTarnex); });
        }
        startFreshErrorStack();
        caller.finish();
    }

    void open() { CALL(initTarnex, 2, 3, 0, 1, 1, 0, 0, 0, 0, 0, 0, 1, zeros); }

    void start()
    {
        Caller::at(engine).lsps = nullptr;
        caller.thrown.clear();
        open();
        slot = currentSessId;
        for (jint id = 0; id < 5; ++id)
            CALL(addNode, id);
        for (jint id = 0;
             const auto &[src, dst] : {std::pair{0, 1}, {1, 2}, {0, 3}, {3, 2}, {1, 3}})
            link(id++, src, dst);
        for (jint id = 1; id < 3; ++id)
            CALL(addLSP, id, path, 2, 0, 4);
        caller.finish();
        EXPECT_EQ(caller.thrown + messages(), "");
    }

    void link(jint id, jint src, jint dst)
    {
        const bool isNarrow = id > 1 && id < 9;
        CALL(addLink, id, 0, src, dst, isNarrow ? narrow : wide, zeros, {}, {}, {});
    }

    jobject compute(jint id, jfloat bw, bool add, bool preempt)
    {
        return CALL(computePath, id, 0, 2, 0, 0, 0, 0, 0, bw, nullptr, add, preempt);
    }

    jobject protect(jintArray ids, jint type, bool add, bool preempt)
    {
        return CALL(computeBackupPath, 1, ids, type, add, preempt);
    }

    /** Takes the messages of the session called last, without units and lines. */
    static std::string messages()
    {
        std::string all;
        for (const std::string &text : takeTrail())
            all += text.substr(0, text.rfind(" in ")) + "\n";
        if (currentSessId >= 0)
            saveCntx(currentSessId);
        return all;
    }

    const Long bytesBefore = (startFreshErrorStack(), bytesHeld());
    Caller caller;
    JNIEnv *const env = &caller;
    const jobject engine = caller.object("Engine");
    const jobjectArray zeros = caller.rows(std::vector(8, std::vector<jfloat>(8)));
    const jfloatArray wide = caller.floats({9, 9}), narrow = caller.floats({4.5, 4.5});
    const jintArray path = caller.ints({0, 1, 2}), detour = caller.ints({0, 3, 2});
    const jintArray backups = caller.ints({34, 35});
    int slot = -1;
};

#endif
