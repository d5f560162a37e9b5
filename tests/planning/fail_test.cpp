/** What failures do to plans. */
#include "planning/fail.h"
#include "planning/place.h"
#include "planning/random_plans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>

using namespace tarnex;
using namespace tarnex::planning;
using namespace planning_tests;

namespace
{

Plan somePlan(std::uint32_t seed)
{
    PlanOptions options;
    options.preempts = false; // what gives way beside backups may leave links overbooked
    options.protection = {Scheme::local, Scheme::localOrGlobal, Scheme::global};
    return planOf(seed, options);
}

const PlannedLsp &lspOf(const Plan &plan, DemandId id)
{
    return std::get<PlannedLsp>(plan.outcomes[id.index()]);
}

/** How many LSPs have a link of a failure on their path. */
std::size_t nbUsing(const Plan &plan, const Failure &failure)
{
    const auto fails = [&](NodeId from, NodeId to) {
        return std::ranges::any_of(failure.links, [&](LinkId id) {
            const Link &link = plan.network.links[id.index()];
            return link.from == from && link.to == to;
        });
    };
    return static_cast<std::size_t>(std::ranges::count_if(plan.outcomes, [&](const Outcome &one) {
        const auto *const lsp = std::get_if<PlannedLsp>(&one);
        return lsp && std::ranges::adjacent_find(lsp->path, fails) != lsp->path.end();
    }));
}

} // namespace

TEST(Fail, KeepsWhatIsProtectedAndOverloadsNothingWhenOneThingFails)
{
    std::size_t fates[4] = {};
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        const Plan plan = somePlan(seed);
        FailureStudy study{plan};
        for (const FailureSet set : {FailureSet::links, FailureSet::nodes}) {
            for (const Failure &failure : failuresOf(plan.network, set)) {
                SCOPED_TRACE(failure.name);
                const FailureEffect effect = study.effectOf(failure);
                EXPECT_TRUE(effect.overloads.empty()) << "the promise of shared bandwidth";
                EXPECT_EQ(effect.all.hit.number, nbUsing(plan, failure));
                EXPECT_EQ(effect.lsps.size(), effect.all.hit.number);
                const BrokenLsps sum = std::accumulate(
                    effect.levels.begin(), effect.levels.end(), BrokenLsps{},
                    [](BrokenLsps all, const BrokenLsps &one) { return all += one; });
                EXPECT_EQ(sum.lost.number, effect.all.lost.number);
                for (const auto &[id, fate] : effect.lsps) {
                    ++fates[static_cast<std::size_t>(fate)];
                    const Cover cover = coverOf(lspOf(plan, id));
                    const bool isSafe = cover == Cover::nodes ||
                                        (cover == Cover::links && set == FailureSet::links);
                    EXPECT_FALSE(isSafe && fate == Fate::lost);
                    EXPECT_FALSE(cover == Cover::none && fate != Fate::lost && fate != Fate::ended);
                }
            }
        }
        for (const WorstUse &use : study.worst())
            EXPECT_LE(use.worst, 1.0 + 1e-9);
    }
    EXPECT_GT(*std::ranges::min_element(fates), 10u) << "every fate is met";
}

/*
 * a > b > c with ways around: a > d > b, b > e > c, and a > f > c; e and d are one after the other
 */
