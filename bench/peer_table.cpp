/**
 * Prints what the engine takes beside what a user would write without it on Boost.Graph: primary
 * requests with admission, backups, admission and removal of given paths, the price of class types
 * and levels, requests of other kinds, and memory. With --quick it only shows that it works, with
 * --requests, --kinds or --changes it prints the primary requests, those of other kinds or what
 * changes of links cost alone.
 *
 * Both sides get the same network, the same LSPs in place and the same sequence of demands, in
 * which the faster side gets further. The load is steady: each LSP placed replaces the oldest. A
 * figure is the median over operations that were done; those refused are counted beside them.
 */
#include "common/setup.h"
#include "floor.h"
#include "measure.h"
#include "sides.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace property;

const std::vector<int> allSizes{100, 200, 500, 1000, 2000, 4000};

/** Seeds of the demands of each kind of measurement. */
enum Seed : unsigned { comparison = 3, requests, givenPaths, primaries, searches };

/** The power of the number of nodes that figures grow with: least squares in logarithms. */
double slopeOf(const std::vector<int> &sizes, const std::vector<double> &figures)
{
    const auto count = static_cast<double>(sizes.size());
    double x = 0.0, y = 0.0, xx = 0.0, xy = 0.0;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const double size = std::log(sizes[i]);
        const double figure = std::log(figures[i]);
        x += size;
        y += figure;
        xx += size * size;
        xy += size * figure;
    }
    return (xy - x * y / count) / (xx - x * x / count);
}

struct RequestFigures {
    Figure request;
    double removal; ///< us
};

RequestFigures timeEngine(const Sampler &sample, Sides &sides)
{
    std::vector<double> removals;
    const Figure request = sample([&, next = Demands{requests, sides.setting}]() mutable {
        const std::optional<double> seconds = sides.engine.request(next());
        if (seconds)
            removals.push_back(sides.engine.removeOldest());
        return seconds;
    });
    return {request, medianMicroseconds(removals)};
}

Figure timePeer(const Sampler &sample, Sides &sides, Extent extent)
{
    return sample([&, next = Demands{requests, sides.setting}]() mutable {
        const std::optional<double> seconds = sides.requestAtPeer(next(), extent);
        if (seconds)
            sides.removeOldestAtPeer();
        return seconds;
    });
}

/** As long as the peer takes over what the engine places, both find paths of the same cost. */
Figure compareCosts(const Sampler &sample, Sides &sides)
{
    return sample([&, next = Demands{comparison, sides.setting}]() mutable {
        const Demand demand = next();
        const std::optional<double> atEngine = sides.engine.request(demand);
        const std::optional<double> atPeer = sides.requestAtPeer(demand, Extent::wholeTree);
        require(atEngine.has_value() == atPeer.has_value(), "only one side finds a path");
        if (atEngine) {
            const double cost = sides.peer().routeCost();
            require(std::abs(COST - cost) <= 1e-9 * cost, "the sides differ in a path's cost");
            sides.takeOver(sides.engine.lastPath);
            sides.engine.removeOldest();
            sides.removeOldestAtPeer();
        }
        return atEngine;
    });
}

/** What searches without books take. */
struct SearchFigures {
    Figure engine, floor;
};

/** Times the same searches at the engine and by hand; the costs of their paths agree. */
SearchFigures timeSearches(const Sampler &sample, Sides &sides)
{
    Floor floor{sides.plan, sides.setting.cost};
    Demands next{searches, sides.setting};
    std::vector<double> byHand;
    const Figure engine = sample([&]() -> std::optional<double> {
        const Demand demand = next();
        floor.prepare(sides.peer(), demand.bw);
        const std::optional<double> atEngine = sides.engine.search(demand);
        std::optional<unsigned> cost;
        const double seconds = secondsOf([&] {
            cost =
                floor.search(static_cast<unsigned>(demand.src), static_cast<unsigned>(demand.dst));
        });
        require(atEngine.has_value() == cost.has_value(), "only one search finds a path");
        if (atEngine) {
            require(std::abs(COST - *cost * demand.bw) <= 1e-9 * COST,
                    "the searches differ in a path's cost");
            byHand.push_back(seconds);
        }
        return atEngine;
    });
    return {engine, {medianMicroseconds(byHand), byHand.size()}};
}

