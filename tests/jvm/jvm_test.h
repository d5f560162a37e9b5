/**
 * Base of the tests that call the native methods in a JVM of their own. The methods are those
 * linked into the program, so that the tests reach the session table and the counted memory. A test
 * ends with every session killed and must leave no counted byte behind.
 */
#ifndef TARNEX_TESTS_JVM_JVM_TEST_H
#define TARNEX_TESTS_JVM_JVM_TEST_H

#include "database/books/dump.h"
#include "database/books/lookup.h"
#include "jvm/jvm.h"
#include "sessions.h"
#include "support/memory_faults.h"

#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <utility>

/** The ids of everything in a session. */
struct Network {
    std::set<jint> nodes, lsps;
    std::map<std::pair<jint, jint>, jint> links;
    bool operator==(const Network &) const = default;
};

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

    /** Counted bytes in use, without those of the error stacks. */
    static Long bytesHeld()
    {
        Long entries = currentSessId < 0 ? errorManager.size : 0;
        for (const SessionItem *item : sessions)
            entries += item ? item->errorManager.size : 0;
        return allocatedMemory - entries * static_cast<Long>(sizeof(ErrorElem));
    }

    /** What a call prints through the C library, on standard output and error. */
    static std::string printed(const std::function<void()> &call)
    {
        char *text = nullptr;
        std::size_t length = 0;
        FILE *const stream = open_memstream(&text, &length);
        FILE *const out = std::exchange(stdout, stream), *const err = std::exchange(stderr, stream);
        call();
        stdout = out;
        stderr = err;
        static_cast<void>(std::fclose(stream));
        const std::string result{text, length};
        std::free(text);
        return result;
    }

    static std::string dumpOf(int slot)
    {
        return sessions[slot] ? printed([&] { DBprintDB(sessions[slot]->centralDB); }) : "";
    }

    static Network networkOf(int slot)
    {
        Network network;
        if (!sessions[slot])
            return network;
        DataBase &db = *sessions[slot]->centralDB;
        for (const auto *lsp : slots(db.lspVec)) {
            if (lsp)
                network.lsps.insert(lsp->id);
        }
        for (const auto *node : slots(db.nodeVec)) {
            if (!node)
                continue;
            network.nodes.insert(node->id);
            for (const Long to : inUse(node->outNeighb))
                network.links[{node->id, to}] = DBgetLinkID(&db, node->id, to);
        }
        return network;
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
