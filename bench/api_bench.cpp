/**
 * What the calls of the C++ library cost, on a network of 200 nodes and 1000 links that carries
 * 2000 LSPs, a fifth of them with local backups; the placement beside the same calls of the core.
 * Every benchmark checks that the work it measures was done.
 */
#include "admission/admission.h"
#include "admission/placement.h"
#include "common/setup.h"
#include "database/books/change.h"
#include "error/error.h"
#include "measure.h"
#include "support/random_network.h"

#include <tarnex/engine.h>

#include <benchmark/benchmark.h>

namespace
{

using namespace property;
using tarnex::LinkId;
using tarnex::LspId;
using tarnex::NodeId;
using tarnex::Request;

constexpr int nbNodes = 200;
constexpr int linksPerNode = 5;
constexpr int nbLsps = 2000;
constexpr double capacity = 400.0;

NetworkPlan networkFor(Rng &rng) { return randomNetwork(rng, nbNodes, linksPerNode, 1); }

Request randomRequest(Rng &rng, const NetworkPlan &plan)
{
    const Long from = anyOf(rng, plan.nodes);
    Long to = from;
    while (to == from)
        to = anyOf(rng, plan.nodes);
    return {.ingress = NodeId{from},
            .egress = NodeId{to},
            .bandwidth = std::uniform_real_distribution{0.5, 4.0}(rng),
            .level = randomInt(rng, 8)};
}

/** An engine with its LSPs in place. */
struct Loaded {
    Loaded()
    {
        for (const Long id : plan.nodes)
            engine.addNode(NodeId{id});
        for (const PlannedLink &link : plan.links)
            engine.addLink({LinkId{link.id}, NodeId{link.src}, NodeId{link.dst}, {&capacity, 1}});
        for (int k = 0; k < nbLsps; ++k) {
            const auto placed = engine.place(request());
            require(static_cast<bool>(placed), "an LSP was not placed");
            if (k % 5 == 0) // some nodes have no second way out
                static_cast<void>(engine.protect(placed->id, tarnex::Scheme::local));
        }
    }

    Request request() { return randomRequest(rng, plan); }

    Rng rng{1};
    NetworkPlan plan = networkFor(rng);
    tarnex::Engine engine;
};

/** The same LSPs without backups, by the calls of the core. */
struct LoadedCore {
    LoadedCore()
    {
        errorInit();
        tarnexConfig = {};
        tarnexConfig.primaryComputationConfig.Fortz = 1.0;
        tarnexConfig.predicateConfig = {false, true, false};
        for (PlannedLink &link : plan.links)
            link.capacity = capacity;
        require(addNetwork(db, plan) == 0, "no network");
    }
    ~LoadedCore()
    {
        DBdestroy(db);
        errorDestroy();
    }
    LoadedCore(const LoadedCore &) = delete;
    LoadedCore &operator=(const LoadedCore &) = delete;

    void place(const Request &request, Long id)
    {
        LSPRequest wanted{};
        require(lspRequestInit(&wanted) == 0, "no memory");
        const Guard<LSPRequest, lspRequestEnd> guard{&wanted};
        wanted.id = id;
        wanted.precedence = request.level;
        wanted.bw[0] = request.bandwidth;
        for (const Long node : {request.ingress.value, -1, request.egress.value})
            require(longVecPushBack(&wanted.path, node) == 0, "no memory");
        struct final : PlacementReport {
        } report;
        require(placePrimary(db, &wanted, PlacementGoal::lsp, report) == Placement::done,
                "an LSP was not placed");
    }

    Rng rng{1};
    NetworkPlan plan = networkFor(rng);
    DataBase *db = DBnew(0);
};

void placeAndRemove(benchmark::State &state)
{
    Loaded loaded;
    for (auto _ : state) {
        const auto placed = loaded.engine.place(loaded.request());
        require(static_cast<bool>(placed), "an LSP was not placed");
        loaded.engine.remove(placed->id);
    }
}

/** Both without backups in the network, so that they do the same. */
void placeInEngine(benchmark::State &state)
{
    Loaded loaded;
    tarnex::Engine engine;
    for (const Long id : loaded.plan.nodes)
        engine.addNode(NodeId{id});
    for (const PlannedLink &link : loaded.plan.links)
        engine.addLink({LinkId{link.id}, NodeId{link.src}, NodeId{link.dst}, {&capacity, 1}});
    for (int k = 0; k < nbLsps; ++k)
        require(static_cast<bool>(engine.place(loaded.request())), "an LSP was not placed");
    for (auto _ : state) {
        const auto placed = engine.place(loaded.request());
        require(static_cast<bool>(placed), "an LSP was not placed");
        engine.remove(placed->id);
    }
}

void placeInCore(benchmark::State &state)
{
    LoadedCore core;
    for (Long id = 0; id < nbLsps; ++id)
        core.place(randomRequest(core.rng, core.plan), id);
    for (auto _ : state) {
        core.place(randomRequest(core.rng, core.plan), nbLsps);
        require(DBremoveLSP(core.db, nbLsps) == 0, "an LSP was not removed");
    }
}

/** A request that is too large for every link. */
void refuse(benchmark::State &state)
{
    Loaded loaded;
    for (auto _ : state) {
        Request request = loaded.request();
        request.bandwidth = 2.0 * capacity;
        const auto refused = loaded.engine.place(request);
        require(!refused && refused.refusal().largestBandwidth > 0.0, "nothing was refused");
    }
}

void use(benchmark::State &state)
{
    const Loaded loaded;
    std::size_t k = 0;
    for (auto _ : state) {
        const auto of = loaded.engine.use(LinkId{loaded.plan.links[k++ % 1000].id});
        require(of.capacity[0] == capacity, "no use");
    }
}

void protectAndRemove(benchmark::State &state)
{
    Loaded loaded;
    for (auto _ : state) {
        state.PauseTiming();
        auto placed = loaded.engine.place(loaded.request());
        while (loaded.engine.explainProtection(placed->id, tarnex::Scheme::local)) {
            loaded.engine.remove(placed->id);
            placed = loaded.engine.place(loaded.request());
        }
        state.ResumeTiming();
        const auto protection = loaded.engine.protect(placed->id, tarnex::Scheme::local);
        require(static_cast<bool>(protection), "an LSP was not protected");
        state.PauseTiming();
        loaded.engine.remove(placed->id);
        state.ResumeTiming();
    }
}

BENCHMARK(placeAndRemove)->Unit(benchmark::kMicrosecond);
BENCHMARK(placeInEngine)->Unit(benchmark::kMicrosecond);
BENCHMARK(placeInCore)->Unit(benchmark::kMicrosecond);
BENCHMARK(refuse)->Unit(benchmark::kMicrosecond);
BENCHMARK(use);
BENCHMARK(protectAndRemove)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
