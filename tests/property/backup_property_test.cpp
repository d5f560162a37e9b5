#include "admission/admission.h"
#include "computation/backup/driver.h"
#include "computation/backup/plain/compute_cost.h"
#include "computation/primary/driver.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "support/consistency.h"
#include "support/plain_backups.h"
#include "support/session.h"
#include "support/topology_route.h"

#include <optional>

namespace property
{
namespace
{

/** A request list, released at the end of the test. */
struct Requests {
    LSPRequestList list{};
    Requests() { EXPECT_EQ(lspRequestListInit(&list, -1), 0); }
    ~Requests() { lspRequestListEnd(&list); }
    Requests(const Requests &) = delete;
    Requests &operator=(const Requests &) = delete;

    std::vector<NodePath> paths() const
    {
        std::vector<NodePath> all;
        for (const LSPRequest &req : std::span{list.cont, std::size_t(list.size)})
            all.push_back(idsIn(req.path));
        return all;
    }
};

class Backups : public Session
{
protected:
    /** Now and then removes an LSP, replaces a link or a state, exchanges ids, takes a link away
     * for a while, or writes into a state from outside. */
    void disturb(NetworkPlan &plan)
    {
        PlannedLink &link = plan.links[std::size_t(randomInt(rng, int(plan.links.size())))];
        PlannedLink &other = plan.links[std::size_t(randomInt(rng, int(plan.links.size())))];
        const Long id = randomInt(rng, 160);
        const State copy{DBlinkStateNew()};
        const bool areThere =
            linkAt(db->linkTab, link.src, link.dst) && linkAt(db->linkTab, other.src, other.dst);
        switch (areThere ? randomInt(rng, 10) : 2) {
        case 0:
            if (DBLinkState *exposed = DBgetLinkState(db, link.src, link.dst); id % 2 == 0) {
                for (const DoubleVec &table : exposed->bbw[0])
                    std::ranges::fill(slots(table), 0.0);
            }
            if (id % 4 == 0)
                replace(link, *copy);
            break;
        case 1:
            ASSERT_EQ(DBlinkStateCopy(copy.get(), &storedState(db, {other.src, other.dst})), 0);
            copy->rbw[0][0] += 1.0;
            copy->cap[randomInt(rng, 2)] = 2.0;
            ASSERT_EQ(DBsetLinkState(db, link.src, link.dst, copy.get()), 0);
            break;
        case 2:
            if (id % 2 == 0 && areThere) { // comes back with what another link holds
                ASSERT_EQ(DBlinkStateCopy(copy.get(), &storedState(db, {other.src, other.dst})), 0);
            }
            replace(link, *copy);
            break;
        case 3:
            exchangeLink(link);
            break;
        case 4:
            if (link.id == other.id)
                break;
            exchangeLink(link);
            exchangeLink(other);
            std::swap(link.id, other.id);
            exchangeLink(other);
            exchangeLink(link);
            break;
        default:
            if (DBgetLSP(db, id))
                static_cast<void>(DBremoveLSP(db, id));
        }
        takeTrail();
    }

    void replace(const PlannedLink &link, DBLinkState &state)
    {
        if (linkAt(db->linkTab, link.src, link.dst)) {
            ASSERT_EQ(DBremoveLink(db, link.src, link.dst), 0);
        }
        std::ranges::fill(state.cap, link.capacity);
        ASSERT_EQ(DBaddLink(db, link.id, link.src, link.dst, &state), 0);
    }

