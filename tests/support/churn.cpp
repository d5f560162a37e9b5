#include "support/churn.h"

#include "admission/admission.h"
#include "admission/placement.h"
#include "common/setup.h"
#include "computation/backup/driver.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "database/reservations/question.h"
#include "database/update/update.h"
#include "support/consistency.h"
#include "support/memory_probe.h"
#include "support/topology_route.h"

#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

namespace property
{

namespace
{

void require(bool holds, const std::string &otherwise)
{
    if (!holds)
        throw std::logic_error(otherwise);
}

/** A generator of its own for what takes many choices: bytes are spent on operations. */
unsigned seedFrom(Rng &rng) { return static_cast<unsigned>(randomInt(rng, 256)); }

bool isSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/** Notes what a placement reports, and takes the preempted LSPs or not. */
struct Report : PlacementReport {
    explicit Report(bool takesPreempted) : takes(takesPreempted) {}
    bool takePath(std::span<const Long> nodes) override
    {
        path.assign(nodes.begin(), nodes.end());
        return true;
    }
    bool takePreempted(std::span<const Long> ids) override
    {
        preempted.assign(ids.begin(), ids.end());
        return takes;
    }

    const bool takes;
    NodePath path, preempted;
};

} // namespace

/** What a step chooses from; the larger the weight, the more often. */
struct Churn::Operation {
    int weight;
    void (Churn::*run)();
};

Churn::Churn(Rng choices, Amounts kind) : rng(choices), amounts(kind), loses(randomInt(rng, 2) == 0)
{
    errorInit();
    COST = 0.0;
    tarnexConfig = {};
    tarnexConfig.predicateConfig.capacityClause = true;
    PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    weights.Fortz = randomInt(rng, 3) / 3.0;
    weights.load[0] = randomInt(rng, 3) / 3.0;
    weights.relLoad[0] = randomInt(rng, 2) / 7.0;
    weights.delay[3] = randomInt(rng, 2);
    weights.loadBal[0] = randomInt(rng, 8) == 0 ? 1.0 : 0.0;
    db = DBnew(1);
    require(longVecInit(&preempted, -1) == 0, "no memory");
    Rng shape{seedFrom(rng)};
    plan = randomNetwork(shape, 5 + randomInt(rng, 4), 4, 1 + randomInt(rng, 3));
    const double capacity = randomInt(rng, 4) == 0 ? 200.0 : 12.0;
    for (PlannedLink &link : plan.links) {
        link.capacity = capacity;
        plain.add(link);
    }
    require(addNetwork(db, plan) == 0, "no network");
    for (const PlannedLink &link : plan.links) // a class type that no LSP has
        linkAt(db->linkTab, link.src, link.dst)->state.cap[5] = 0.0;
}

Churn::~Churn()
{
    longVecEnd(&preempted);
    DBdestroy(db);
    errorDestroy();
}

void Churn::Tally::operator+=(const Tally &other)
{
    for (const auto count : {&Tally::calls, &Tally::faults, &Tally::refusals, &Tally::incompletes,
                             &Tally::preempted, &Tally::backups})
        this->*count += other.*count;
}

void Churn::step()
{
    static constexpr Operation operations[] = {
        {16, &Churn::route},    {6, &Churn::request}, {3, &Churn::protect},
        {6, &Churn::removeAny}, {1, &Churn::cut},     {6, &Churn::restore},
        {1, &Churn::grow},      {4, &Churn::ask},     {3, &Churn::misuse},
    };
    int total = 0;
    for (const Operation &operation : operations)
        total += operation.weight;
    if (plain.lsps.size() > maxLsps / 2)
        return removeAny();
    int choice = randomInt(rng, total);
    for (const Operation &operation : operations) {
        choice -= operation.weight;
        if (choice < 0)
            return (this->*operation.run)();
    }
}

void Churn::check() const
{
    const auto bytes = static_cast<std::uint32_t>(bytesInUse());
    const std::size_t own = ownedBytes(*db) + sizeof(Long) * std::size_t(preempted.size);
    require(bytes == static_cast<std::uint32_t>(own), "counted bytes belong to nobody");
    for (const auto &[ends, link] : plain.links)
        require(areSame(storedState(db, ends), link.state), "a link is not what history makes it");
    for (const auto &[id, lsp] : plain.lsps)
        require(DBgetLSP(db, id)->noContentionId == lsp.noContentionId, "a partner is wrong");
    if (amounts == Amounts::quarters) {
        const std::string wrong = inconsistencyOf(*db, undefined);
        require(wrong.empty(), wrong);
    }
}

/** Runs a call, now and then with memory running out in it. */
template <class Call>
int Churn::attempt(Call call)
{
    std::optional<MemoryProbe> probe;
    if (randomInt(rng, 8) == 0)
        probe.emplace(1 + randomInt(rng, 24),
                      randomInt(rng, 2) == 0 ? Lasting::once : Lasting::fromThenOn);
    const int result = call();
    faulted = probe && probe->faulted();
    require(!probe || probe->repeatedReleases == 0, "a block was released twice");
    probe.reset();
    saidWhy = std::ranges::any_of(std::span{errorManager.list, std::size_t(errorManager.top)},
                                  [](const ErrorElem &entry) { return entry.gravity >= CRITICAL; });
    errorManager.top = 0;
    ++met.calls;
    met.faults += faulted ? 1 : 0;
    return result;
}

void Churn::route()
{
    const PlannedLsp lsp = randomLsp();
    if (lsp.path.size() > 1)
        add(lsp);
}

/** Computes a path and, at times, adds it or removes what is in its way. */
void Churn::request()
{
    PlannedLsp lsp = randomLsp();
    lsp.type = primaryLSP;
    lsp.path = {anyOf(rng, plan.nodes), -1, anyOf(rng, plan.nodes)};
    lsp.primPath.clear();
    lsp.noContentionId = -1;
    lsp.precedence = randomInt(rng, 3);
    bool &allowReroute = tarnexConfig.predicateConfig.allowReroute;
    allowReroute = randomInt(rng, 2) == 0;
    const RequestRecord req = requestOf(lsp);
    const RequestRecord expected = requestOf(lsp);
    double cost = 0.0;
    const bool isRouted = routeByTopology(db, *expected, cost) == 0;
    errorManager.top = 0;
    COST = 0.0;
    const PlacementGoal goal = anyGoal();
    Report report{randomInt(rng, 8) != 0};
    Placement end{};
    attempt([&] {
        end = placePrimary(db, req.get(), goal, report);
        return 0;
    });
    require(faulted || (end != Placement::noPath) == isRouted,
            "a path is there for one search only");
    require(end == Placement::done || end == Placement::notReported || saidWhy,
            "a failure without a message");
    allowReroute = false;
    if (report.path.empty())
        return;
    require(report.path == idsIn(expected->path) && isSame(COST, cost),
            "two searches find different paths");
    lsp.path = report.path;
    const bool isReported = end == Placement::done || !report.preempted.empty();
    follow(lsp, goal == PlacementGoal::lsp && isReported, report.preempted);
    met.refusals += end == Placement::notAdded && !faulted ? 1 : 0;
    if (end == Placement::notReported && !faulted) {
        require(!DBgetLSP(db, lsp.id), "an LSP stays whose preempted ones were not reported");
        require(std::ranges::all_of(report.preempted, [&](Long id) { return DBgetLSP(db, id); }),
                "an LSP is gone that was not reported");
    }
}

/** Repeats in the plain network what a placement that came to its report has done. */
void Churn::follow(const PlannedLsp &lsp, bool wasAdded, const NodePath &givingWay)
{
    if (wasAdded)
        plain.add(lsp);
    for (const Long id : givingWay) {
        if (!DBgetLSP(db, id)) {
            plain.removeLsp(id);
            ++met.preempted;
        }
    }
    if (wasAdded && !DBgetLSP(db, lsp.id))
        plain.removeLsp(lsp.id);
    require(plain.lsps.contains(lsp.id) == (DBgetLSP(db, lsp.id) != nullptr),
            "an LSP is half there");
}

PlacementGoal Churn::anyGoal()
{
    const int dice = randomInt(rng, 4);
    return dice == 0   ? PlacementGoal::pathOnly
           : dice == 1 ? PlacementGoal::room
                       : PlacementGoal::lsp;
}

/** Computes the backups of a primary and, at times, adds them. */
void Churn::protect()
{
    const PlannedLsp *primary = anyLsp(true);
    if (!primary)
        return;
    PlannedLsp backup = *primary;
    backup.type = randomInt(rng, 2) == 0 ? localBackupLSP : globalBackupLSP;
    backup.precedence = 0;
    backup.primID = primary->id;
    backup.primPath = primary->path;
    backup.noContentionId = -1;
    LSPRequestList found{};
    require(lspRequestListInit(&found, -1) == 0, "no memory");
    const Guard<LSPRequestList, lspRequestListEnd> guard{&found};
    if (attempt([&] { return computeBackup(db, &found, backup.primID, backup.type); }) != 0)
        return;
    BackupPlacement placement{*db, *DBgetLSP(db, backup.primID), backup.type};
    const PlacementGoal goal = anyGoal();
    for (LSPRequest &req : std::span{found.cont, std::size_t(found.size)}) {
        backup.id = freeId();
        backup.path = idsIn(req.path);
        const bool isDone =
            attempt([&] {
                return placement.admit(req, backup.id, goal) == Placement::done ? 0 : -1;
            }) == 0;
        require(isDone || saidWhy, "a refusal without a message");
        const bool isAdded = isDone && goal == PlacementGoal::lsp;
        follow(backup, isAdded, {});
        met.backups += isAdded ? 1 : 0;
    }
}

void Churn::removeAny()
{
    if (const PlannedLsp *lsp = anyLsp(randomInt(rng, 2) == 0))
        remove(lsp->id);
}

/** Adds to the engine and, what it admits, to the plain network. */
bool Churn::add(PlannedLsp lsp)
{
    const LspRecord record = recordOf(lsp);
    preempted.top = 0;
    if (randomInt(rng, 4) == 0) {
        const int asked = attempt([&] { return getpreemptList(db, record.get(), &preempted); });
        require(asked == 0 || !DBgetLSP(db, lsp.id), "a question added an LSP");
        preempted.top = 0;
    }
    const bool isAdded = attempt([&] { return DBaddLSP(db, record.get(), &preempted); }) == 0;
    require(isAdded || saidWhy, "a refusal without a message");
    require(isAdded == (DBgetLSP(db, lsp.id) != nullptr), "an LSP is half there");
    if (isAdded)
        plain.add(lsp);
    met.refusals += isAdded || faulted ? 0 : 1;
    return isAdded;
}

void Churn::remove(Long id)
{
    const int result = attempt([&] { return DBremoveLSP(db, id); });
    const bool isGone = !DBgetLSP(db, id);
    require(isGone || (faulted && result != 0), "an LSP is still there");
    require(result == 0 || saidWhy, "a failure without a message");
    if (isGone)
        plain.removeLsp(id);
    met.incompletes += isGone && result != 0 ? 1 : 0;
}

/** Removes a link or, with all its links, a node, which comes back bare. */
void Churn::cut()
{
    if (!loses || plan.links.size() < 12)
        return;
    const PlannedLink link = anyOf(rng, plan.links);
    const bool wholeNode = randomInt(rng, 4) == 0;
    const int result = attempt([&] {
        return wholeNode ? DBremoveNode(db, link.src) : DBremoveLink(db, link.src, link.dst);
    });
    require(result == 0, "a removal of topology failed");
    require(!wholeNode || DBaddNode(db, link.src) == 0, "a node does not come back");
    const auto stays = [&](const PlannedLink &l) {
        return wholeNode ? l.src != link.src && l.dst != link.src : l.id != link.id;
    };
    const auto gone = std::partition(plan.links.begin(), plan.links.end(), stays);
    for (auto l = gone; l != plan.links.end(); ++l) {
        markUndefined(*l);
        plain.links.erase({l->src, l->dst});
    }
    spare.insert(spare.end(), gone, plan.links.end());
    plan.links.erase(gone, plan.links.end());
}

/** From here on the links of every LSP that needs `gone` hold what history makes them. */
void Churn::markUndefined(const PlannedLink &gone)
{
    for (const auto &[id, lsp] : plain.lsps) {
        const auto partner = plain.lsps.find(lsp.noContentionId);
        const bool isHit =
            find(lsp.path, {gone.src, gone.dst}) >= 0 ||
            find(lsp.primPath, {gone.src, gone.dst}) >= 0 ||
            (partner != plain.lsps.end() && find(partner->second.path, {gone.src, gone.dst}) >= 0);
        if (!isHit)
            continue;
        for (const NodePath *path : {&lsp.path, &lsp.primPath}) {
            for (std::size_t i = 1; i < path->size(); ++i)
                undefined.emplace((*path)[i - 1], (*path)[i]);
        }
    }
}

/** Links come back one by one, under the id of any link that went. */
void Churn::restore()
{
    if (spare.empty())
        return;
    std::swap(spare[std::size_t(randomInt(rng, int(spare.size())))], spare.back());
    std::swap(spare.front().id, spare.back().id);
    const PlannedLink link = spare.back();
    const State state{DBlinkStateNew()};
    std::ranges::fill(state->cap, link.capacity);
    const int result =
        attempt([&] { return DBaddLink(db, link.id, link.src, link.dst, state.get()); });
    if (result != 0) {
        require(faulted, "a link does not come back");
        if (linkAt(db->linkTab, link.src, link.dst)) // added, but its id not noted
            static_cast<void>(DBremoveLink(db, link.src, link.dst));
        errorManager.top = 0;
        return;
    }
    plain.add(link);
    plan.links.push_back(link);
    spare.pop_back();
    const Hop hop{link.src, link.dst};
    const bool isCrossed = std::ranges::any_of(plain.lsps, [hop](const auto &entry) {
        return find(entry.second.path, {hop.first, hop.second}) >= 0 ||
               find(entry.second.primPath, {hop.first, hop.second}) >= 0;
    });
    if (isCrossed)
        undefined.insert(hop);
    else
        undefined.erase(hop);
}

/** Adds a node with links there and back, which wait to be added. */
void Churn::grow()
{
    if (plan.nodes.size() > 10)
        return;
    const Long last = *std::ranges::max_element(plan.nodes);
    const Long id = last + 1 + randomInt(rng, 40);
    if (attempt([&] { return DBaddNode(db, id); }) != 0)
        return require(faulted && DBgetMaxNodeID(db) == last, "a node is refused");
    for (const Long other : {anyOf(rng, plan.nodes), anyOf(rng, plan.nodes)}) {
        const bool known = std::ranges::any_of(
            spare, [&](const PlannedLink &link) { return link.src == id && link.dst == other; });
        if (known)
            continue;
        for (const Hop &hop : {Hop{id, other}, Hop{other, id}})
            spare.push_back({nextLinkId++, hop.first, hop.second, plan.links.front().capacity});
    }
    plan.nodes.push_back(id);
}

/** Puts an LSP to every link in the three ways to ask. */
void Churn::ask()
{
    const PlannedLsp lsp = randomLsp();
    if (lsp.path.size() < 2)
        return;
    const LspRecord record = recordOf(lsp);
    const RequestRecord request = requestOf(lsp);
    const Candidate candidate{viewOf(*record), lsp.primID};
    for (const auto &[hop, link] : plain.links) {
        const Long src = hop.first;
        const Long dst = hop.second;
        PlainState expected = link.state;
        const int result = plain.update(expected, hop, lsp, 1.0) ? 0 : -1;
        DBLinkState *stored = &linkAt(db->linkTab, src, dst)->state;
        const State copy{DBlinkStateNew()};
        double rbw[MAXOA][MAXPL];
        const int copied = attempt(
            [&] { return DBevalLSOnSetup(db, src, dst, copy.get(), stored, request.get()); });
        require(copied == result || faulted, "an evaluation fails or should have");
        require(copied != 0 || areSame(*copy, expected), "an evaluation is not the plain one");
        const int answered =
            attempt([&] { return reservationAfterSetup(db, src, dst, stored, candidate, rbw); });
        require(answered == result || faulted, "a question fails or should have");
        require(answered == 0 || saidWhy, "a failure without a message");
        require(answered != 0 || std::memcmp(rbw, expected.rbw, sizeof rbw) == 0,
                "an answer is not the plain one");
    }
}

/** Calls that must be refused whatever the state. */
void Churn::misuse()
{
    const auto fails = [this](auto call) {
        require(attempt(call) == -1 && saidWhy, "a call that makes no sense was accepted");
    };
    const PlannedLink link = anyOf(rng, plan.links);
    const Long huge = std::numeric_limits<Long>::max() - randomInt(rng, 2);
    const Long wrong = randomInt(rng, 2) == 0 ? huge : -1 - randomInt(rng, 9);
    const State state{DBlinkStateNew()};
    for (const Long id : {link.src, wrong})
        fails([&] { return DBaddNode(db, id); });
    fails([&] { return DBremoveNode(db, wrong); });
    fails([&] { return DBremoveLink(db, link.src, wrong); });
    fails([&] { return DBremoveLSP(db, wrong); });
    fails([&] { return DBaddLink(db, link.id, link.src, link.dst, state.get()); });
    fails([&] { return DBaddLink(db, link.id + 5000, link.src, link.dst, state.get()); });
    fails([&] { return DBaddLink(db, link.id + 5000, link.src, wrong, state.get()); });
    PlannedLsp lsp = randomLsp();
    lsp.path = {link.dst, link.src, wrong};
    const LspRecord record = recordOf(lsp);
    fails([&] { return DBaddLSP(db, record.get(), &preempted); });
    if (const PlannedLsp *present = anyLsp(true)) {
        const LspRecord again = recordOf(*present);
        fails([&] { return DBaddLSP(db, again.get(), &preempted); });
    }
    preempted.top = 0;
}

PlannedLsp Churn::randomLsp()
{
    Rng way{seedFrom(rng)};
    PlannedLsp lsp{.path = hopPath(plan, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), way)};
    const DBLSPType type = randomInt(rng, 2) == 0 ? localBackupLSP : globalBackupLSP;
    const PlannedLsp *other = anyLsp(true);
    if (other && randomInt(rng, 2) == 0)
        lsp = backupOf(plan, *other, type, way);
    lsp.id = freeId();
    lsp.precedence = randomInt(rng, MAXPL);
    lsp.noContentionId = -1;
    if (randomInt(rng, 3) == 0)
        pairWithAny(lsp);
    for (const std::size_t oa : {0U, 3U, 7U}) {
        const int quarters = randomInt(rng, 2) * (1 + randomInt(rng, 40));
        lsp.bw[oa] = quarters / (amounts == Amounts::quarters ? 4.0 : 3.7);
    }
    return lsp;
}

/** Ids are few and used again and again. */
Long Churn::freeId()
{
    Long id = randomInt(rng, maxLsps);
    while (plain.lsps.contains(id))
        id = (id + 1) % maxLsps;
    return id;
}

/** Only between primaries do the amounts of a pair not depend on who came first. */
void Churn::pairWithAny(PlannedLsp &lsp)
{
    const bool mustCommute = amounts == Amounts::quarters;
    const PlannedLsp *partner = anyLsp(mustCommute);
    if (!partner || partner->noContentionId >= 0 || (mustCommute && lsp.type != primaryLSP))
        return;
    lsp.noContentionId = partner->id;
    lsp.precedence = randomInt(rng, 4) == 0 ? lsp.precedence : partner->precedence;
}

/** Any stored LSP, or the next primary; null when there is none. */
const PlannedLsp *Churn::anyLsp(bool isPrimary)
{
    const int count = static_cast<int>(plain.lsps.size());
    if (count == 0)
        return nullptr;
    auto found = std::next(plain.lsps.begin(), randomInt(rng, count));
    while (isPrimary && found != plain.lsps.end() && found->second.type != primaryLSP)
        ++found;
    return found == plain.lsps.end() ? nullptr : &found->second;
}

} // namespace property
