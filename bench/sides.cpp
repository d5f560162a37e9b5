#include "sides.h"

#include "admission/admission.h"
#include "admission/placement.h"
#include "common/setup.h"
#include "computation/primary/driver.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "error/error.h"
#include "measure.h"

#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <unistd.h>

using namespace property;

namespace
{

constexpr int linksPerNode = 5;
constexpr double leastBandwidth = 0.5;
constexpr double mostBandwidth = 4.0;
constexpr double typicalBandwidth = (leastBandwidth + mostBandwidth) / 2.0;
constexpr double wantedFullShare = 0.2;
constexpr int protectedEvery = 5;

/** Takes the time of a placement up to where preempted LSPs are to be removed. */
class AdmissionTime : public PlacementReport
{
public:
    bool takePreempted(std::span<const Long> ids) override
    {
        end = Clock::now();
        nbPreempted = ids.size();
        return true;
    }
    /** To be asked right after the placement. */
    double seconds() const
    {
        return std::chrono::duration<double>(end.value_or(Clock::now()) - start).count();
    }

    std::size_t nbPreempted = 0;

private:
    const Clock::time_point start = Clock::now();
    std::optional<Clock::time_point> end;
};

/** Keeps off the terminal what the engine prints about backups that it does not find. */
class Quiet
{
public:
    Quiet()
    {
        std::fflush(nullptr);
        const int sink = open("/dev/null", O_WRONLY);
        dup2(sink, STDOUT_FILENO);
        dup2(sink, STDERR_FILENO);
        close(sink);
    }
    ~Quiet()
    {
        std::fflush(nullptr);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        close(out);
        close(err);
    }
    Quiet(const Quiet &) = delete;
    Quiet &operator=(const Quiet &) = delete;

private:
    int out = dup(STDOUT_FILENO);
    int err = dup(STDERR_FILENO);
};

/** Drops the messages of an operation that was refused; one that is done must leave none. */
bool isDone(bool done)
{
    require(!done || errorManager.top == 0, "a message was left");
    errorManager.top = 0;
    return done;
}

NodePath nodePath(const LongList &path) { return {inUse(path).begin(), inUse(path).end()}; }

void route(Peer &peer, const Demand &demand, Extent extent, LinkPath &path)
{
    peer.route(static_cast<unsigned>(demand.src), static_cast<unsigned>(demand.dst), demand.bw,
               extent, path);
}

bool isFull(const Peer &peer) { return peer.shareWithoutRoom(typicalBandwidth) >= wantedFullShare; }

struct PlacedDemand {
    Demand demand;
    LinkPath path;
};

/** A peer under a load of one class type that is replaced again and again. */
class Churn
{
public:
    Churn(const NetworkPlan &plan, LinkCost cost) : peer(plan, cost) {}

    /** Settles at as many LSPs as keep the links about as full as wanted. */
    const std::deque<PlacedDemand> &settle(Demands &next, int oa)
    {
        while (!isFull(peer))
            add(next(), oa);
        auto wanted = static_cast<double>(load.size());
        for (std::size_t steps = turnovers * load.size(); steps > 0; --steps) {
            add(next(), oa);
            wanted += isFull(peer) ? -correction : correction;
            while (static_cast<double>(load.size()) > wanted)
                removeOldest();
        }
        return load;
    }

private:
    void add(Demand demand, int oa)
    {
        demand.oa = oa;
        LinkPath path;
        route(peer, demand, Extent::untilEgress, path);
        if (path.empty())
            return;
        peer.reserve(path, demand.bw);
        load.push_back({demand, std::move(path)});
    }

    void removeOldest()
    {
        peer.release(load.front().path, load.front().demand.bw);
        load.pop_front();
    }

    static constexpr std::size_t turnovers = 5;
    static constexpr double correction = 0.1; ///< LSPs more or less after each demand
    Peer peer;
    std::deque<PlacedDemand> load;
};

/** LSPs for every class type, in no particular order. */
std::vector<PlacedDemand> steadyLoad(const NetworkPlan &plan, const Setting &setting)
{
    std::vector<PlacedDemand> all;
    Demands next{1, setting};
    for (int oa = 0; oa < setting.classes; ++oa) {
        Churn churn{plan, setting.cost};
        std::ranges::copy(churn.settle(next, oa), std::back_inserter(all));
    }
    Rng rng{2};
    std::ranges::shuffle(all, rng);
    return all;
}

} // namespace

