/* Calls from several threads, and calls that come while another one throws. */
#include "native/native_test.h"

#include <array>
#include <cstdint>
#include <random>
#include <thread>

namespace
{

constexpr jint nodes = 6, lspIds = 24;

/** A thread's caller. A number says which call it makes and with which arguments. */
class Worker
{
public:
    void open()
    {
        CALL(initTarnex, 1, 8, 0, 1, 1, 0, 0, 0, 0, 0, 0, 1, zeros);
        for (jint src = 0; src < nodes; ++src)
            CALL(addNode, src);
        for (jint link = 0; link < nodes * nodes; ++link)
            CALL(addLink, link, 0, link / nodes, link % nodes, room, zeros, {}, {}, {});
        caller.finish();
    }

    void addNode(jint session, jint node)
    {
        Caller::at(engine).sessId = session;
        CALL(addNode, node);
        caller.finish();
        EXPECT_EQ(caller.thrown, "");
    }

    jint session() const { return Caller::at(engine).sessId; }

    /** Makes a call on a session; what came of it. */
    std::string make(std::uint32_t call, jint session)
    {
        std::minstd_rand rng{call + 1};
        const auto below = [&](unsigned bound) { return static_cast<jint>(rng() % bound); };
        Caller::at(engine).sessId = session;
        Caller::at(engine).lsps = nullptr;
        caller.thrown.clear();
        const jint kind = below(12), id = below(lspIds), src = below(nodes), dst = below(nodes);
        const jint level = below(8), flags = below(4);
        const auto bw = static_cast<jfloat>(1 + below(5));
        jobject result = nullptr;
        if (kind < 4)
            result =
                CALL(computePath, id, src, dst, 0, 0, 0, 0, level, bw, {}, flags & 1, flags > 1);
        else if (kind < 6)
            result = CALL(computeBackupPath, id, ids, level & 1, flags & 1, flags > 1);
        else if (kind < 8)
            CALL(addLSP, id, paths[static_cast<std::size_t>(flags)], level, 0, bw);
        else if (kind < 11)
            CALL(removeLSP, id);
        else if (flags > 0)
            CALL(removeLink, src, dst);
        else
            CALL(addLink, src * nodes + dst, 0, src, dst, room, zeros, {}, {}, {});
        return caller.outcome(engine, result);
    }

    Caller caller;

private:
    JNIEnv *const env = &caller;
    const jobject engine = caller.object("Engine");
    const jobjectArray zeros = caller.rows({std::vector<jfloat>(8)});
    const jfloatArray room = caller.floats({9});
    const jintArray ids = caller.ints({20, 21, 22, 23, 20, 21});
    const std::array<jintArray, 4> paths{caller.ints({0, 1, 2}), caller.ints({3, 1}),
                                         caller.ints({2, 4, 5, 0}), caller.ints({5, 4})};
};

class Threads : public NativeTest
{
protected:
    static constexpr std::uint32_t nbThreads = 8, nbCalls = 100'000;

    /** One call of a thread, every other of which is on the shared session. */
    static std::uint32_t callOf(std::uint32_t thread, std::uint32_t i)
    {
        return i * nbThreads + thread;
    }
    static bool isShared(std::uint32_t i) { return i % 2 == 0; }

    struct Call {
        std::uint32_t thread, index;
    };

    static void compare(int one, int other)
    {
        EXPECT_EQ(dumpOf(one), dumpOf(other));
        EXPECT_EQ(sessions[one]->errorManager.top, sessions[other]->errorManager.top);
    }
};

TEST_F(Threads, GetWhatTheSameCallsGiveOneAfterTheOther)
{
    std::vector<Worker> workers(nbThreads);
    std::vector<std::vector<std::string>> outcomes(nbThreads);
    std::vector<jint> own(nbThreads);
    std::vector<Call> order; // of the calls on the shared session, noted inside the calls
    const auto work = [&](std::uint32_t t, jint shared) {
        Worker &worker = workers[t];
        worker.open();
        own[t] = worker.session();
        std::uint32_t i = 0;
        worker.caller.onGetIntField = [&] {
            if (isShared(i))
                order.push_back({t, i});
        };
        for (; i < nbCalls / nbThreads; ++i)
            outcomes[t].push_back(worker.make(callOf(t, i), isShared(i) ? shared : own[t]));
        worker.caller.onGetIntField = [] {};
    };

    Worker replay;
    printed([&] {
        replay.open();
        const jint shared = replay.session();
        std::vector<std::thread> threads;
        for (std::uint32_t t = 0; t < nbThreads; ++t)
            threads.emplace_back(work, t, shared);
        for (std::thread &thread : threads)
            thread.join();

        replay.open();
        for (const auto &[t, i] : order)
            ASSERT_EQ(replay.make(callOf(t, i), replay.session()), outcomes[t][i]) << t << ' ' << i;
        EXPECT_EQ(order.size(), nbCalls / 2);
        compare(shared, replay.session());
        for (std::uint32_t t = 0; t < nbThreads; ++t) {
            replay.open();
            for (std::uint32_t i = 1; i < nbCalls / nbThreads; i += 2)
                ASSERT_EQ(replay.make(callOf(t, i), replay.session()), outcomes[t][i]);
            compare(own[t], replay.session());
        }
    });
    EXPECT_EQ(replay.caller.misuse, std::vector<std::string>{});
    for (const Worker &worker : workers)
        EXPECT_EQ(worker.caller.misuse, std::vector<std::string>{});
}

TEST_F(Threads, MayCallWhileAnExceptionIsLookedUp)
{
    start();
    const std::function<void()> failures[] = {
        [this] { CALL(addNode, 0); }, [this] { CALL(addLSP, 9, path, 8, 0, 1); },
        [this] { caller.finish(compute(9, 10, false, false)); },
        [this] { CALL(initTarnex, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, zeros); }};
    jint nextNode = 10;
    for (const auto &fail : failures) {
        caller.onFindClass = [&] {
            Worker here, there;
            here.addNode(slot, nextNode++);
            std::thread{[&] { there.addNode(slot, nextNode++); }}.join();
        };
        caller.thrown.clear();
        fail();
        caller.finish();
        EXPECT_NE(caller.thrown, "");
    }
    EXPECT_EQ(networkOf(slot).nodes.size(), 5 + 2 * std::size(failures));
    EXPECT_EQ(sessions[slot]->errorManager.top, 6); // of the two calls that the core refused
    EXPECT_NE(messages(), "");
}

} // namespace