/** Returns what a request takes at the engine, us. */
double printRequests(const Sampler &sample, const Setting &setting)
{
    Sides sides{setting};
    const double fullBefore = sides.fullShare();
    const Figure compared = compareCosts(sample, sides);
    const SearchFigures searching = timeSearches(sample, sides);
    const auto [engine, removal] = timeEngine(sample, sides);
    const Figure tree = timePeer(sample, sides, Extent::wholeTree);
    const Figure stopped = timePeer(sample, sides, Extent::untilEgress);
    std::printf("%6d %-6s %6zu %4.0f %4.0f %10.1f %8.1f %8.1f %7.1f %7.1f %8.1f %7.1f %8.1f %9.1f "
                "%9zu %5zu/%-4zu "
                "%5zu/%-4zu\n",
                setting.nodes, setting.cost == LinkCost::hops ? "hops" : "Fortz", sides.nbPrimaries,
                100.0 * fullBefore, 100.0 * sides.fullShare(), engine.us, tree.us, stopped.us,
                engine.us / tree.us, engine.us / stopped.us, searching.engine.us,
                searching.floor.us, engine.us / searching.floor.us, removal, compared.done,
                engine.done, engine.refused, tree.done, tree.refused);
    return engine.us;
}

/** Throws unless the backups lead from the primary's links to nodes behind them, around them. */
void checkBackups(const Peer &peer, const LinkPath &primary, BackupType type,
                  const std::vector<LinkPath> &backups)
{
    const bool isLocal = type == LOCAL_BACKUP;
    const NodePath nodes = peer.nodesOf(primary);
    require(backups.size() == (isLocal ? primary.size() : 1), "a backup is missing");
    for (std::size_t i = 0; i < backups.size(); ++i) {
        const NodePath path = peer.nodesOf(backups[i]);
        const auto avoided = std::span{primary}.subspan(i, isLocal ? 1 : primary.size());
        const auto rejoin = std::span{nodes}.subspan(isLocal ? i + 1 : primary.size());
        require(path.front() == nodes[i] &&
                    std::ranges::find(rejoin, path.back()) != rejoin.end() &&
                    std::ranges::find_first_of(backups[i], avoided) == backups[i].end(),
                "a backup does not protect");
    }
}

/** Time per backup of LSPs drawn at random; `compute` takes the position of one in `held`. */
template <class Compute>
Figure timeBackups(const Sampler &sample, const Sides &sides, BackupType type, Compute compute)
{
    return sample([&, rng = Rng{primaries}]() mutable -> std::optional<double> {
        const auto i =
            static_cast<std::size_t>(randomInt(rng, static_cast<int>(sides.held.size())));
        std::vector<LinkPath> backups;
        const std::optional<double> seconds = compute(i, backups);
        if (!seconds)
            return std::nullopt;
        checkBackups(sides.peers.front(), sides.held[i].path, type, backups);
        return *seconds / static_cast<double>(backups.size());
    });
}

Figure timeEngineBackups(const Sampler &sample, Sides &sides, BackupType type)
{
    return timeBackups(sample, sides, type, [&](std::size_t i, std::vector<LinkPath> &backups) {
        std::vector<NodePath> found;
        const auto seconds = sides.engine.protect(sides.engine.removable[i], type, found);
        if (seconds) {
            for (const NodePath &path : found)
                backups.push_back(sides.peer().linksOf(path));
        }
        return seconds;
    });
}

Figure timePeerBackups(const Sampler &sample, Sides &sides, BackupType type)
{
    const auto protect = type == LOCAL_BACKUP ? &Peer::protectLinks : &Peer::protectPath;
    return timeBackups(sample, sides, type, [&](std::size_t i, std::vector<LinkPath> &backups) {
        const Held &primary = sides.held[i];
        bool found = false;
        const double seconds =
            secondsOf([&] { found = (sides.peer().*protect)(primary.path, primary.bw, backups); });
        return found ? std::optional{seconds} : std::nullopt;
    });
}

void printPair(const Figure &engine, const Figure &peer)
{
    std::printf(" %9.1f %7.1f %6.1f %5zu/%-4zu", engine.us, peer.us, engine.us / peer.us,
                engine.done, engine.refused);
}