Demand Demands::operator()()
{
    const Long src = randomInt(rng, setting.nodes);
    const Long dst = (src + 1 + randomInt(rng, setting.nodes - 1)) % setting.nodes;
    const int oa = randomInt(rng, setting.classes);
    const int level = randomInt(rng, setting.levels);
    return {src, dst, oa, level,
            std::uniform_real_distribution{leastBandwidth, mostBandwidth}(rng)};
}

NetworkPlan planFor(int nodes)
{
    Rng rng{static_cast<unsigned>(nodes)};
    NetworkPlan plan = randomNetwork(rng, nodes, linksPerNode, 1);
    for (PlannedLink &link : plan.links)
        link.capacity = 8.0 * (2 + randomInt(rng, 5));
    return plan;
}

Engine::Engine(const NetworkPlan &plan, LinkCost cost, bool preempts) : db(DBnew(0))
{
    errorInit();
    tarnexConfig = {};
    PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    (cost == LinkCost::fortz ? weights.Fortz : weights.load[0]) = 1.0;
    tarnexConfig.predicateConfig = {preempts, true, false};
    require(longVecInit(&preempted, -1) == 0 && addNetwork(db, plan) == 0, "no network");
}

Engine::~Engine()
{
    longVecEnd(&preempted);
    DBdestroy(db);
    errorDestroy();
}

PlannedLsp Engine::lspFor(const Demand &demand)
{
    PlannedLsp lsp{nextId++, primaryLSP, demand.level};
    lsp.bw[static_cast<std::size_t>(demand.oa)] = demand.bw;
    return lsp;
}

std::optional<double> Engine::request(const Demand &demand)
{
    PlannedLsp lsp = lspFor(demand);
    lsp.path = {demand.src, -1, demand.dst};
    const RequestRecord asked = requestOf(lsp);
    for (const Long color : avoided)
        require(longVecPushBack(&asked->forbidLinks, color) == 0, "no memory for colours");
    COST = 0.0;
    AdmissionTime time;
    const Placement end = placePrimary(db, asked.get(), PlacementGoal::lsp, time);
    const double seconds = time.seconds();
    if (!isDone(end == Placement::done))
        return std::nullopt;
    lsp.path = nodePath(asked->path);
    nbPreempted += time.nbPreempted;
    require(DBgetLSP(db, lsp.id) && lsp.path.front() == demand.src && lsp.path.back() == demand.dst,
            "an LSP was not placed");
    removable.push_back(lsp.id);
    lastPath = lsp.path;
    return seconds;
}

std::optional<double> Engine::search(const Demand &demand)
{
    PlannedLsp lsp = lspFor(demand);
    lsp.path = {demand.src, -1, demand.dst};
    const RequestRecord asked = requestOf(lsp);
    COST = 0.0;
    bool found = false;
    const double seconds = secondsOf([&] { found = computePrimaryPath(db, asked.get()) == 0; });
    return isDone(found) ? std::optional{seconds} : std::nullopt;
}

std::optional<double> Engine::admit(const PlannedLsp &lsp)
{
    const LspRecord record = recordOf(lsp);
    bool admitted = false;
    const double seconds =
        secondsOf([&] { admitted = DBaddLSP(db, record.get(), &preempted) == 0; });
    require(preempted.top == 0, "an LSP on a path with room preempts");
    require(!admitted || DBgetLSP(db, lsp.id), "an LSP was not stored");
    return isDone(admitted) ? std::optional{seconds} : std::nullopt;
}

double Engine::remove(Long id)
{
    bool removed = false;
    const double seconds = secondsOf([&] { removed = DBremoveLSP(db, id) == 0; });
    require(isDone(removed) && !DBgetLSP(db, id), "an LSP was not removed");
    return seconds;
}

void Engine::colorLinks(const NetworkPlan &plan)
{
    tarnexConfig.predicateConfig.colorClause = true;
    const Owned<DBLinkState, DBlinkStateDestroy> state{DBlinkStateNew()};
    for (const PlannedLink &link : plan.links) {
        DBLink *stored = existingLink(db, link.src, link.dst);
        require(stored && DBlinkStateCopy(state.get(), &stored->state) == 0, "no such link");
        state->color = link.id;
        require(DBsetLinkState(db, link.src, link.dst, state.get()) == 0,
                "a link keeps its colour");
    }
}

void Engine::cutOff(const NetworkPlan &plan, Long node)
{
    for (const PlannedLink &link : plan.links) {
        if (link.src != node && link.dst != node)
            continue;
        while (const DBLSPList *carried = DBgetLinkLSPs(db, link.src, link.dst)) {
            if (carried->top == 0)
                break;
            remove(carried->cont[0]->id);
        }
        require(DBremoveLink(db, link.src, link.dst) == 0, "a link was not removed");
    }
}

