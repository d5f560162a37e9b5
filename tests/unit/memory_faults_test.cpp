#include "admission/admission.h"
#include "admission/placement.h"
#include "common/setup.h"
#include "computation/backup/driver.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "database/update/update.h"
#include "support/consistency.h"
#include "support/memory_faults.h"

namespace property
{
namespace
{

/** A network with primaries of two levels and a backup, and what calls need. */
struct Scene {
    /** `chain` hops lead on from node 4 and carry an LSP of their own. */
    explicit Scene(int chain)
    {
        //   0 <--> 1 --> 2 --> 3     0, 1 and 2 lead to 4, which leads to 2 and 3
        NetworkPlan plan = networkOf("0:0-1 1:1-2 2:2-3 3:0-4 4:4-2 5:4-3 6:1-4 7:1-0 8:2-4");
        for (Long id = 9; id < 9 + chain; ++id) {
            plan.nodes.push_back(id - 4);
            plan.links.push_back({id, id - 5, id - 4});
            wayOut.push_back(id - 5);
        }
        EXPECT_EQ(addNetwork(db.get(), plan), 0);
        const NodePath direct{0, 1, 2, 3};
        for (const PlannedLsp &lsp : {PlannedLsp{1, primaryLSP, 1, {30}, direct},
                                      PlannedLsp{2, primaryLSP, 6, {50}, {1, 2}},
                                      PlannedLsp{3, localBackupLSP, 2, {30}, {1, 4, 3}, 1, direct},
                                      PlannedLsp{4, primaryLSP, 7, {0.5}, wayOut}})
            EXPECT_EQ(DBaddLSP(db.get(), recordOf(lsp).get(), list.get()), 0);
        distant = recordOf({9, primaryLSP, 3, {0.25}, wayOut});
        EXPECT_EQ(longVecResize(&request->path, 16) | longVecResize(list.get(), 16), 0);
    }
    int add(const LspRecord &lsp) { return DBaddLSP(db.get(), lsp.get(), list.get()); }

    int addLink()
    {
        const int result = DBaddLink(db.get(), 90, 3, 0, state.get());
        if (result == 0 || !linkAt(db->linkTab, 3, 0))
            return result;
        // Past the point of no return the link is there without its id; it is taken away again.
        const Long messages = errorManager.top;
        static_cast<void>(DBremoveLink(db.get(), 3, 0));
        errorManager.top = messages;
        return -1;
    }

    int place(PlacementGoal goal)
    {
        tarnexConfig.primaryComputationConfig.load[0] = 1.0;
        std::ranges::copy(std::array{0, -1, 3}, request->path.cont);
        request->path.top = 3;
        struct : PlacementReport {
        } report;
        return placePrimary(db.get(), request.get(), goal, report) == Placement::done ? 0 : -1;
    }

    /** By way of the topology, since a weight is not finite. */
    int placePlainly(PlacementGoal goal)
    {
        tarnexConfig.primaryComputationConfig.sqLoad[0] = std::numeric_limits<double>::infinity();
        const int result = place(goal);
        tarnexConfig.primaryComputationConfig.sqLoad[0] = 0.0;
        return result;
    }

    int protect(BackupType type)
    {
        LSPRequestList backups{};
        if (lspRequestListInit(&backups, -1) != 0)
            return -1;
        const Guard<LSPRequestList, lspRequestListEnd> guard{&backups};
        if (computeBackup(db.get(), &backups, 1, type) != 0)
            return -1;
        BackupPlacement placement{*db, *DBgetLSP(db.get(), 1), type};
        bool isDone = static_cast<bool>(placement);
        for (Long i = 0; isDone && i < backups.size; ++i)
            isDone =
                placement.admit(backups.cont[i], 10 + i, PlacementGoal::room) == Placement::done;
        return isDone ? 0 : -1;
    }

    int evaluate()
    {
        const State made{DBlinkStateNew()};
        return made ? DBevalLSOnSetup(db.get(), 1, 2, made.get(), &linkAt(db->linkTab, 1, 2)->state,
                                      wholeRequest.get())
                    : -1;
    }

