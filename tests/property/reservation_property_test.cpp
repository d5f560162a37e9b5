#include "admission/admission.h"
#include "database/books/change.h"
#include "support/churn.h"
#include "support/memory_probe.h"
#include "support/session.h"

#include <cstdlib>
#include <fstream>

namespace property
{
namespace
{

TEST(RandomOperations, KeepEveryReservationAndEveryByte)
{
    Churn::Tally met;
    for (unsigned seed = 1; seed <= 14; ++seed) {
        SCOPED_TRACE(seed);
        const Quiet quiet;
        const Long bytesBefore = allocatedMemory;
        {
            Churn churn{Rng{seed}, seed % 2 == 0 ? Amounts::quarters : Amounts::fractions};
            for (int step = 0; step < 250; ++step) {
                churn.step();
                churn.check();
            }
            met += churn.tally();
        }
        EXPECT_EQ(allocatedMemory, bytesBefore);
    }
    EXPECT_GT(std::min({met.faults, met.refusals, met.incompletes, met.preempted, met.backups}), 5);
}

/** Runs as many operations as the environment variable TARNEX_LONG_RUN says, 20000 without it. */
TEST(RandomOperations, TakeNoMoreMemoryTheLongerTheyGoOn)
{
    const char *wanted = std::getenv("TARNEX_LONG_RUN");
    const int steps = wanted ? std::stoi(wanted) : 20'000;
    Long peaks[2] = {}; // of the counted bytes, in the first half and in the second
    {
        const Quiet quiet;
        Churn churn{Rng{12}, Amounts::quarters};
        for (int step = 0; step < steps; ++step) {
            churn.step();
            Long &peak = peaks[step < steps / 2 ? 0 : 1];
            peak = std::max(peak, bytesInUse());
            if (step % 64 == 0)
                churn.check();
        }
    }
    EXPECT_LT(peaks[1], peaks[0] + peaks[0] / 2);
}

TEST_F(Session, NodesWithManyLinksFailAsAWhole)
{
    NetworkPlan star{.nodes = {0}, .links = {}};
    for (Long id = 1; id <= 70; ++id) {
        star.nodes.push_back(id);
        star.links.push_back({2 * id, id, 0});
        star.links.push_back({2 * id + 1, 0, id});
        if (id != 1)
            star.links.push_back({200 + id, id, 1});
    }
    star.links.push_back({1, 1, 2});
    build(star);
    for (Long id = 3; id < 70; ++id) { // all protect a link into node 0 over the same one
        const PlannedLsp primary{id, primaryLSP, 1, {0.25}, {id, 0, 2}};
        ASSERT_EQ(add(primary), 0);
        ASSERT_EQ(add({100 + id, localBackupLSP, 2, {0.25}, {id, 1, 2}, id, primary.path}), 0);
    }
    EXPECT_TRUE(followsPlain());
}

/** Resident memory of this process, in MiB. */
long residentMemory()
{
    std::ifstream status{"/proc/self/statm"};
    long total = 0;
    long resident = 0;
    status >> total >> resident;
    return resident / 256;
}

TEST_F(Session, SparseIdsCostNoMemoryForWhatIsNotThere)
{
    Rng rng{4};
    NetworkPlan plan = randomNetwork(rng, 200, 5, 100);
    ASSERT_GT(plan.nodes.back(), 19'000);
    const long before = residentMemory();
    ASSERT_EQ(addNetwork(db, plan), 0);
    for (Long id = 0; id < 1000; ++id) {
        const PlannedLsp primary{
            id,
            primaryLSP,
            int(id % MAXPL),
            {0.01},
            hopPath(plan, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), rng)};
        ASSERT_EQ(DBaddLSP(db, recordOf(primary).get(), &preempted), 0);
    }
#ifdef __SANITIZE_ADDRESS__
    constexpr long allowed = 400; // the checker's own books count too
#else
    constexpr long allowed = 200;
#endif
    EXPECT_LT(residentMemory() - before, allowed);
}

PlannedLsp lsp(Long id, int level, double bw, NodePath path, Long partner = -1)
{
    return {id, primaryLSP, level, {bw}, std::move(path), 0, {}, partner};
}

using AdmissionProperty = Session;

TEST_F(AdmissionProperty, ANegativeZeroThatWasHandedInStaysUntilAnLspOfItsLevelComes)
{
    build(networkOf("0:0-1 1:1-2"));
    const State state{DBlinkStateNew()};
    for (const int p : {2, 3, 5})
        state->pbw[1][p] = plain.links[{0, 1}].state.pbw[1][p] = -0.0;
    ASSERT_EQ(DBsetLinkState(db, 0, 1, state.get()), 0);
    for (const int level : {0, 2, 4, 3}) { // by LSPs of another class type
        ASSERT_EQ(add(lsp(level, level, 1, {0, 1, 2})), 0);
        EXPECT_TRUE(followsPlain()) << level;
    }
    for (const Long id : {2, 0, 3}) {
        EXPECT_EQ(remove(id), 0);
        EXPECT_TRUE(followsPlain()) << id;
    }
}

TEST_F(AdmissionProperty, ChangesNothingWhereItFails)
{
    const Trail reserved{"Trying to add an LSP with a reserved ID" + inTables,
                         "Unable to insert LSP in the general LSP container" + inDatabase};
    const Trail noLink{"Inexistent Link (src = 2, dst = 0)" + inDatabase,
                       "Unable to get the list of LSPs carried by the link" + inDatabase};
    const std::string refused = "LSP refused by the predicate" + inDatabase;
    const std::string unknown = "Unable to update link state in predicate/predicate";
    const Trail gap{"Cannot determine link ID" + inDatabase, unknown, refused};
    const Trail late{"Cannot determine the link to protect" + inDatabase, unknown, refused};
    const Trail orphan{"Impossible to determine the primary path" + inDatabase, unknown, refused};
    const struct {
        PlannedLsp lsp;
        Trail trail; ///< that of the question ends before what only an admission says
        bool isAnswered;
    } rows[] = {
        {lsp(20, 0, 1, {0, 1}), reserved, true},
        {lsp(30, 3, 6, {2, 0, 1}), noLink, false},
        {lsp(30, 3, 1, {1, 2, 0}), gap, true},
        {{30, localBackupLSP, 3, {1}, {2, 3}, 20}, late, true},
        {{30, globalBackupLSP, 3, {1}, {0, 1}}, orphan, true},
    };
    tarnexConfig.predicateConfig = {true, true, true};
    build(networkOf("1:0-1/10 2:1-2/10 3:2-3/10")); // 0 --> 1 --> 2 --> 3
    for (const PlannedLsp &present : {lsp(20, 5, 6, {0, 1, 2}), lsp(21, 7, 3, {1, 2, 3})})
        ASSERT_EQ(add(present), 0);
    for (const auto &row : rows) {
        EXPECT_EQ(getpreemptList(db, recordOf(row.lsp).get(), &preempted), row.isAnswered ? 0 : -1);
        const Trail asked = takeTrail();
        EXPECT_EQ(add(row.lsp), -1);
        expectTrail(row.trail);
        EXPECT_TRUE(std::ranges::equal(asked, std::span{row.trail}.first(asked.size())));
        EXPECT_EQ(asked.size() < row.trail.size(), row.isAnswered) << row.trail[0];
        EXPECT_TRUE(followsPlain());
    }
    ASSERT_EQ(DBremoveLink(db, 2, 3), 0);
    plain.links.erase({2, 3});
    EXPECT_EQ(remove(21), -1); // the link before the gap misses it
    EXPECT_EQ(DBremoveLSP(db, 21), -1);
    expectTrail({"Cannot determine link ID" + inDatabase, "LSP removal uncomplete" + inDatabase,
                 "Trying to remove inexistent LSP (id = 21)" + inDatabase});
    EXPECT_EQ(add(lsp(30, 0, 1, {0, 1}, 99)), 0);
    EXPECT_TRUE(followsPlain()) << "no partner";
    expectTrail({"[WARNING] Cannot find the old LSP" + inDatabase,
                 "[WARNING] Unable to get no contention LSP" + inDatabase});
}

} // namespace
} // namespace property