/** Microseconds per hop. */
struct HopCost {
    double admission, again, removal;
};

/** What the engine takes in one network where some primaries are protected, us. */
struct ProtectedFigures {
    double local, global; ///< per backup
    HopCost hop;
};

/** Admits and removes LSPs one after the other, and then once more: their memory has been touched
 * by then, but much else since. */
HopCost timeGivenPaths(const Sampler &sample, Sides &sides)
{
    std::vector<PlannedLsp> admitted;
    std::vector<double> removals;
    const auto admit = [&](const PlannedLsp &lsp) -> std::optional<double> {
        const std::optional<double> seconds = sides.engine.admit(lsp);
        if (!seconds)
            return std::nullopt;
        const auto hops = static_cast<double>(lsp.path.size() - 1);
        removals.push_back(sides.engine.remove(lsp.id) / hops);
        return *seconds / hops;
    };
    Demands next{givenPaths, sides.setting};
    const Figure first = sample([&]() -> std::optional<double> {
        const std::optional<PlannedLsp> lsp = sides.routedLsp(next());
        const std::optional<double> perHop = lsp ? admit(*lsp) : std::nullopt;
        if (perHop)
            admitted.push_back(*lsp);
        return perHop;
    });
    std::vector<double> again;
    for (const PlannedLsp &lsp : admitted)
        again.push_back(admit(lsp).value());
    return {first.us, medianMicroseconds(again), medianMicroseconds(removals)};
}

ProtectedFigures printProtected(const Sampler &sample, int nodes)
{
    Sides sides{{.nodes = nodes, .isProtected = true}};
    std::printf("%6d %6zu %7zu %4.0f", nodes, sides.nbPrimaries, sides.nbBackups,
                100.0 * sides.fullShare());
    const auto compare = [&](BackupType type) {
        const Figure engine = timeEngineBackups(sample, sides, type);
        printPair(engine, timePeerBackups(sample, sides, type));
        return engine.us;
    };
    const double local = compare(LOCAL_BACKUP);
    const double global = compare(GLOBAL_BACKUP);
    const HopCost hop = timeGivenPaths(sample, sides);
    const Figure request = timeEngine(sample, sides).request;
    printPair(request, timePeer(sample, sides, Extent::wholeTree));
    std::printf("\n");
    return {local, global, hop};
}

void printClassesAndLevels(const Sampler &sample, int nodes)
{
    std::optional<double> simplest;
    for (const auto &[classes, levels] : {std::pair{1, 1}, {2, 1}, {8, 1}, {1, 8}}) {
        Sides sides{{.nodes = nodes, .classes = classes, .levels = levels}};
        const Figure engine = timeEngine(sample, sides).request;
        simplest = simplest.value_or(engine.us);
        std::printf("%7d %6d %7zu %10.1f %7.2f %11.2f %5zu/%zu\n", classes, levels,
                    sides.nbPrimaries, engine.us, engine.us / *simplest,
                    static_cast<double>(sides.engine.nbPreempted) /
                        static_cast<double>(engine.done),
                    engine.done, engine.refused);
    }
}

/** A kind of request that is not the usual one, and what it takes. */
struct Kind {
    const char *name;
    void (*prepare)(Engine &engine, const NetworkPlan &plan);
};

void setWeights(double (PrimaryComputationConfig::*weight)[MAXOA], double value)
{
    (tarnexConfig.primaryComputationConfig.*weight)[0] = value;
}

constexpr std::array kinds{
    Kind{"as usual", [](Engine &, const NetworkPlan &) {}},
    Kind{"10 links to avoid",
         [](Engine &engine, const NetworkPlan &plan) {
             engine.colorLinks(plan);
             for (std::size_t i = 0; i < 10; ++i)
                 engine.avoided.push_back(plan.links[i * plan.links.size() / 10].id);
         }},
    Kind{"one node cut off",
         [](Engine &engine, const NetworkPlan &plan) { engine.cutOff(plan, plan.nodes[7]); }},
    Kind{"utilization and delay",
         [](Engine &, const NetworkPlan &) {
             tarnexConfig.primaryComputationConfig = {};
             setWeights(&PrimaryComputationConfig::relLoad, 1.0);
             setWeights(&PrimaryComputationConfig::delay, 1.0);
         }},
    Kind{"balance",
         [](Engine &, const NetworkPlan &) {
             tarnexConfig.primaryComputationConfig = {};
             setWeights(&PrimaryComputationConfig::loadBal, 1.0);
         }},
    Kind{"all seven weights",
         [](Engine &, const NetworkPlan &) {
             using Config = PrimaryComputationConfig;
             for (const auto weight : {&Config::loadBal, &Config::load, &Config::sqLoad,
                                       &Config::relLoad, &Config::sqRelLoad, &Config::delay})
                 setWeights(weight, 0.5);
         }},
};

