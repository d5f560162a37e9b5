/**
 * What a caller waits for: a primary request, the same with admission, an admission and a removal,
 * the local backups of a primary and its global backup, on generated networks that carry some
 * thousand LSPs, a fifth of them with a local backup. Every benchmark checks that the work it
 * measures was done.
 *
 * The load is steady: what a benchmark adds beyond the LSPs in place it removes again, and where it
 * keeps the newest it removes the oldest that has no backup.
 */
#include "admission/admission.h"
#include "admission/placement.h"
#include "common/setup.h"
#include "computation/backup/driver.h"
#include "computation/primary/driver.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "error/error.h"
#include "measure.h"
#include "support/random_network.h"

#include <benchmark/benchmark.h>

#include <deque>
#include <memory>

namespace
{

using namespace property;

struct Size {
    int nodes;
    int lsps;
    double capacity; ///< of the smallest links, about three times the mean load
};

constexpr int linksPerNode = 5;

/** A network with its LSPs in place, and an endless supply of demands. */
class Engine
{
public:
    Engine(Size size, int levels)
        : nbLevels(levels), plan(randomNetwork(rng, size.nodes, linksPerNode, 1))
    {
        errorInit();
        COST = 0.0;
        tarnexConfig = {};
        tarnexConfig.primaryComputationConfig.Fortz = 1.0;
        tarnexConfig.predicateConfig = {false, true, false};
        db = DBnew(0);
        for (PlannedLink &link : plan.links)
            link.capacity = size.capacity * (2 + randomInt(rng, 5)) / 2.0;
        require(longVecInit(&preempted, -1) == 0 && addNetwork(db, plan) == 0, "no network");
        for (nextId = 0; nextId < size.lsps;)
            place(nextId % 5 == 0);
    }
    ~Engine()
    {
        longVecEnd(&preempted);
        DBdestroy(db);
        errorDestroy();
    }
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;

    /** A demand between two nodes, under a new id. */
    PlannedLsp demand()
    {
        PlannedLsp lsp;
        lsp.id = nextId++;
        lsp.precedence = randomInt(rng, nbLevels);
        lsp.bw[0] = std::uniform_real_distribution{0.5, 4.0}(rng);
        const Long src = anyOf(rng, plan.nodes);
        Long dst = src;
        while (dst == src)
            dst = anyOf(rng, plan.nodes);
        lsp.path = {src, -1, dst};
        return lsp;
    }

    /** The same with a path of fewest hops. */
    PlannedLsp routedDemand()
    {
        PlannedLsp lsp = demand();
        lsp.path = hopPath(plan, lsp.path.front(), lsp.path.back(), rng);
        return lsp;
    }

    void compute(LSPRequest *request)
    {
        const bool found = computePrimaryPath(db, request) == 0 && request->path.top > 1;
        require(found, "no path was found");
    }

    void admit(DBLabelSwitchedPath *lsp)
    {
        require(DBaddLSP(db, lsp, &preempted) == 0 && DBgetLSP(db, lsp->id), "an LSP was refused");
    }

    void remove(Long id)
    {
        require(DBremoveLSP(db, id) == 0 && !DBgetLSP(db, id), "an LSP was not removed");
    }

    /** Places a request and removes the oldest LSP without a backup. */
    void replaceOldest(LSPRequest *request)
    {
        struct : PlacementReport {
        } report;
        const Placement end = placePrimary(db, request, PlacementGoal::lsp, report);
        require(end == Placement::done && DBgetLSP(db, request->id), "an LSP was not placed");
        unprotected.push_back(request->id);
        remove(unprotected.front());
        unprotected.pop_front();
    }

    /** Computes the backups of a primary; whether all were found. */
    bool protect(Long primary, BackupType type, LSPRequestList &backups)
    {
        return computeBackup(db, &backups, primary, type) == 0;
    }

    /** A primary without backups in place. */
    Long anyPrimary() { return unprotected[std::size_t(randomInt(rng, int(unprotected.size())))]; }

private:
    void place(bool isProtected)
    {
        const PlannedLsp primary = routedDemand();
        admit(recordOf(primary).get());
        if (!isProtected) {
            unprotected.push_back(primary.id);
            return;
        }
        PlannedLsp backup = backupOf(plan, primary, localBackupLSP, rng);
        backup.id = nextId;
        if (backup.path.size() > 1) {
            admit(recordOf(backup).get());
            ++nextId;
        }
    }

