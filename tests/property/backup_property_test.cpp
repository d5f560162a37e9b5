#include "admission/admission.h"
#include "computation/backup/driver.h"
#include "computation/backup/plain/compute_cost.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "database/update/update.h"
#include "property/session.h"

#include <cmath>
#include <map>
#include <numeric>

namespace property
{
namespace
{

double total(const double (&levels)[MAXPL]) { return std::accumulate(levels, levels + MAXPL, 0.0); }

/** Backup paths in the plain way: every link state copied up front, every link's cost from a copy.
 */
class PlainBackups
{
public:
    PlainBackups(DataBase *database, DBLabelSwitchedPath &protectedLSP, BackupType kind)
        : db(database), primary(protectedLSP), type(kind),
          path(inUse(primary.path).begin(), inUse(primary.path).end())
    {
        for (Long id = 0; id < db->linkSrcVec.top; ++id) {
            if (db->linkSrcVec.cont[id] == 0)
                continue;
            states[id] = State{DBlinkStateNew()};
            DBLinkState &stored = storedState(db, {DBgetLinkSrc(db, id), DBgetLinkDst(db, id)});
            EXPECT_EQ(DBlinkStateCopy(states[id].get(), &stored), 0);
        }
    }

    /** The backup that avoids hop `hop` of the primary, or all hops; empty when there is none. */
    NodePath around(std::size_t hop)
    {
        const bool isLocal = type == LOCAL_BACKUP;
        const std::size_t first = isLocal ? hop : 0;
        const std::size_t last = isLocal ? hop + 1 : path.size() - 1;
        const NodePath targets(isLocal ? path.begin() + std::ptrdiff_t(last) : path.end() - 1,
                               path.end());
        std::set<Long> intoNodes;
        std::set<Long> links;
        for (std::size_t i = first; i < last; ++i) {
            const Long protectedNode = path[i + 1];
            links.insert(DBgetLinkID(db, path[i], protectedNode));
            if (isLocal || i + 1 < last) {
                for (const Long u : inUse(*DBgetNodeInNeighb(db, protectedNode)))
                    intoNodes.insert(DBgetLinkID(db, u, protectedNode));
            }
        }
        intoNodes.insert(DBgetLinkID(db, path[last - 1], path[last]));
        NodePath found = search(path[first], intoNodes, targets);
        if (found.empty())
            found = search(path[first], links, targets);
        reserve(found);
        return found;
    }

private:
    struct Label {
        double val = -1.0;
        NodePath path{};
        bool marked = false;
    };

    NodePath search(Long start, const std::set<Long> &forbidden, const NodePath &targets)
    {
        std::map<Long, Label> labels;
        std::map<std::pair<double, int>, Long> frontier; // of equal keys the last inserted first
        int inserted = 0;
        labels[start] = {0.0, {start}};
        frontier[{0.0, 0}] = start;
        while (!frontier.empty()) {
            const Long nd = frontier.begin()->second;
            frontier.erase(frontier.begin());
            Label &label = labels[nd];
            if (std::exchange(label.marked, true))
                continue;
            if (std::ranges::count(targets, nd) > 0)
                return label.path;
            for (const Long v : inUse(*DBgetNodeOutNeighb(db, nd))) {
                Label &next = labels[v];
                if (next.marked || forbidden.contains(DBgetLinkID(db, nd, v)))
                    continue;
                NodePath longer = label.path;
                longer.push_back(v);
                const double length = cost(longer);
                const double val = label.val + length;
                if (length < 0.0 || (next.val != -1.0 && !(val > 0.0 && val < next.val)))
                    continue;
                next = {val, longer};
                frontier[{val, --inserted}] = v;
            }
        }
        return {};
    }

    RequestRecord request(const NodePath &nodes) const
    {
        PlannedLsp lsp{.type = type, .path = nodes, .primID = primary.id};
        lsp.precedence = std::min(primary.precedence + 1, MAXPL - 1);
        std::ranges::copy(primary.bw, lsp.bw.begin());
        return requestOf(lsp);
    }