    /** Compares the engine's backups with the plain ones, and leaves them in `requests`. */
    void compare(Long primaryId, BackupType type, Requests &requests)
    {
        PlainNetwork network = contentsOf(*db);
        std::vector<DBLinkState *> stored(static_cast<std::size_t>(db->linkSrcVec.top));
        for (auto &[hop, link] : network.links) {
            link.state = plainFrom(storedState(db, hop));
            stored[std::size_t(link.id)] = &linkAt(db->linkTab, hop.first, hop.second)->state;
        }
        PlainBackups plainBackups{network, primaryId, type};
        comparePrice(plainBackups, stored, primaryId, type);

        const std::vector<NodePath> earlier = requests.paths();
        const std::vector<NodePath> expected = plainBackups.find(earlier);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = computeBackup(db, &requests.list, primaryId, type);
        const std::string printed = testing::internal::GetCapturedStderr();
        static_cast<void>(testing::internal::GetCapturedStdout());
        takeTrail(); // one message per free link id

        const bool areFound = std::ranges::none_of(expected, &NodePath::empty);
        EXPECT_EQ(result, areFound ? 0 : -1);
        EXPECT_EQ(printed.empty(), areFound);
        for (std::size_t i = expected.size(); i-- > 0 && !expected[i].empty(); ++found)
            EXPECT_EQ(idsIn(requests.list.cont[i].path), expected[i]) << "backup " << i;
    }

    /** Compares the path of a request with the one over the topology. */
    void route(Long from, Long to, double bw)
    {
        const PlannedLsp lsp{
            .precedence = randomInt(rng, MAXPL), .bw = {bw}, .path = {from, -1, to}};
        const RequestRecord requests[] = {requestOf(lsp), requestOf(lsp)};
        double cost = 0.0;
        const int expected = routeByTopology(db, *requests[0], cost);
        const Trail trail = takeTrail();
        EXPECT_EQ(computePrimaryPath(db, requests[1].get()), expected);
        EXPECT_EQ(idsIn(requests[1]->path), idsIn(requests[0]->path));
        expectTrail(trail);
    }

    /** Compares the cost of some way through the network, from a node of the primary on. */
    void comparePrice(const PlainBackups &plainBackups, std::span<DBLinkState *> stored,
                      Long primaryId, BackupType type)
    {
        DBLabelSwitchedPath &primary = *DBgetLSP(db, primaryId);
        NodePath way{primary.path.cont[randomInt(rng, int(primary.path.top) - 1)]};
        std::vector<CPDijkNode> chain;
        chain.reserve(4);
        while (chain.size() < 4) {
            const DBNode &node = *db->nodeVec.cont[way.back()];
            const Long next = node.outNeighb.top > 0 ? anyOf(rng, idsIn(node.outNeighb)) : way[0];
            if (std::ranges::count(way, next) > 0)
                return;
            chain.push_back(
                {chain.empty() ? nullptr : &chain.back(), db->nodeVec.cont[way.back()], 0, true});
            way.push_back(next);
            EXPECT_EQ(computeCost(db, stored.data(), way[chain.size() - 1], way.back(),
                                  &chain.back(), &primary, type),
                      plainBackups.price(way));
            takeTrail();
        }
    }