double Engine::removeOldest()
{
    while (!DBgetLSP(db, removable.front()))
        removable.pop_front();
    const Long oldest = removable.front();
    removable.pop_front();
    return remove(oldest);
}

double Engine::exchange(const PlannedLink &link)
{
    for (const DBLabelSwitchedPath *lsp : inUse(*DBgetLinkLSPs(db, link.src, link.dst)))
        std::erase(removable, lsp->id);
    const Owned<DBLinkState, DBlinkStateDestroy> state{DBlinkStateNew()};
    state->cap[0] = link.capacity;
    bool isExchanged = false;
    const double seconds = secondsOf([&] {
        isExchanged = DBremoveLink(db, link.src, link.dst) == 0 &&
                      DBaddLink(db, link.id, link.src, link.dst, state.get()) == 0;
    });
    require(isDone(isExchanged), "a link did not go and come again");
    return seconds;
}

std::optional<double> Engine::protect(Long primary, BackupType type, std::vector<NodePath> &backups)
{
    const Quiet quiet;
    LSPRequestList requests{};
    require(lspRequestListInit(&requests, -1) == 0, "no memory for requests");
    const Guard<LSPRequestList, lspRequestListEnd> guard{&requests};
    bool found = false;
    const double seconds =
        secondsOf([&] { found = computeBackup(db, &requests, primary, type) == 0; });
    backups.clear();
    for (Long i = 0; i < requests.size; ++i)
        backups.push_back(nodePath(requests.cont[i].path));
    return isDone(found) ? std::optional{seconds} : std::nullopt;
}

Sides::Sides(const Setting &wanted)
    : setting(wanted), plan(planFor(wanted.nodes)), engine(plan, wanted.cost, wanted.levels > 1),
      peers(static_cast<std::size_t>(wanted.classes), Peer{plan, wanted.cost})
{
    for (const auto &[demand, path] : steadyLoad(plan, setting)) {
        if (setting.isProtected && isFull(peer())) // backups fill links, too
            break;
        place(demand, path);
    }
}

double Sides::fullShare() const { return peers.front().shareWithoutRoom(typicalBandwidth); }

void Sides::place(const Demand &demand, const LinkPath &path)
{
    Peer &owner = peers[static_cast<std::size_t>(demand.oa)];
    PlannedLsp primary = engine.lspFor(demand);
    primary.path = owner.nodesOf(path);
    if (!owner.fits(path, demand.bw) || !engine.admit(primary)) {
        require(setting.isProtected, "a side lacks room for a primary");
        return;
    }
    owner.reserve(path, demand.bw);
    if (setting.isProtected && nbPrimaries % protectedEvery == 0) {
        protect(demand, primary, path);
    } else {
        engine.removable.push_back(primary.id);
        held.push_back({path, demand.bw});
    }
    ++nbPrimaries;
}

/** Stores on both sides the local backups that the peer finds and the engine has room for. */
void Sides::protect(const Demand &demand, const PlannedLsp &primary, const LinkPath &path)
{
    std::vector<LinkPath> backups;
    if (!peer().protectLinks(path, demand.bw, backups))
        return;
    for (std::size_t i = 0; i < path.size(); ++i) {
        PlannedLsp backup = engine.lspFor(demand);
        backup.type = localBackupLSP;
        backup.primID = primary.id;
        backup.primPath = primary.path;
        backup.path = peer().nodesOf(backups[i]);
        if (!engine.admit(backup))
            continue;
        peer().store(backups[i], std::span{path}.subspan(i, 1), demand.bw);
        ++nbBackups;
    }
}

std::optional<double> Sides::requestAtPeer(const Demand &demand, Extent extent)
{
    Held lsp{{}, demand.bw};
    const double seconds = secondsOf([&] {
        route(peer(), demand, extent, lsp.path);
        peer().reserve(lsp.path, lsp.bw);
    });
    if (lsp.path.empty())
        return std::nullopt;
    held.push_back(std::move(lsp));
    return seconds;
}

void Sides::removeOldestAtPeer()
{
    peer().release(held.front().path, held.front().bw);
    held.pop_front();
}

void Sides::takeOver(const NodePath &path)
{
    Held &newest = held.back();
    peer().release(newest.path, newest.bw);
    newest.path = peer().linksOf(path);
    peer().reserve(newest.path, newest.bw);
}

std::optional<PlannedLsp> Sides::routedLsp(const Demand &demand)
{
    LinkPath path;
    route(peer(), demand, Extent::untilEgress, path);
    if (path.empty())
        return std::nullopt;
    PlannedLsp lsp = engine.lspFor(demand);
    lsp.path = peer().nodesOf(path);
    return lsp;
}
