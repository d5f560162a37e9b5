#include "admission/admission.h"
#include "database/books/change.h"
#include "rerouting/rerouting.h"
#include "support/session.h"

#include <limits>
#include <map>

namespace property
{
namespace
{

using ByClass = std::array<double, MAXOA>; ///< a bandwidth per class type
using Lsps = std::vector<PlannedLsp>;

const std::string notEnough = "Not enough preemptable bandwidth for LSP selection" + inRerouting;

/** The ids of what gives way, in the order chosen, and whether it is enough. */
using Choice = std::pair<NodePath, bool>;

/** Chooses among the LSPs of a link what gives way to a newcomer of level `own`. */
Choice chosenPlainly(int own, const double (&rbw)[MAXOA][MAXPL], const Lsps &lsps,
                     const ByClass &need)
{
    std::map<int, Lsps> levels;
    for (const PlannedLsp &lsp : lsps)
        levels[-lsp.precedence].push_back(lsp);
    NodePath ids;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const auto k = static_cast<std::size_t>(oa);
        double rest = need[k];
        const auto take = [&](const PlannedLsp &lsp) {
            ids.push_back(lsp.id);
            return lsp.bw[k];
        };
        for (auto &[negated, level] : levels) {
            if (rest <= 1e-10 || -negated <= own)
                break;
            std::ranges::sort(level, comesFirst);
            const double reserved = rbw[oa][-negated];
            if (rest >= reserved) {
                std::ranges::for_each(level, take);
                rest -= reserved;
                continue;
            }
            for (auto lsp = level.begin(); lsp != level.end() && rest > 1e-10; ++lsp) {
                const auto covers = [&](const PlannedLsp &l) { return l.bw[k] >= rest; };
                if (lsp->bw[k] > rest) // the last of those that cover the rest
                    lsp = std::prev(std::find_if_not(lsp, level.end(), covers));
                rest -= take(*lsp);
            }
        }
        if (rest > 1e-10)
            return {ids, false};
    }
    return {ids, true};
}

double scoreOfTaking(double gain, int own, const double (&reserved)[MAXPL],
                     const double (&coefficient)[MAXPL])
{
    double score = 0.0;
    for (int p = MAXPL - 1; gain > 0.0; --p) {
        if (p <= own)
            return std::numeric_limits<double>::infinity();
        score += coefficient[p] * std::min(gain, reserved[p]);
        gain -= reserved[p];
    }
    return score;
}

class Preemption : public Session
{
protected:
    Preemption() { tarnexConfig.predicateConfig = {true, true, false}; }

