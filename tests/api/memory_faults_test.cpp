/* Memory that runs out inside the core: the call throws and leaves everything as it was. */
#include "api/networks.h"
#include "support/memory_probe.h"

#include <functional>
#include <new>

namespace tarnex::test
{

namespace
{

struct Operation {
    const char *name;
    std::function<void(Engine &)> run;
};

/** A loaded network: LSPs of level 7, protected, which others may preempt. */
Engine loaded(const NetworkPlan &plan)
{
    Engine engine;
    build(engine, plan);
    Rng rng{3};
    for (int k = 0; k < 40; ++k) {
        Request request = randomRequest(rng, plan, engine.options());
        request.bandwidth = 16.0;
        request.level = 7;
        request.mayPreempt = false;
        const auto placed = engine.place(request);
        if (placed)
            static_cast<void>(engine.protect(placed->id, Scheme::localOrGlobal));
    }
    return engine;
}

/** The first request of level 0 for which LSPs with backups have to give way. */
Request preempting(Engine &engine, const NetworkPlan &plan)
{
    Rng rng{4};
    while (true) {
        Request request = randomRequest(rng, plan, engine.options());
        request.bandwidth = 64.0;
        request.level = 0;
        request.mayPreempt = true;
        const auto proposed = engine.propose(request);
        if (proposed && proposed->victims.size() > 2)
            return request;
    }
}

} // namespace

TEST(MemoryFaults, ThrowAndChangeNothing)
{
    Rng rng{2};
    const NetworkPlan plan = property::randomNetwork(rng, 10, 3, 1);
    Engine example = loaded(plan);
    const Request request = preempting(example, plan);
    LspId protectedOne{0};
    while (!example.has(protectedOne) || example.backupsOf(protectedOne).empty() ||
           !example.protect(protectedOne, Scheme::localOrGlobal))
        protectedOne.value += 1;
    const Path path = example.lsp(protectedOne).path;
    const std::vector capacity{5.0};
    const std::vector<Operation> operations{
        {"place", [&](Engine &engine) { ASSERT_TRUE(engine.place(request)); }},
        {"propose", [&](Engine &engine) { ASSERT_TRUE(engine.propose(request)); }},
        {"explain",
         [&](Engine &engine) {
             ASSERT_TRUE(engine.explain({request.ingress, request.egress, 1e6}));
         }},
        {"add",
         [&](Engine &engine) {
             Request given = request;
             given.bandwidth = 0.5;
             ASSERT_TRUE(engine.add(given, path.nodes));
         }},
        {"protect",
         [&](Engine &engine) { ASSERT_TRUE(engine.protect(protectedOne, Scheme::localOrGlobal)); }},
        {"remove", [&](Engine &engine) { engine.remove(protectedOne); }},
        {"remove a link",
         [&](Engine &engine) { static_cast<void>(engine.removeLink(path.links[0])); }},
        {"add a node", [&](Engine &engine) { engine.addNode(node(99)); }},
        {"add a link", [&](Engine &engine) {
             const NodeId lonely = node(98);
             if (!engine.linkBetween(lonely, lonely) && engine.nbNodes() == plan.nodes.size())
                 engine.addNode(lonely);
             engine.addLink({LinkId{500}, path.nodes[0], lonely, capacity});
         }}};
    errorInit(); // the probe makes room on a stack, which these engines do not use
    int throws = 0;
    for (const Operation &operation : operations) {
        SCOPED_TRACE(operation.name);
        bool faulted = true;
        for (int nth = 1; faulted; ++nth) {
            Engine engine = loaded(plan);
            const auto before = uses(engine, plan);
            const std::size_t lsps = engine.nbLsps();
            bool threw = false;
            {
                const MemoryProbe probe{nth};
                try {
                    operation.run(engine);
                } catch (const std::bad_alloc &) {
                    threw = true;
                }
                faulted = probe.faulted();
            }
            ASSERT_TRUE(!threw || faulted) << nth;
            if (!threw)
                continue; // nothing failed, or what failed only spares work
            ++throws;
            EXPECT_EQ(engine.nbLsps(), lsps) << nth;
            EXPECT_TRUE(areSame(before, uses(engine, plan))) << nth;
            operation.run(engine);
        }
    }
    EXPECT_GT(throws, 100);
    errorDestroy();
}

} // namespace tarnex::test