    /** The cost of the last hop, which must be the engine's to the bit. */
    double cost(const NodePath &nodes)
    {
        const Long src = nodes[nodes.size() - 2];
        const Long dst = nodes.back();
        DBLinkState *now = states.at(DBgetLinkID(db, src, dst)).get();
        const State then{DBlinkStateNew()};
        EXPECT_EQ(DBevalLSOnSetup(db, src, dst, then.get(), now, request(nodes).get()), 0);
        double after = 0.0;
        double before = 0.0;
        bool fits = true;
        for (int oa = 0; oa < MAXOA; ++oa) {
            after += total(then->rbw[oa]);
            before += total(now->rbw[oa]);
            fits = fits && total(then->rbw[oa]) <= now->cap[oa];
        }
        const auto prim = idsIn(primary.primPath);
        const auto factor = prim.end() - std::ranges::find(prim, dst) + 1;
        const double bandwidth = std::accumulate(primary.bw, primary.bw + MAXOA, 0.0);
        const double expected = !fits ? -1.0
                                      : 10.0 / 11.0 * std::max(0.0, after - before) +
                                            1.0 / 11.0 * static_cast<double>(factor) * bandwidth;
        EXPECT_EQ(engineCost(nodes), expected);
        return expected;
    }

    static NodePath idsIn(const LongList &list) { return {inUse(list).begin(), inUse(list).end()}; }

    double engineCost(const NodePath &nodes)
    {
        std::vector<DBLinkState *> list(static_cast<std::size_t>(db->linkSrcVec.top));
        for (const auto &[id, state] : states)
            list[static_cast<std::size_t>(id)] = state.get();
        std::vector<CPDijkNode> chain;
        chain.reserve(nodes.size());
        for (const Long nd : std::span{nodes}.first(nodes.size() - 1))
            chain.push_back(
                {chain.empty() ? nullptr : &chain.back(), db->nodeVec.cont[nd], 0, true});
        return computeCost(db, list.data(), chain.back().node->id, nodes.back(), &chain.back(),
                           &primary, type);
    }

    void reserve(const NodePath &nodes)
    {
        const RequestRecord req = request(nodes);
        for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
            DBLinkState *state = states.at(DBgetLinkID(db, nodes[i], nodes[i + 1])).get();
            EXPECT_EQ(DBevalLSOnSetup(db, nodes[i], nodes[i + 1], state, state, req.get()), 0);
        }
    }

    DataBase *db;
    DBLabelSwitchedPath &primary;
    BackupType type;
    NodePath path;
    std::map<Long, State> states;
};

/** A request list, released at the end of the test. */
struct Requests {
    LSPRequestList list{};
    Requests() { EXPECT_EQ(lspRequestListInit(&list, -1), 0); }
    ~Requests() { lspRequestListEnd(&list); }
    Requests(const Requests &) = delete;
    Requests &operator=(const Requests &) = delete;
};

class Backups : public Session
{
protected:
    /** Now and then removes an LSP, replaces a link or a state, or asks for a state. */
    void disturb(const NetworkPlan &plan, Rng &rng)
    {
        const PlannedLink &link = anyOf(rng, plan.links);
        const PlannedLink &other = anyOf(rng, plan.links);
        const Long id = randomInt(rng, 160);
        const State copy{DBlinkStateNew()};
        switch (randomInt(rng, 8)) {
        case 0:
            DBgetLinkState(db, link.src, link.dst);
            break;
        case 1:
            ASSERT_EQ(DBlinkStateCopy(copy.get(), &storedState(db, {other.src, other.dst})), 0);
            copy->rbw[0][0] += 1.0;
            copy->cap[randomInt(rng, 2)] = 2.0;
            ASSERT_EQ(DBsetLinkState(db, link.src, link.dst, copy.get()), 0);
            break;
        case 2:
            if (id % 2 == 0) { // comes back with what another link holds
                ASSERT_EQ(DBlinkStateCopy(copy.get(), &storedState(db, {other.src, other.dst})), 0);
            }
            std::ranges::fill(copy->cap, link.capacity);
            ASSERT_EQ(DBremoveLink(db, link.src, link.dst), 0);
            ASSERT_EQ(DBaddLink(db, link.id, link.src, link.dst, copy.get()), 0);
            break;
        default:
            if (DBgetLSP(db, id))
                static_cast<void>(DBremoveLSP(db, id));
        }
        errorManager.top = 0;
    }