void printKinds(const Sampler &sample, int nodes)
{
    std::printf("\nPrimary request with admission at the engine, Fortz-Thorup but where said, %d "
                "nodes, no backups\n%-22s %10s %7s %s\n",
                nodes, "kind", "us", "ratio", "  done/ref");
    std::optional<double> usual;
    for (const Kind &kind : kinds) {
        Sides sides{{.nodes = nodes}};
        kind.prepare(sides.engine, sides.plan);
        const Figure engine = timeEngine(sample, sides).request;
        usual = usual.value_or(engine.us);
        std::printf("%-22s %10.1f %7.2f %5zu/%zu\n", kind.name, engine.us, engine.us / *usual,
                    engine.done, engine.refused);
    }
}

/** A kind of primary whose backups are not the usual ones: there, with a path of its own. */
struct PrimaryKind {
    const char *name;
    std::optional<PlannedLsp> (*make)(Sides &sides, const Demand &demand);
};

constexpr std::array primaryKinds{
    PrimaryKind{"as usual",
                [](Sides &sides, const Demand &demand) { return sides.routedLsp(demand); }},
    PrimaryKind{"in two class types",
                [](Sides &sides, const Demand &demand) {
                    std::optional<PlannedLsp> lsp = sides.routedLsp(demand);
                    if (lsp)
                        lsp->bw[1] = demand.bw;
                    return lsp;
                }},
    PrimaryKind{"back to the ingress",
                [](Sides &sides, const Demand &demand) {
                    std::optional<PlannedLsp> lsp = sides.routedLsp(demand);
                    const std::optional<PlannedLsp> back = sides.routedLsp(
                        {demand.dst, demand.src, demand.oa, demand.level, demand.bw});
                    if (!lsp || !back)
                        return std::optional<PlannedLsp>{};
                    lsp->path.insert(lsp->path.end(), back->path.begin() + 1, back->path.end());
                    return lsp;
                }},
};

void printBackupKinds(const Sampler &sample, int nodes)
{
    std::printf("\nLocal backups at the engine, %d nodes, a fifth of the primaries protected\n"
                "%-22s %10s %7s %s\n",
                nodes, "primary", "us each", "ratio", "  done/ref");
    Sides sides{{.nodes = nodes, .isProtected = true}};
    std::optional<double> usual;
    for (const PrimaryKind &kind : primaryKinds) {
        Demands next{givenPaths, sides.setting};
        const Figure engine = sample([&]() -> std::optional<double> {
            Demand demand = next();
            demand.bw /= 10.0; // a long way has to find room all along
            const std::optional<PlannedLsp> lsp = kind.make(sides, demand);
            if (!lsp || !sides.engine.admit(*lsp))
                return std::nullopt;
            std::vector<NodePath> backups;
            const auto seconds = sides.engine.protect(lsp->id, LOCAL_BACKUP, backups);
            sides.engine.remove(lsp->id);
            return seconds ? std::optional{*seconds / static_cast<double>(backups.size())}
                           : std::nullopt;
        });
        usual = usual.value_or(engine.us);
        std::printf("%-22s %10.1f %7.2f %5zu/%zu\n", kind.name, engine.us, engine.us / *usual,
                    engine.done, engine.refused);
    }
}

void printAllKinds(const Sampler &sample, int nodes)
{
    printKinds(sample, nodes);
    printBackupKinds(sample, nodes);
}

