#include "database/reservation.h"
#include "property/session.h"
#include "rerouting/rerouting.h"

namespace property
{
namespace
{

/** The engine and the plain network driven through the same random changes. */
class ReservationChurn : public Session, public ::testing::WithParamInterface<unsigned>
{
protected:
    /** Removes a link or, with all its links, a node, which comes back bare. */
    void cut()
    {
        const PlannedLink link = anyOf(rng, plan.links);
        const bool wholeNode = randomInt(rng, 4) == 0;
        EXPECT_EQ(wholeNode ? DBremoveNode(db, link.src) + DBaddNode(db, link.src)
                            : DBremoveLink(db, link.src, link.dst),
                  0);
        const auto stays = [&](const PlannedLink &l) {
            return wholeNode ? l.src != link.src && l.dst != link.src : l.id != link.id;
        };
        const auto gone = std::partition(plan.links.begin(), plan.links.end(), stays);
        for (auto l = gone; l != plan.links.end(); ++l)
            plain.links.erase({l->src, l->dst});
        spare.insert(spare.end(), gone, plan.links.end());
        plan.links.erase(gone, plan.links.end());
    }

    /** Links come back one by one, under the id of any link that went. */
    void restore()
    {
        std::ranges::shuffle(spare, rng);
        std::swap(spare.front().id, spare.back().id);
        EXPECT_EQ(addLink(db, spare.back()), 0);
        plain.add(spare.back());
        plan.links.push_back(spare.back());
        spare.pop_back();
    }

    /** Puts an LSP to every link in the three ways to ask. */
    void ask(const PlannedLsp &lsp)
    {
        const LspRecord record = recordOf(lsp);
        const RequestRecord request = requestOf(lsp);
        const Candidate candidate{viewOf(*record), lsp.primID};
        for (const auto &[hop, link] : plain.links) {
            const auto [src, dst] = hop;
            PlainState expected = link.state;
            const int result = plain.update(expected, hop, lsp, 1.0) ? 0 : -1;
            DBLinkState *stored = DBgetLinkState(db, src, dst);
            const State copy{DBlinkStateNew()};
            double rbw[MAXOA][MAXPL];
            EXPECT_EQ(DBevalLSOnSetup(db, src, dst, copy.get(), stored, request.get()), result);
            EXPECT_EQ(reservationAfterSetup(db, src, dst, stored, candidate, rbw), result);
            if (settle(result != 0) != 0)
                continue;
            EXPECT_TRUE(areSame(*copy, expected));
            EXPECT_EQ(std::memcmp(rbw, copy->rbw, sizeof rbw), 0);
        }
    }

    /** A failure leaves messages, which are dropped, anything else leaves none; 1 for a failure. */
    static int settle(bool failed)
    {
        EXPECT_EQ(errorManager.top > 0, failed);
        errorManager.top = 0;
        return failed ? 1 : 0;
    }

    PlannedLsp randomLsp()
    {
        PlannedLsp lsp{.path = hopPath(plan, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), rng)};
        const DBLSPType type = randomInt(rng, 2) == 0 ? localBackupLSP : globalBackupLSP;
        const PlannedLsp *other = anyLsp();
        if (other && other->type == primaryLSP && randomInt(rng, 2) == 0)
            lsp = backupOf(plan, *other, type, rng);
        lsp.id = nextId++;
        lsp.precedence = randomInt(rng, MAXPL);
        lsp.noContentionId = -1;
        const PlannedLsp *partner = anyLsp();
        if (partner && partner->noContentionId < 0 && randomInt(rng, 3) == 0) {
            lsp.noContentionId = partner->id;
            lsp.precedence = randomInt(rng, 4) == 0 ? lsp.precedence : partner->precedence;
        }
        std::uniform_real_distribution<double> share{0.0, 10.0};
        for (const std::size_t oa : {0U, 3U, 7U})
            lsp.bw[oa] = randomInt(rng, 2) * share(rng);
        return lsp;
    }

    /** Any stored LSP, null when there is none. */
    const PlannedLsp *anyLsp()
    {
        const int count = static_cast<int>(plain.lsps.size());
        return count == 0 ? nullptr : &std::next(plain.lsps.begin(), randomInt(rng, count))->second;
    }