    /** What the database shows, and the counted bytes that are not its own. */
    std::vector<double> shows() const
    {
        std::vector<double> all;
        for (Long src = 0; src < 5; ++src) {
            for (Long dst = 0; dst < 5; ++dst) {
                const DBLink *link = linkAt(db->linkTab, src, dst);
                all.push_back(link ? link->id : -1);
                if (!link)
                    continue;
                for (const DBLabelSwitchedPath *lsp : inUse(link->lspList))
                    all.push_back(lsp->id);
                for (const auto *table : {&link->state.rbw, &link->state.pbw})
                    all.insert(all.end(), (*table)[0], (*table)[0] + MAXPL);
            }
        }
        for (Long id = 0; id < 90; ++id)
            all.push_back(nodeAt(db->nodeVec, id) ? 1 : 0);
        return all;
    }

    Long strayBytes() const
    {
        return bytesInUse() - static_cast<Long>(ownedBytes(*db) + countedBytes(list->cont));
    }

    Owned<DataBase, DBdestroy> db{DBnew(1)};
    Owned<LongList, longVecDestroy> list{longVecNew(16)};
    State state{DBlinkStateNew()};
    PlannedLsp wish{9, primaryLSP, 3, {60}, {0, 1, 2, 3}};
    RequestRecord request{requestOf(wish)};
    RequestRecord wholeRequest{requestOf({9, primaryLSP, 3, {5}, {1, 2, 3}})};
    LspRecord placed{recordOf(wish)};
    LspRecord local{recordOf({9, localBackupLSP, 3, {5}, {0, 4, 2}, 1, {0, 1, 2, 3}})};
    LspRecord global{recordOf({9, globalBackupLSP, 3, {5}, {0, 4, 3}, 1, {0, 1, 2, 3}})};
    LspRecord turning{recordOf({9, primaryLSP, 3, {0.25}, {0, 1, 0, 1, 0, 1, 0, 1, 2}})};
    NodePath wayOut;
    LspRecord distant;
};

using MemoryFaults = EngineTest;

using Ends = std::set<std::string>;

const Ends notAdmitted{"Unable to initialize list of longs"};
const Ends notMerged{"Unable to merge lists of longs"}; ///< where something gives way
const Ends notAdded{"Unable to create LSP", "Unable to create a valid LSP copy",
                    "Unable to insert LSP"};
const Ends notRouted{"Unable to initialize the topology structure", "Unable to build topology",
                     "Bellman-Kalaba failure"};

Ends operator+(Ends a, const Ends &b)
{
    a.insert(b.begin(), b.end());
    return a;
}

/** One call. */
struct Operation {
    const char *name;
    int (*run)(Scene &);
    Ends ends; ///< how the last message begins when memory runs out, each met; empty for any
    int chain = 0;
    bool goesOn = false; ///< a private copy that cannot be made is done without
};

const Operation operations[] = {
    {"start",
     [](Scene &) { return Owned<DataBase, DBdestroy>{DBnew(2)} ? 0 : -1; },
     {"Critical lack of memory", "Unable to initialize the general node container",
      "Unable to initialize the general LSP container",
      "Unable to initialize the general link container",
      "Unable to initialize the link id-src translater",
      "Unable to initialize the link id-dst translater"}},
    {"add a node",
     [](Scene &s) { return DBaddNode(s.db.get(), 80); },
     {"Unable to create node", "Unable to insert a new node"}},
    {"add a link",
     [](Scene &s) { return s.addLink(); },
     {"Unable to create link", "Unable to insert a new node", "Link addition uncomplete"}},
    {"add a primary", [](Scene &s) { return s.add(s.placed); }, notAdmitted + notMerged + notAdded},
    {"add a long path", [](Scene &s) { return s.add(s.distant); },
     notAdmitted + notAdded + Ends{"LSP refused by the predicate"}, 66},
    {"add a local backup", [](Scene &s) { return s.add(s.local); }, notAdmitted + notAdded},
    {"add a global backup", [](Scene &s) { return s.add(s.global); }, notAdmitted + notAdded},
    {"ask what gives way",
     [](Scene &s) { return getpreemptList(s.db.get(), s.placed.get(), s.list.get()); },
     notAdmitted + notMerged},
    {"add a path that turns back", [](Scene &s) { return s.add(s.turning); },
     notAdmitted + notAdded},
    {"set a state",
     [](Scene &s) { return DBsetLinkState(s.db.get(), 2, 4, s.state.get()); },
     {"Impossible to set linkstate on link (src = 2, dst = 4)"}},
    {"remove a link", [](Scene &s) { return DBremoveLink(s.db.get(), 2, 4); }, {}},
    {"remove a node", [](Scene &s) { return DBremoveNode(s.db.get(), 4); }, {}},
    {"remove", [](Scene &s) { return DBremoveLSP(s.db.get(), 4); }, {"LSP removal uncomplete"}, 66},
    {"route",
     [](Scene &s) { return s.place(PlacementGoal::pathOnly); },
     {"Critical lack of memory", "Unable to build topology"}},
    {"route plainly", [](Scene &s) { return s.placePlainly(PlacementGoal::pathOnly); },
     notRouted + Ends{"Critical lack of memory"}},
    {"route and make room", [](Scene &s) { return s.place(PlacementGoal::room); }, {}},
    {"route, admit and preempt", [](Scene &s) { return s.placePlainly(PlacementGoal::lsp); },
     notRouted + notAdmitted + notAdded +
         Ends{"Critical lack of memory", "Unable to create label switched path"}},
    {"protect locally", [](Scene &s) { return s.protect(LOCAL_BACKUP); }, {}, 0, true},
    {"protect globally", [](Scene &s) { return s.protect(GLOBAL_BACKUP); }, {}, 0, true},
    {"evaluate", [](Scene &s) { return s.evaluate(); }, {}},
};

TEST_F(MemoryFaults, LeaveTheDatabaseAsItWasAndTheCallRepeatable)
{
    tarnexConfig = {};
    tarnexConfig.predicateConfig = {true, true, false};
    int faults = 0;
    for (const Operation &operation : operations) {
        SCOPED_TRACE(operation.name);
        Scene unharmed{operation.chain};
        ASSERT_EQ(operation.run(unharmed), 0);
        Ends ends;
        for (const Lasting lasting : {Lasting::once, Lasting::fromThenOn}) {
            bool faulted = true;
            for (int nth = 1; faulted; ++nth) {
                SCOPED_TRACE(nth);
                Scene scene{operation.chain};
                const auto before = scene.shows();
                const Long strayBefore = scene.strayBytes();
                auto probe = std::make_unique<MemoryProbe>(nth, lasting);
                const int result = operation.run(scene);
                faulted = probe->faulted();
                EXPECT_EQ(probe->repeatedReleases, 0);
                probe.reset();
                const Trail trail = takeTrail();
                EXPECT_EQ(scene.strayBytes(), strayBefore);
                EXPECT_EQ(inconsistencyOf(*scene.db), "");
                const bool wentOn = operation.goesOn && faulted && result == 0;
                EXPECT_EQ(result, faulted && !wentOn ? -1 : 0);
                if (faulted) {
                    ++faults;
                    ASSERT_FALSE(trail.empty());
                    ends.insert(trail.back().substr(0, trail.back().find(" in ")));
                    EXPECT_EQ(scene.shows(), before);
                    scene.list->top = 0;
                    EXPECT_EQ(operation.run(scene), 0);
                    takeTrail();
                }
                EXPECT_EQ(scene.shows(), unharmed.shows());
            }
        }
        EXPECT_TRUE(operation.ends.empty() || operation.ends == ends)
            << ::testing::PrintToString(ends);
    }
    EXPECT_GT(faults, 500);
}

} // namespace
} // namespace property
