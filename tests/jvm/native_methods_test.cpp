/* What only a JVM can show of the native methods: fields of a parent, the classes of exceptions. */
#include "jvm/jvm_test.h"

#include <array>

namespace
{

using NativeMethods = JvmTest;

TEST_F(NativeMethods, ServeAnEngineThatInheritsItsFields)
{
    engine = newObject("org/kestro/repository/TARNEX/Scenarios$Derived");
    CALL(initTarnex, 1, 3, 0, 1, 1, 0, 0, 0, 0, 0, 0, 1, zeros);
    for (jint node = 0; node < 4; ++node)
        CALL(addNode, node);
    const jfloatArray cap = floats({10});
    for (jint id = 0; const auto &[src, dst] : {std::pair{0, 1}, {1, 2}, {1, 3}, {3, 2}})
        CALL(addLink, id++, 0, src, dst, cap, zeros, {}, {}, {});
    for (const jint id : {3, 4})
        CALL(addLSP, id, newIntArray(env, std::array{0, 1}), 2, 0, 4);
    const auto compute = [&](jfloat bw, bool add) {
        return CALL(computePath, 5, 0, 1, 0, 0, 0, 0, 0, bw, nullptr, add, true);
    };
    EXPECT_EQ(valuesOf(compute(7, true)), (std::vector{0, 1}));
    EXPECT_EQ(valuesOf(preempted()), (std::vector{3, 4}));
    const std::string ofEngine = "org.kestro.repository.model.exception.";
    const std::pair<std::string, std::function<void()>> failures[] = {
        {"java.lang.IllegalArgumentException: path must not be null",
         [&] { CALL(addLSP, 4, nullptr, 2, 0, 4); }},
        {ofEngine + "AddDBException", [&] { CALL(addNode, 0); }},
        {ofEngine + "NoRouteToHostException", [&] { compute(11, true); }},
        {ofEngine + "RoutingException", [&] {
             CALL(removeLSP, 5);
             CALL(addLSP, 1, newIntArray(env, std::array{0, 1, 2}), 0, 0, 5);
             CALL(addBackupLSP, 2, 1, newIntArray(env, std::array{1, 3, 2}), 1, 0, 8, true);
             compute(3, false);
         }}};
    for (const auto &[thrown, call] : failures) {
        call();
        EXPECT_EQ(takeException(), thrown);
    }
}

} // namespace