    Rng rng{GetParam()};
    NetworkPlan plan = randomNetwork(rng, 7, 4, GetParam() % 2 == 0 ? 1 : 3);
    std::vector<PlannedLink> spare;
    Long nextId = 0;
    int refusals = 0, incompletes = 0;
};

TEST_P(ReservationChurn, EqualsThePlainEvaluationBitForBit)
{
    tarnexConfig.predicateConfig.capacityClause = true;
    for (PlannedLink &link : plan.links)
        link.capacity = GetParam() % 2 == 0 ? 20.0 : 200.0;
    build(plan);
    for (int step = 0; step < 200 && !HasFailure(); ++step) {
        const int choice = randomInt(rng, 20);
        const PlannedLsp lsp = randomLsp();
        if (step % 4 == 0 && lsp.path.size() > 1)
            ask(lsp);
        if (choice == 0 && plan.links.size() > 12)
            cut();
        else if (choice < 5 && !spare.empty())
            restore();
        else if (choice < 9 && !plain.lsps.empty())
            incompletes += settle(remove(anyLsp()->id) != 0);
        else if (lsp.path.size() > 1)
            refusals += settle(add(lsp) != 0);
        EXPECT_TRUE(followsPlain());
    }
    EXPECT_GT(plain.lsps.size(), 10U);
    EXPECT_GT(GetParam() % 2 == 0 ? refusals : incompletes, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ReservationChurn, ::testing::Range(1U, 9U));

PlannedLsp lsp(Long id, int level, double bw, NodePath path, Long partner = -1)
{
    return {id, primaryLSP, level, {bw}, std::move(path), 0, {}, partner};
}

using AdmissionProperty = Session;

TEST_F(AdmissionProperty, PreemptionTakesWholeLevelsThenTheBestFit)
{
    const struct {
        double need0, need1;
        int precedence;
        double reserved7; // 19 are listed at that level
        NodePath chosen;
        bool enough;
    } rows[] = {
        {19, 0, 3, 19, {1, 2, 3}, true},   {8, 0, 3, 19, {1}, true},
        {12, 0, 3, 19, {1, 3}, true},      {25, 0, 3, 19, {1, 2, 3, 4}, true},
        {25, 0, 5, 19, {1, 2, 3}, false},  {40, 0, 3, 19, {1, 2, 3, 4, 5}, false},
        {5e-11, 0, 3, 19, {}, true},       {6, 0, 3, 19, {2}, true},
        {2, 3, 3, 19, {3, 1, 2, 3}, true}, {0, 7, 3, 19, {1, 2, 3, 4}, true},
        {25, 0, 3, 25, {1, 2, 3}, true},   {22, 0, 3, 25, {1, 2, 3, 5}, true},
        {22, 0, 5, 25, {1, 2, 3}, false},  {5.5, 0, 3, 19, {2}, true},
    };
    const Owned<DBLSPList, DBlspListDestroy> list{DBlspListNew(-1)};
    std::vector<LspRecord> records;
    const State state{DBlinkStateNew()};
    for (const auto &[id, level, bw0, bw1] :
         {std::tuple{1, 7, 10, 2}, {2, 7, 6, 0}, {3, 7, 3, 1}, {4, 5, 8, 5}, {5, 5, 4, 0}}) {
        records.push_back(recordOf({id, primaryLSP, level, {double(bw0), double(bw1)}}));
        EXPECT_GE(DBlspListInsert(list.get(), records.back().get()), 0);
        state->rbw[0][level] += bw0;
        state->rbw[1][level] += bw1;
    }
    for (const auto &row : rows) {
        state->rbw[0][7] = row.reserved7;
        preempted.top = 0;
        const double need[MAXOA] = {row.need0, row.need1};
        EXPECT_EQ(chooseReroutedLSPs(row.precedence, state.get(), list.get(), need, &preempted),
                  row.enough ? 0 : -1);
        EXPECT_EQ(idsIn(preempted), row.chosen) << row.need0 + row.need1;
        expectTrail(
            Trail(row.enough ? 0 : 1, "Not enough preemptable bandwidth for LSP selection"));
    }
}

TEST_F(AdmissionProperty, ListsWhatGivesWayAndChangesNothingWhenRefused)
{
    const Trail lacking{"Not enough preemptable bandwidth for LSP selection",
                        "Unable choose LSPs for rerouting"};
    const std::string refused = "LSP refused by the predicate";
    const Trail reserved{"Trying to add an LSP with a reserved ID",
                         "Unable to insert LSP in the general LSP container"};
    const Trail noLink{"Inexistent Link (src = 2, dst = 0)",
                       "Unable to get the list of LSPs carried by the link"};
    const Trail gap{"Cannot determine link ID", "Unable to update link state"};
    const Trail late{"Cannot determine the link to protect", "Unable to update link state"};
    const Trail orphan{"Impossible to determine the primary path", "Unable to update link state"};
    const struct {
        const char *name;
        PlannedLsp lsp;
        NodePath preempted;
        Trail question; ///< messages of the question, and the first ones of the admission
        Trail answer;   ///< further messages of the admission
        bool fails;     ///< whether the question alone is a failure
    } rows[] = {
        {"one on two links", lsp(30, 3, 4, {0, 1, 2, 3}), {21}, {}, {}, false},
        {"two levels", lsp(30, 3, 6, {0, 1, 2, 3}), {20, 21}, {}, {}, false},
        {"not its own level", lsp(30, 5, 4, {1, 2, 3}), {21}, {}, {}, false},
        {"first link refuses", lsp(30, 6, 5, {0, 1, 2, 3}), {}, {}, {refused}, false},
        // A link that refuses is still asked for the 2 that the link before it had to free.
        {"later link refuses", lsp(30, 4, 4, {4, 5, 6}), {40, 42}, {}, {refused}, false},
        {"and cannot free it", lsp(30, 4, 4.5, {4, 5, 6}), {40}, lacking, {}, true},
        {"id in use", lsp(20, 0, 1, {0, 1}), {}, {}, reserved, false},
        {"no such link", lsp(30, 3, 6, {2, 0, 1}), {}, noLink, {}, true},
        {"none further on", lsp(30, 3, 1, {1, 2, 0}), {}, gap, {refused}, false},
        {"late backup", {30, localBackupLSP, 3, {1}, {2, 3}, 20}, {}, late, {refused}, false},
        {"backup of nothing", {30, globalBackupLSP, 3, {1}, {0, 1}}, {}, orphan, {refused}, false},
    };
    tarnexConfig.predicateConfig = {true, true, true};
    build(networkOf("1:0-1/10 2:1-2/10 3:2-3/10 4:4-5/10 5:5-6/10"));
    for (const PlannedLsp &present :
         {lsp(20, 5, 6, {0, 1, 2}), lsp(21, 7, 3, {1, 2, 3}), lsp(22, 7, 4, {2, 3}),
          lsp(40, 7, 8, {4, 5}), lsp(41, 2, 8, {5, 6}), lsp(42, 7, 2, {5, 6})})
        ASSERT_EQ(add(present), 0);
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        preempted.top = 0;
        EXPECT_EQ(getpreemptList(db, recordOf(row.lsp).get(), &preempted), row.fails ? -1 : 0);
        EXPECT_EQ(idsIn(preempted), row.preempted);
        expectTrail(row.question);
        Trail whole = row.question;
        whole.insert(whole.end(), row.answer.begin(), row.answer.end());
        EXPECT_EQ(add(row.lsp), whole.empty() ? 0 : -1);
        EXPECT_EQ(idsIn(preempted), row.preempted);
        expectTrail(whole);
        EXPECT_TRUE(followsPlain());
        EXPECT_EQ(whole.empty() ? remove(row.lsp.id) : 0, 0);
    }
    ASSERT_EQ(DBremoveLink(db, 2, 3), 0);
    plain.links.erase({2, 3});
    EXPECT_EQ(remove(21), -1); // the link before the gap misses it
    EXPECT_EQ(DBremoveLSP(db, 21), -1);
    expectTrail({"Cannot determine link ID", "LSP removal uncomplete",
                 "Trying to remove inexistent LSP (id = 21)"});
    EXPECT_EQ(add(lsp(30, 0, 1, {0, 1}, 99)), 0);
    EXPECT_TRUE(followsPlain()) << "no partner";
    expectTrail({"?Cannot find the old LSP", "?Unable to get no contention LSP"});
}

} // namespace
} // namespace property