/** Seconds of the first backup computation that succeeds, whatever changes before each attempt. */
template <class Change>
std::optional<double> timeBackupAfter(Engine &engine, Rng &rng, Change change)
{
    change();
    std::vector<NodePath> backups;
    const int primary = randomInt(rng, static_cast<int>(engine.removable.size()));
    return engine.protect(engine.removable[static_cast<std::size_t>(primary)], LOCAL_BACKUP,
                          backups);
}

/** A link goes and comes again, with LSPs on it, and what then has to be found out. */
void printChanges(const Sampler &sample, const char *name, const Setting &setting)
{
    Sides sides{setting};
    Engine &engine = sides.engine;
    Rng rng{primaries};
    const auto change = [&] { return engine.exchange(anyOf(rng, sides.plan.links)); };
    const auto none = [] {};
    double ofSession = 0.0;
    if (const auto seconds = timeBackupAfter(engine, rng, none))
        ofSession = 1e3 * *seconds;
    const Figure usual = timeEngine(sample, sides).request;
    const Figure changed = sample([&, next = Demands{requests, setting}]() mutable {
        const double seconds = change();
        const std::optional<double> placed = engine.request(next());
        if (placed)
            engine.removeOldest();
        return placed ? std::optional{seconds + *placed} : std::nullopt;
    });
    const Figure backups = sample([&] { return timeBackupAfter(engine, rng, none); });
    const Figure after = sample([&] { return timeBackupAfter(engine, rng, change); });
    std::printf("%-22s %8zu %8.1f %8.1f %7.2f %9.1f %9.1f %9.1f\n", name, sides.nbBackups, usual.us,
                changed.us, changed.us / usual.us, backups.us, after.us, ofSession);
}

void printChangesBlock(const Sampler &sample, int nodes)
{
    std::printf(
        "\nA link goes and comes again at the engine, %d nodes; us, of a session's first ms\n"
        "%-22s %8s %8s %8s %7s %9s %9s %9s\n",
        nodes, "score", "backups", "request", "changed", "ratio", "protected", "changed", "first");
    printChanges(sample, "hop count", {.nodes = nodes, .cost = LinkCost::hops});
    printChanges(sample, "Fortz-Thorup", {.nodes = nodes});
    printChanges(sample, "beside backups", {.nodes = nodes, .isProtected = true});
}

/** A memory figure of this process, in bytes. */
double memoryOf(std::string_view name)
{
    std::ifstream status{"/proc/self/status"};
    for (std::string word; status >> word;) {
        double kib = 0.0;
        if (word == name && status >> kib)
            return 1024.0 * kib;
    }
    throw std::runtime_error("no such memory figure");
}

/** Measures in a process of its own: memory that was used before would hide what is taken. */
void printMemory(int nodes)
{
    std::fflush(stdout);
    if (fork() == 0) {
        const NetworkPlan plan = planFor(nodes);
        const auto links = static_cast<double>(plan.links.size());
        const double resident = memoryOf("VmRSS:");
        const Engine engine{plan, LinkCost::fortz, false};
        std::printf("%6d %8.0f %10.0f %10.0f\n", nodes, links,
                    static_cast<std::uint32_t>(allocatedMemory) / links,
                    (memoryOf("VmRSS:") - resident) / links);
        std::fflush(stdout);
        _exit(0);
    }
    int status = 0;
    wait(&status);
    require(status == 0, "the memory of a network could not be measured");
}

std::string processorModel()
{
    std::ifstream info{"/proc/cpuinfo"};
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with("model name"))
            return line.substr(line.find(':') + 2);
    }
    return "unknown processor";
}

void printMemoryBlock(const std::vector<int> &sizes)
{
    std::printf("Memory of the engine's network without LSPs, bytes per link\n"
                "%6s %8s %10s %10s\n",
                "nodes", "links", "counted", "resident");
    for (const int nodes : sizes)
        printMemory(nodes);
}