    Rng rng{20};
    int nbLevels;
    NetworkPlan plan;
    DataBase *db = nullptr;
    LongList preempted{};
    Long nextId = 0;
    std::deque<Long> unprotected;
};

/** The engine of the benchmarks that run one after the other on the same network. */
Engine &engineFor(Size size, int levels)
{
    static std::unique_ptr<Engine> engine;
    static int builtNodes = 0;
    static int builtLevels = 0;
    if (builtNodes != size.nodes || builtLevels != levels) {
        engine.reset(); // one network at a time in memory
        engine = std::make_unique<Engine>(size, levels);
        builtNodes = size.nodes;
        builtLevels = levels;
    }
    return *engine;
}

/** Runs `work` on a prepared item per iteration and counts only its time. */
template <class Prepare, class Work, class Finish>
void timeEach(benchmark::State &state, Prepare prepare, Work work, Finish finish)
{
    for (auto iteration : state) {
        static_cast<void>(iteration);
        auto item = prepare();
        state.SetIterationTime(secondsOf([&] { work(item); }));
        finish(item);
    }
    require(errorManager.top == 0, "a message was left");
}

void primaryRequest(benchmark::State &state, Size size, int levels)
{
    Engine &engine = engineFor(size, levels);
    timeEach(
        state, [&] { return requestOf(engine.demand()); },
        [&](auto &request) { engine.compute(request.get()); }, [](auto &) {});
}

void requestAndAdmission(benchmark::State &state, Size size, int levels)
{
    Engine &engine = engineFor(size, levels);
    timeEach(
        state, [&] { return requestOf(engine.demand()); },
        [&](auto &request) { engine.replaceOldest(request.get()); }, [](auto &) {});
}

void admission(benchmark::State &state, Size size, int levels)
{
    Engine &engine = engineFor(size, levels);
    timeEach(
        state, [&] { return recordOf(engine.routedDemand()); },
        [&](auto &lsp) { engine.admit(lsp.get()); }, [&](auto &lsp) { engine.remove(lsp->id); });
}

void removal(benchmark::State &state, Size size, int levels)
{
    Engine &engine = engineFor(size, levels);
    timeEach(
        state,
        [&] {
            LspRecord lsp = recordOf(engine.routedDemand());
            engine.admit(lsp.get());
            return lsp;
        },
        [&](auto &lsp) { engine.remove(lsp->id); }, [](auto &) {});
}

/** The backups of primaries that can be protected; the counter tells how many one request gives. */
void protection(benchmark::State &state, Size size, int levels, BackupType type)
{
    Engine &engine = engineFor(size, levels);
    LSPRequestList backups{};
    require(lspRequestListInit(&backups, -1) == 0, "no memory for requests");
    const Guard<LSPRequestList, lspRequestListEnd> guard{&backups};
    double computed = 0.0;
    const auto anyProtectable = [&] {
        Long primary = engine.anyPrimary();
        while (lspRequestListResize(&backups, 0) != 0 || !engine.protect(primary, type, backups))
            primary = engine.anyPrimary();
        require(lspRequestListResize(&backups, 0) == 0, "no memory for requests");
        return primary;
    };
    timeEach(
        state, anyProtectable,
        [&](Long primary) { require(engine.protect(primary, type, backups), "no backup"); },
        [&](Long) { computed += backups.size; });
    state.counters["backups"] = benchmark::Counter{computed, benchmark::Counter::kAvgIterations};
}

void localBackups(benchmark::State &state, Size size, int levels)
{
    protection(state, size, levels, LOCAL_BACKUP);
}

void globalBackup(benchmark::State &state, Size size, int levels)
{
    protection(state, size, levels, GLOBAL_BACKUP);
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    const std::pair<const char *, void (*)(benchmark::State &, Size, int)> benchmarks[] = {
        {"request", primaryRequest},     {"request+admission", requestAndAdmission},
        {"admission", admission},        {"removal", removal},
        {"local backups", localBackups}, {"global backup", globalBackup}};
    for (const Size size :
         {Size{50, 2000, 150.0}, Size{200, 4000, 120.0}, Size{1000, 5000, 80.0}}) {
        for (const int levels : {1, 8}) {
            for (const auto &[name, run] : benchmarks) {
                const std::string label = std::string(name) +
                                          "/nodes:" + std::to_string(size.nodes) +
                                          "/levels:" + std::to_string(levels);
                benchmark::RegisterBenchmark(label.c_str(), run, size, levels)->UseManualTime();
            }
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