    /** The engine's choice on a link that reserves `rbw[oa][p]`. */
    Choice chosen(int own, const double (&rbw)[MAXOA][MAXPL], const Lsps &lsps, ByClass need)
    {
        const Owned<DBLSPList, DBlspListDestroy> list{DBlspListNew(-1)};
        std::vector<LspRecord> records;
        for (const PlannedLsp &lsp : lsps) {
            records.push_back(recordOf(lsp));
            EXPECT_GE(DBlspListInsert(list.get(), records.back().get()), 0);
        }
        const State state{DBlinkStateNew()};
        std::memcpy(state->rbw, rbw, sizeof rbw);
        preempted.top = 0;
        const int result =
            chooseReroutedLSPs(own, state.get(), list.get(), need.data(), &preempted);
        expectTrail(Trail(result == 0 ? 0 : 1, notEnough));
        return {idsIn(preempted), result == 0};
    }
};

TEST_F(Preemption, TakesWholeLevelsThenWhatFitsThenTheBestFit)
{
    const Lsps lsps{{1, primaryLSP, 7, {10}}, {2, primaryLSP, 7, {6}}, {3, primaryLSP, 7, {3}},
                    {4, primaryLSP, 5, {8}},  {5, primaryLSP, 5, {4}}, {6, primaryLSP, 4, {5}},
                    {7, primaryLSP, 4, {5}}};
    const double rbw[MAXOA][MAXPL] = {{0, 0, 0, 0, 10, 12, 0, 19}};
    const std::tuple<double, int, Choice> rows[] = {
        {25, 3, {{1, 2, 3, 4}, true}},
        {25, 5, {{1, 2, 3}, false}},
        {36, 3, {{1, 2, 3, 4, 5, 6}, true}}, // of two that fit exactly the first
        {5e-10, 3, {{3}, true}},
    };
    for (const auto &[need, own, expected] : rows)
        EXPECT_EQ(chosen(own, rbw, lsps, {need}), expected) << need;
}

TEST_F(Preemption, ChoosesAndScoresAsThePlainReadingDoes)
{
    Rng rng{5};
    auto &coefficients = tarnexConfig.reroutingConfig.scoreCoef;
    int several = 0;
    for (int round = 0; round < 20'000; ++round) {
        Lsps lsps(static_cast<std::size_t>(randomInt(rng, 9)));
        const State state{DBlinkStateNew()};
        const int levels = 1 + randomInt(rng, 3);
        PlannedLsp asking{.precedence = randomInt(rng, MAXPL), .bw = {2, 4, 1}};
        for (Long id = 0; PlannedLsp & lsp : lsps) {
            lsp.id = 7 * ++id % 11;
            lsp.precedence = MAXPL - 1 - randomInt(rng, levels) * (1 + asking.precedence % 2);
            for (const std::size_t oa : {0U, 1U, 2U}) {
                lsp.bw[oa] = randomInt(rng, 6);
                state->rbw[oa][lsp.precedence] += lsp.bw[oa];
            }
        }
        // Backups may reserve more than is listed, or share what is.
        state->rbw[randomInt(rng, 3)][MAXPL - 1 - randomInt(rng, 3)] += randomInt(rng, 3) / 2.0;
        ByClass need{};
        for (const std::size_t oa : {0U, 1U, 2U}) {
            need[oa] = randomInt(rng, 2) * randomInt(rng, 16) +
                       std::array{0.0, 0.0, 5e-11, 5e-10, 0.5}[std::size_t(randomInt(rng, 5))];
            const int i = static_cast<int>(oa);
            for (double &coefficient : coefficients[i])
                coefficient = randomInt(rng, 4);
            const double score =
                makeRerouteScore(requestOf(asking).get(), need.data(), state.get(), i);
            const double expected =
                scoreOfTaking(need[oa], asking.precedence, state->rbw[i], coefficients[i]);
            EXPECT_DOUBLE_EQ(score, expected / asking.bw[oa]);
            expectTrail(Trail(expected > 1e9 ? 1 : 0,
                              "internal error: impossible to realize gain" + inRerouting));
        }
        const Choice expected = chosenPlainly(asking.precedence, state->rbw, lsps, need);
        ASSERT_EQ(chosen(asking.precedence, state->rbw, lsps, need), expected) << round;
        several += expected.second && expected.first.size() > 1 ? 1 : 0;
    }
    EXPECT_GT(several, 1000);
}

TEST_F(Preemption, TakesTheRestFromALevelThatReservesNoNumber)
{
    const State state{DBlinkStateNew()};
    state->rbw[0][7] = std::numeric_limits<double>::quiet_NaN();
    tarnexConfig.reroutingConfig.scoreCoef[0][7] = 2;
    ByClass gain{25};
    const RequestRecord request = requestOf({.bw = {5}});
    EXPECT_EQ(makeRerouteScore(request.get(), gain.data(), state.get(), 0), 10.0);
}

/** What an admission does, in its plain form. */
struct Admission {
    NodePath preempted{};
    bool isAdmitted = true;
    bool isEnough = true;
};

Admission admittedPlainly(const PlainNetwork &network, const PlannedLsp &lsp)
{
    std::vector<Hop> hops;
    for (const NodePath *path : {&lsp.path, &lsp.primPath}) {
        for (std::size_t i = 1; i < path->size(); ++i) {
            const Hop hop{(*path)[i - 1], (*path)[i]};
            if (path == &lsp.path || std::ranges::count(hops, hop) == 0)
                hops.push_back(hop);
        }
    }
    Admission admission;
    ByClass gain{}; // a link that refuses leaves what it has not come to
    for (const Hop &hop : hops) {
        const auto &link = network.links.at(hop);
        PlainState then = link.state;
        network.update(then, hop, lsp, 1.0);
        for (std::size_t oa = 0; oa < MAXOA && admission.isAdmitted; ++oa) {
            const auto &rbw = then.rbw[oa];
            const double total = std::accumulate(rbw, rbw + MAXPL, 0.0);
            const double kept = std::accumulate(rbw, rbw + lsp.precedence + 1, 0.0);
            admission.isAdmitted = kept <= then.cap[oa];
            if (admission.isAdmitted)
                gain[oa] = std::max(0.0, total - then.cap[oa]);
        }
        Lsps listed;
        for (const auto &[id, present] : network.lsps) {
            const auto passages = std::ranges::count(positions(present.path, hop), true);
            listed.insert(listed.end(), std::size_t(passages), present);
        }
        auto [ids, isEnough] = chosenPlainly(lsp.precedence, link.state.rbw, listed, gain);
        if (!isEnough)
            return {admission.preempted, false, false};
        std::ranges::sort(ids);
        const NodePath before = std::exchange(admission.preempted, {});
        std::ranges::set_union(before, ids, std::back_inserter(admission.preempted));
        if (!admission.isAdmitted)
            break;
    }
    return admission;
}

TEST_F(Preemption, MakesRoomOnEveryLinkOfAnAdmission)
{
    Rng rng{3};
    int giveWay = 0, refusals = 0;
    for (int round = 0; round < 12; ++round) {
        NetworkPlan plan = randomNetwork(rng, 5, 3, 1 + round % 2);
        for (PlannedLink &link : plan.links)
            link.capacity = 10.0;
        rebuild(plan);
        for (Long id = 0; id < 120; ++id) {
            if (id % 4 == 1) {
                const PlannedLink &narrow = anyOf(rng, plan.links);
                const Hop hop{narrow.src, narrow.dst};
                const State state{DBlinkStateNew()};
                ASSERT_EQ(DBlinkStateCopy(state.get(), &storedState(db, hop)), 0);
                const int oa = randomInt(rng, 2);
                state->cap[oa] = plain.links[hop].state.cap[oa] = 2.0 + 4.0 * randomInt(rng, 3);
                ASSERT_EQ(DBsetLinkState(db, hop.first, hop.second, state.get()), 0);
            }
            PlannedLsp lsp{.path = randomPath(plan, rng)};
            const auto at = plain.lsps.lower_bound(randomInt(rng, id + 1));
            const bool protects = at != plain.lsps.end() && at->second.type == primaryLSP;
            if (protects && id % 4 == 0)
                lsp =
                    backupOf(plan, at->second, id % 8 == 0 ? localBackupLSP : globalBackupLSP, rng);
            if (lsp.path.size() < 2)
                continue;
            lsp.id = id;
            lsp.precedence = randomInt(rng, MAXPL);
            for (const std::size_t oa : {0U, 1U})
                lsp.bw[oa] = randomInt(rng, 2) * randomInt(rng, 7);
            const Admission expected = admittedPlainly(plain, lsp);
            Trail trail;
            if (!expected.isEnough)
                trail = {notEnough, "Unable choose LSPs for rerouting" + inDatabase};
            preempted.top = 0;
            EXPECT_EQ(getpreemptList(db, recordOf(lsp).get(), &preempted),
                      expected.isEnough ? 0 : -1);
            EXPECT_EQ(idsIn(preempted), expected.preempted);
            expectTrail(trail);
            EXPECT_EQ(add(lsp), expected.isAdmitted ? 0 : -1);
            ASSERT_EQ(idsIn(preempted), expected.preempted) << round << " " << id;
            if (expected.isEnough && !expected.isAdmitted)
                trail = {"LSP refused by the predicate" + inDatabase};
            expectTrail(trail);
            refusals += expected.isAdmitted ? 0 : 1;
            if (!expected.isAdmitted)
                continue;
            for (const Long gone :
                 std::set<Long>{expected.preempted.begin(), expected.preempted.end()})
                EXPECT_EQ(remove(gone), 0);
            giveWay += expected.preempted.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(std::min(giveWay, refusals), 100);
}

} // namespace
} // namespace property