void printRequestBlock(const Sampler &sample, const std::vector<int> &sizes)
{
    std::printf(
        "\nPrimary request with admission, us; no backups in place; full: %% of the links "
        "without room for a typical request, before and after; search: the engine's without "
        "admission, floor: one written by hand over arrays of the links with room\n"
        "%6s %-6s %6s %9s %10s %8s %8s %7s %7s %8s %7s %8s %9s %9s %10s %10s\n",
        "nodes", "score", "LSPs", "full", "engine", "tree", "to egr.", "e/tree", "e/egr.", "search",
        "floor", "e/floor", "e removal", "same cost", "e done/ref", "p done/ref");
    std::vector<double> hops, fortz;
    for (const int nodes : sizes) {
        hops.push_back(printRequests(sample, {.nodes = nodes, .cost = LinkCost::hops}));
        fortz.push_back(printRequests(sample, {.nodes = nodes, .cost = LinkCost::fortz}));
    }
    std::printf("grows with the power of the number of nodes: hops %.2f, Fortz %.2f\n",
                slopeOf(sizes, hops), slopeOf(sizes, fortz));
}

void printProtectedBlocks(const Sampler &sample, const std::vector<int> &sizes)
{
    std::printf("\nA fifth of the primaries with local backups, Fortz-Thorup score: us per backup "
                "computed, and per primary request with admission\n%26s %-36s %-36s %s\n"
                "%6s %6s %7s %4s",
                "", "  local backups", "  global backup", "  request (peer: whole tree)", "nodes",
                "LSPs", "backups", "full");
    for (int i = 0; i < 3; ++i)
        std::printf(" %9s %7s %6s %10s", "engine", "peer", "ratio", "e done/ref");
    std::printf("\n");
    std::vector<HopCost> hopCosts;
    std::vector<double> local, global, admission;
    for (const int nodes : sizes) {
        const ProtectedFigures figures = printProtected(sample, nodes);
        local.push_back(figures.local);
        global.push_back(figures.global);
        admission.push_back(figures.hop.admission);
        hopCosts.push_back(figures.hop);
    }
    std::printf("grows with the power of the number of nodes: local %.2f, global %.2f\n",
                slopeOf(sizes, local), slopeOf(sizes, global));

    std::printf(
        "\nGiven paths at the engine in the same networks, us per hop; again: once they have been "
        "there before\n%6s %10s %10s %10s\n",
        "nodes", "admission", "again", "removal");
    for (std::size_t i = 0; i < sizes.size(); ++i)
        std::printf("%6d %10.2f %10.2f %10.2f\n", sizes[i], hopCosts[i].admission,
                    hopCosts[i].again, hopCosts[i].removal);
    std::printf("grows with the power of the number of nodes: %.2f\n", slopeOf(sizes, admission));
}

void printClassBlock(const Sampler &sample, int nodes)
{
    std::printf("\nPrimary request with admission at the engine, %d nodes, no backups, every class "
                "type filled alike; preemption with several levels\n"
                "%7s %6s %7s %10s %7s %11s %s\n",
                nodes, "classes", "levels", "LSPs", "us", "ratio", "preempted", "  done/ref");
    printClassesAndLevels(sample, nodes);
}

void printTable(bool isQuick)
{
    const std::vector<int> sizes = isQuick ? std::vector{100, 200} : allSizes;
    const Sampler sample{isQuick ? 0.02 : 2.0};
    std::printf("%s, compiler %s%s\n\n", processorModel().c_str(), __VERSION__,
                isQuick ? ", quick run" : "");
    printMemoryBlock(sizes);
    printRequestBlock(sample, sizes);
    printProtectedBlocks(sample, sizes);
    printClassBlock(sample, isQuick ? 200 : 1000);
    printAllKinds(sample, isQuick ? 200 : 1000);
    std::printf("\nPeak resident memory of both sides together: %.0f MB\n",
                memoryOf("VmHWM:") / 1e6);
}

} // namespace

int main(int argc, char **argv)
{
    const std::string_view option = argc == 2 ? argv[1] : "";
    const std::string_view options[] = {"--quick", "--requests", "--kinds", "--changes"};
    const bool isKnown = argc == 1 || std::ranges::find(options, option) != std::end(options);
    if (!isKnown) {
        std::fprintf(stderr, "usage: %s [--quick | --requests | --kinds | --changes]\n", argv[0]);
        return 2;
    }
    try {
        if (option == "--kinds")
            printAllKinds(Sampler{2.0}, 1000);
        else if (option == "--requests")
            printRequestBlock(Sampler{2.0}, allSizes);
        else if (option == "--changes")
            printChangesBlock(Sampler{0.5}, 1000);
        else
            printTable(option == "--quick");
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