    Rng rng{1};
    int found = 0;
};

TEST_F(Backups, EqualThoseOfThePlainSearch)
{
    int kept = 0;
    for (unsigned seed = 1; seed <= 16; ++seed) {
        SCOPED_TRACE(seed);
        rng = Rng{seed};
        NetworkPlan plan =
            randomNetwork(rng, 5 + int(seed), 2 + int(seed) % 3, seed % 4 == 0 ? 3 : 1);
        for (PlannedLink &link : plan.links)
            link.capacity = 25.0;
        rebuild(plan);
        std::set<Hop> hops;
        for (const PlannedLink &link : plan.links)
            hops.emplace(link.src, link.dst);
        tarnexConfig.predicateConfig.capacityClause = true;
        for (Long id = 0; id < 160 && !HasFailure(); id += 4) {
            disturb(plan);
            EXPECT_EQ(inconsistencyOf(*db, hops), "");
            PlannedLsp lsp{.id = id,
                           .precedence = randomInt(rng, seed % 3 == 0 ? 2 : MAXPL),
                           .path = randomPath(plan, rng)};
            for (int classes = 1 + randomInt(rng, 5) / 4; classes > 0; --classes)
                lsp.bw[std::size_t(randomInt(rng, 2))] = 1.0 / 3.0 + randomInt(rng, 4);
            lsp.primPath = id % 8 == 0 ? lsp.path : NodePath{}; // weighs the hops of its backups
            const bool isAdded =
                lsp.path.size() > 1 && DBaddLSP(db, recordOf(lsp).get(), &preempted) == 0;
            takeTrail();
            if (!isAdded)
                continue;
            std::optional<PlannedLink> lost;
            if (randomInt(rng, 6) == 0) {
                const auto at = lsp.path.begin() + randomInt(rng, int(lsp.path.size()) - 1);
                lost = {DBgetLinkID(db, at[0], at[1]), at[0], at[1], 25.0};
                ASSERT_EQ(DBremoveLink(db, at[0], at[1]), 0);
            }
            for (int i = 0; i < 6; ++i) { // what no LSP changes in between must follow the links
                const PlannedLink &link = anyOf(rng, plan.links);
                if (find(lsp.path, {link.src, link.dst}) < 0)
                    exchangeLink(link);
                takeTrail();
                route(anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), 1.0 + randomInt(rng, 8));
                Requests none;
                compare(id, LOCAL_BACKUP, none);
            }
            Requests requests[2];
            for (const BackupType type : {LOCAL_BACKUP, GLOBAL_BACKUP}) {
                Requests &asked = requests[type - LOCAL_BACKUP];
                compare(id, type, asked);
                for (Long i = 0; i < asked.list.size; ++i) { // paths are for the plain search
                    LongVec &path = asked.list.cont[i].path;
                    path.top = randomInt(rng, 3) == 0 ? path.top : std::min(path.top, Long{1});
                }
                compare(id, type, asked);
            }
            if (lost)
                replace(*lost, *State{DBlinkStateNew()});
            lsp.primPath = lsp.path;
            lsp.primID = id;
            lsp.type = id % 8 == 0 ? LOCAL_BACKUP : GLOBAL_BACKUP;
            for (const NodePath &path : requests[lsp.type - LOCAL_BACKUP].paths()) {
                lsp.path = path;
                if (path.size() > 1 && ++lsp.id < id + 4)
                    kept += DBaddLSP(db, recordOf(lsp).get(), &preempted) == 0 ? 1 : 0;
            }
            takeTrail();
        }
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(kept, 100);
}

/*
 *        0 --> 2 --> 1     also 0 --> 1, and 0 --> 3 --> 2 without cost
 */
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
    for (const Trail &trail :
         {Trail{}, Trail(2, "Cannot determine the link to protect" + inDatabase)}) {
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
    ASSERT_EQ(addNetwork(db, networkOf("0:1-2 2:2-3 3:1-3")), 0); // 1 --> 2 --> 3 <-- 1
    for (const PlannedLsp &lsp :
         {PlannedLsp{.id = 4, .path = {1, 2}}, PlannedLsp{.id = 5, .path = {1}}})
        ASSERT_EQ(DBaddLSP(db, recordOf(lsp).get(), &preempted), 0);
    const std::string hole =
        "[INFO] Warning there is no link numbered 1 : src = -1, dst = -1 ...." + inBackup;
    Requests requests;
    const auto run = [&](Long id, BackupType type, const Trail &trail) {
        const int result = computeBackup(db, &requests.list, id, type);
        expectTrail(trail);
        return result;
    };
    EXPECT_EQ(run(9, LOCAL_BACKUP, {"Cannot find lsp ID 9" + inBackup}), -1);
    EXPECT_EQ(run(4, NO_BACKUP, {hole, "[INFO] Oups no backup were requested" + inBackup}), 0);
    EXPECT_EQ(run(4, 7, {hole, "[WARNING] Unknown backup type" + inBackup}), 0);
    EXPECT_EQ(lspRequestListSize(&requests.list), 1);
    EXPECT_EQ(run(5, GLOBAL_BACKUP, {hole, "Cannot protect a path without link" + inBackup}), -1);
    EXPECT_EQ(run(5, LOCAL_BACKUP, {hole}), 0);
    EXPECT_EQ(lspRequestListSize(&requests.list), 0);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(run(4, LOCAL_BACKUP, {hole}), -1);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "No local link disjoint protection path found\n");
}

} // namespace
} // namespace property