    /** Compares the engine's backups with the plain ones; the number of paths found. */
    int compare(Long primaryId, BackupType type)
    {
        DBLabelSwitchedPath &primary = *DBgetLSP(db, primaryId);
        Requests requests;
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        const int result = computeBackup(db, &requests.list, primaryId, type);
        const std::string printed = ::testing::internal::GetCapturedStderr();
        static_cast<void>(::testing::internal::GetCapturedStdout());
        errorManager.top = 0; // one message per free link id

        PlainBackups plainBackups{db, primary, type};
        int found = 0;
        for (Long i = requests.list.size; i-- > 0;) {
            const NodePath expected = plainBackups.around(static_cast<std::size_t>(i));
            EXPECT_EQ(idsIn(requests.list.cont[i].path), expected) << "backup " << i;
            found += expected.empty() ? 0 : 1;
            if (expected.empty()) {
                EXPECT_EQ(result, -1);
                EXPECT_NE(printed, "");
                return found;
            }
        }
        EXPECT_EQ(result, 0);
        EXPECT_EQ(printed, "");
        return found;
    }
};

TEST_F(Backups, EqualThoseOfThePlainSearch)
{
    int found = 0;
    int stored = 0;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        Rng rng{seed};
        DBdestroy(db);
        db = DBnew(1);
        NetworkPlan plan = randomNetwork(rng, 10 + int(seed), 4, seed % 2 == 0 ? 1 : 3);
        for (PlannedLink &link : plan.links)
            link.capacity = 25.0;
        ASSERT_EQ(addNetwork(db, plan), 0);
        tarnexConfig.predicateConfig.capacityClause = true;
        for (Long id = 0; id < 160 && !HasFailure(); id += 4) {
            disturb(plan, rng);
            PlannedLsp lsp{.id = id,
                           .precedence = randomInt(rng, seed % 3 == 0 ? 2 : MAXPL),
                           .path =
                               hopPath(plan, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), rng)};
            lsp.bw[static_cast<std::size_t>(randomInt(rng, 2))] = 1.0 / 3.0 + randomInt(rng, 4);
            lsp.primPath = id % 8 == 0 ? lsp.path : NodePath{}; // weighs the hops of its backups
            if (lsp.path.size() < 2 || DBaddLSP(db, recordOf(lsp).get(), &preempted) != 0)
                continue;
            errorManager.top = 0;
            found += compare(id, LOCAL_BACKUP) + compare(id, GLOBAL_BACKUP);
            lsp.primPath = lsp.path;
            lsp.primID = id;
            const BackupType type = id % 8 == 0 ? LOCAL_BACKUP : GLOBAL_BACKUP;
            Requests requests;
            ::testing::internal::CaptureStdout();
            static_cast<void>(computeBackup(db, &requests.list, id, type));
            static_cast<void>(::testing::internal::GetCapturedStdout());
            for (Long i = 0; i < requests.list.size && i < 3; ++i) {
                PlannedLsp backup = lsp;
                backup.id = id + 1 + i;
                backup.type = type;
                backup.path = idsIn(requests.list.cont[i].path);
                if (backup.path.size() > 1)
                    stored += DBaddLSP(db, recordOf(backup).get(), &preempted) == 0 ? 1 : 0;
            }
            errorManager.top = 0;
        }
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(stored, 100);
}

TEST_F(Backups, KeepTheFirstWayToANodeAmongLinksWithoutCost)
{
    ASSERT_EQ(addNetwork(db, networkOf("0:0-1 1:0-2 2:0-3 3:3-2 4:2-1")), 0);
    const State reserved{DBlinkStateNew()};
    reserved->cap[0] = 100.0;
    reserved->rbw[0][0] = 1.0; // which a backup adds nothing to
    for (const auto &[src, dst] : {Hop{0, 3}, Hop{3, 2}})
        ASSERT_EQ(DBsetLinkState(db, src, dst, reserved.get()), 0);
    const PlannedLsp primary{.id = 5, .bw = {5e-324}, .path = {0, 1}};
    ASSERT_EQ(DBaddLSP(db, recordOf(primary).get(), &preempted), 0);
    Requests requests;
    LongList &path = requests.list.cont[0].path;
    for (const Trail &trail : {Trail{}, Trail(2, "Cannot determine the link to protect")}) {
        EXPECT_EQ(computeBackup(db, &requests.list, 5, GLOBAL_BACKUP), 0);
        EXPECT_EQ(idsIn(path), (NodePath{0, 2, 1}));
        expectTrail(trail);
        path.cont[0] = 3; // what does not start on the primary is taken out with a message per hop
    }
}

