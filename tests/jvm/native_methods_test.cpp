/*
 * Each native method in surroundings it does not expect, objects of other classes.
 */
#include "jvm/jvm_test.h"

#include <array>

namespace
{

/** A session whose LSPs 1 and 2 are in the way of a larger one, and calls on it. */
class NativeMethods : public JvmTest
{
protected:
    struct Row {
        const char *name;
        std::function<void()> call;
    };
    using State = std::tuple<Network, std::string, int>;

    NativeMethods() { start(engine); }
    ~NativeMethods() override { engine = first; }

    void open() { CALL(initTarnex, 2, 3, 0, 1, 1, 0, 0, 0, 0, 0, 0, 1, zeros); }

    void start(jobject object)
    {
        engine = object;
        open();
        slot = currentSessId;
        for (jint id = 0; id < 5; ++id)
            CALL(addNode, id);
        for (jint id = 0;
             const auto &[src, dst] : {std::pair{0, 1}, {1, 2}, {0, 3}, {3, 2}, {1, 3}})
            link(id++, src, dst);
        for (jint id = 1; id < 3; ++id)
            CALL(addLSP, id, path, 2, 0, 4);
        EXPECT_EQ(takeException(), "");
    }

    void link(jint id, jint src, jint dst)
    {
        CALL(addLink, id, 0, src, dst, id < 2 ? wide : narrow, zeros, {}, {}, {});
    }

    void compute(jfloat bw, bool add, bool preempt)
    {
        const LocalRef<jintArray> result{
            env, CALL(computePath, 33, 0, 2, 0, 0, 0, 0, 0, bw, nullptr, add, preempt)};
    }

    void protect(jint type)
    {
        const LocalRef<jobjectArray> r{env, CALL(computeBackupPath, 1, backups, type, 1, 1)};
    }

    State state() const { return {networkOf(slot), dumpOf(slot), nbSessions}; }

    const jobject first = engine;
    const jfloatArray wide = floats({9, 9}), narrow = floats({4.5, 4.5});
    const jintArray path = newIntArray(env, std::array{0, 1, 2});
    const jintArray detour = newIntArray(env, std::array{0, 3, 2});
    const jintArray backups = newIntArray(env, std::array{34, 35});
    int slot = -1;
    const std::vector<Row> table{
        {"addNode", [this] { CALL(addNode, 9); }},
        {"addLink", [this] { link(40, 0, 4); }},
        {"addLSP", [this] { CALL(addLSP, 30, detour, 0, 1, 1); }},
        {"addBackupLSP", [this] { CALL(addBackupLSP, 31, 1, detour, 0, 0, 4, 1); }},
        {"local backups", [this] { protect(0); }},
        {"global backup", [this] { protect(1); }},
        {"path", [this] { compute(4, false, false); }},
        {"preemption", [this] { compute(6, false, true); }},
        {"placement", [this] { compute(6, true, true); }},
        {"removeLSP", [this] { CALL(removeLSP, 1); }},
        {"removeLink", [this] { CALL(removeLink, 0, 1); }},
        {"removeNode", [this] { CALL(removeNode, 1); }},
        {"printTarnexDB", [this] { CALL(printTarnexDB); }},
        {"initTarnex", [this] { open(); }},
        {"killTarnex", [this] { CALL(killTarnex); }}};
};

TEST_F(NativeMethods, NeedTheFieldsOfAnEngine)
{
    start(newObject("org/kestro/repository/TARNEX/EngineObjects$Derived"));
    compute(6, true, true);
    EXPECT_EQ(valuesOf(preempted()), (std::vector<jint>{1, 2}));
    start(first);
    const State before = state();
    engine = newObject("java/lang/Object");
    for (const Row &row : table) {
        printed(row.call);
        EXPECT_TRUE(takeException().starts_with("java.lang.NoSuchFieldError")) << row.name;
    }
    engine = newObject("org/kestro/repository/TARNEX/EngineObjects$WithoutLsps");
    env->SetIntField(engine, fieldOf(env, engine, "sessId", "I"), slot);
    for (const bool adds : {false, true}) {
        compute(6, adds, true);
        EXPECT_TRUE(takeException().starts_with("java.lang.NoSuchFieldError"));
    }
    EXPECT_TRUE(state() == before);
    protect(0);
    EXPECT_EQ(takeException(), "");
}

} // namespace