TEST(Fail, FollowsBackupsThatAreWholeOneAfterTheOther)
{
    Plan plan;
    plan.network.classes = {"data", "voice"};
    plan.network.levels = {"all"};
    for (const char *name : {"a", "b", "c", "d", "e", "f"})
        plan.network.nodes.push_back({.name = name, .at = {}});
    const auto node = [](char name) { return NodeId{name - 'a'}; };
    const auto way = [&](std::string_view names) {
        std::vector<NodeId> path;
        std::ranges::transform(names, std::back_inserter(path), node);
        return path;
    };
    for (const std::string_view ends : {"ab", "bc", "ad", "db", "be", "ec", "af", "fc"})
        plan.network.links.push_back({node(ends[0]), node(ends[1]), {10.0, 10.0}});
    plan.demands = {
        {.name = "", .ingress = node('a'), .egress = node('c'), .bandwidth = 6.0},
        {.name = "", .ingress = node('a'), .egress = node('d'), .bandwidth = 5.0},
        {.name = "", .ingress = node('a'), .egress = node('d'), .classType = 1, .bandwidth = 7.0}};
    PlannedLsp lsp{.path = way("abc"), .score = {}, .backups = {}, .unprotected = {}};
    lsp.backups = {{LspKind::localBackup, way("adb"), {}, {}},
                   {LspKind::localBackup, way("bec"), {}, {}},
                   {LspKind::globalBackup, way("afc"), {}, {}}};
    const PlannedLsp direct{way("ad"), {}, {}, {}};
    plan.outcomes = {lsp, direct, direct};

    const struct {
        std::string_view failing; ///< ends of links, two by two
        Fate fate;
        std::string_view overloaded;         ///< ends of a link
    } rows[] = {{"ab", Fate::local, "ad"},   // 6 over a > d beside 5
                {"abbc", Fate::local, "ad"}, // both local backups
                {"abdb", Fate::global, ""},  // the first one is broken
                {"bcec", Fate::global, ""},  // the second one
                {"bcecfc", Fate::lost, ""}};
    FailureStudy study{plan};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.failing);
        Failure failure;
        for (std::size_t i = 0; i < row.failing.size(); i += 2) {
            const auto isMeant = [&](const Link &link) {
                return link.from == node(row.failing[i]) && link.to == node(row.failing[i + 1]);
            };
            const auto &links = plan.network.links;
            failure.links.push_back(LinkId{
                static_cast<std::int32_t>(std::ranges::find_if(links, isMeant) - links.begin())});
        }
        const FailureEffect effect = study.effectOf(failure);
        ASSERT_EQ(effect.lsps.size(), 1u);
        EXPECT_EQ(effect.lsps[0].second, row.fate);
        ASSERT_EQ(effect.overloads.size(), row.overloaded.empty() ? 0u : 1u);
        if (!row.overloaded.empty()) {
            EXPECT_EQ(effect.overloads[0].link, LinkId{2});
            EXPECT_EQ(effect.overloads[0].use, 11.0);
        }
    }
    const WorstUse &most = study.worst()[2]; // voice without a failure, data with the first one
    EXPECT_EQ((std::array{most.normal, most.before, most.worst}), (std::array{0.7, 0.5, 1.1}));
    EXPECT_EQ(most.failure, 0u);
    EXPECT_EQ(study.worst()[6].failure, 2u) << "a > f is used when the first backup is broken";
}

TEST(Fail, HasEverySetOfFailures)
{
    Network network;
    for (const char *name : {"a", "b", "c"})
        network.nodes.push_back({.name = name, .at = {}});
    const auto link = [](int from, int to) { return Link{NodeId{from}, NodeId{to}, {1.0}}; };
    network.links = {link(0, 1), link(1, 2), link(1, 0)};
    const auto described = [&](FailureSet set) {
        std::string text;
        for (const Failure &failure : failuresOf(network, set)) {
            text += failure.name + ":";
            for (const LinkId id : failure.links)
                text += std::to_string(id.value);
            text += failure.isSingle() ? "! " : " ";
        }
        return text;
    };
    EXPECT_EQ(described(FailureSet::links), "a > b:0! b > c:1! b > a:2! ");
    EXPECT_EQ(described(FailureSet::duplex), "a - b:02 b > c:1! ");
    EXPECT_EQ(described(FailureSet::nodes), "a:02! b:012! c:1! ");
    EXPECT_EQ(described(FailureSet::pairs), "a - b + b > c:012 ");
}