TEST_F(Backups, KeepTheOrderOfTheFrontierAmongCostsThatAreNoNumbers)
{
    const struct {
        const char *links;
        Hop noNumber, free; ///< what the links reserve already: no number, the backup's bandwidth
        NodePath path;
    } rows[] = {
        {"0:0-1 1:0-2 2:2-1 3:0-3 4:3-1", {2, 1}, {0, 1}, {0, 3, 1}}, // improves nothing
        {"0:0-1 1:0-2 2:2-0 3:0-3 4:3-1 5:0-4 6:4-1", {0, 3}, {0, 2}, {0, 3, 1}}, // before 4
    };
    const State reserved{DBlinkStateNew()};
    reserved->cap[0] = 100.0;
    for (const auto &row : rows) {
        DBdestroy(db);
        db = DBnew(1);
        ASSERT_EQ(addNetwork(db, networkOf(row.links)), 0);
        ASSERT_EQ(DBaddLSP(db, recordOf({.id = 5, .bw = {1.0}, .path = {0, 1}}).get(), &preempted),
                  0);
        for (const auto &[hop, rbw] : {std::pair{row.noNumber, std::nan("")}, {row.free, 1.0}}) {
            reserved->rbw[0][0] = rbw;
            ASSERT_EQ(DBsetLinkState(db, hop.first, hop.second, reserved.get()), 0);
        }
        Requests requests;
        EXPECT_EQ(computeBackup(db, &requests.list, 5, GLOBAL_BACKUP), 0);
        EXPECT_EQ(idsIn(requests.list.cont[0].path), row.path);
    }
}

TEST_F(Backups, RefuseWhatCannotBeProtected)
{
    ASSERT_EQ(addNetwork(db, networkOf("0:1-2 2:2-3 3:1-3")), 0);
    for (const PlannedLsp &lsp :
         {PlannedLsp{.id = 4, .path = {1, 2}}, PlannedLsp{.id = 5, .path = {1}}})
        ASSERT_EQ(DBaddLSP(db, recordOf(lsp).get(), &preempted), 0);
    const std::string hole = "Warning there is no link numbered 1 : src = -1, dst = -1 ....";
    Requests requests;
    const auto run = [&](Long id, BackupType type, const Trail &trail) {
        const int result = computeBackup(db, &requests.list, id, type);
        expectTrail(trail);
        return result;
    };
    EXPECT_EQ(run(9, LOCAL_BACKUP, {"Cannot find lsp ID 9"}), -1);
    EXPECT_EQ(run(4, NO_BACKUP, {hole, "Oups no backup were requested"}), 0);
    EXPECT_EQ(run(4, 7, {hole, "?Unknown backup type"}), 0);
    EXPECT_EQ(lspRequestListSize(&requests.list), 1);
    EXPECT_EQ(run(5, GLOBAL_BACKUP, {hole, "Cannot protect a path without link"}), -1);
    EXPECT_EQ(run(5, LOCAL_BACKUP, {hole}), 0);
    EXPECT_EQ(lspRequestListSize(&requests.list), 0);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(run(4, LOCAL_BACKUP, {hole}), -1);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "No local link disjoint protection path found\n");
}

TEST(BackupFrontier, GivesTheSmallestKeyAndOfEqualKeysTheLastInserted)
{
    struct Case {
        std::vector<double> keys;
        std::vector<int> order; ///< positions in `keys`, as they come out
    };
    for (const Case &c :
         {Case{{3, 1, 2}, {1, 2, 0}}, Case{{1, 5, 5}, {0, 2, 1}}, Case{{1, 1, 1}, {2, 1, 0}},
          Case{{2, 4, 3, 5, 1, 3}, {4, 0, 5, 2, 1, 3}}}) {
        CPPrioQueue queue{};
        ASSERT_EQ(CPinitPQ(&queue), 0);
        std::vector<CPDijkNode> nodes(c.keys.size());
        for (std::size_t i = 0; i < nodes.size(); ++i)
            ASSERT_EQ(CPinsertPQ(&queue, &nodes[i], c.keys[i]), 0);
        EXPECT_EQ(queue.size, static_cast<Long>(nodes.size()));
        std::vector<int> order;
        while (const CPDijkNode *node = CPpopTop(&queue))
            order.push_back(static_cast<int>(node - nodes.data()));
        EXPECT_EQ(order, c.order);
        ASSERT_EQ(CPinsertPQ(&queue, nodes.data(), 1.0), 0);
        EXPECT_EQ(CPendPQ(&queue), 0);
        EXPECT_EQ(queue.root, nullptr);
    }
}

} // namespace
} // namespace property
