/** What failures do to plans. */
#include "formats/remarks.h"
#include "planning/fail.h"
#include "planning/failure_tally.h"
#include "planning/link_finder.h"
#include "planning/place.h"
#include "planning/random_plans.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>

using namespace tarnex;
using namespace tarnex::planning;
using namespace planning_tests;

namespace
{

Plan somePlan(std::uint32_t seed, std::vector<LevelScheme> protection)
{
    PlanOptions options;
    options.preempts = false; // what gives way beside backups may leave links overbooked
    options.protection = std::move(protection);
    return planOf(seed, options);
}

FailureList listOf(const Network &network, FailureSet set)
{
    FailureList list;
    list.add(network, set);
    return list;
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
    std::size_t fates[6] = {};
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        const Plan plan = somePlan(seed, {Scheme::local, Scheme::localOrGlobal, Scheme::global});
        FailureStudy study{plan};
        FailureTally tally{study.normal(), plan.network.levels.size()};
        for (const FailureSet set : {FailureSet::links, FailureSet::nodes}) {
            const FailureList failures = listOf(plan.network, set);
            for (std::size_t i = 0; i < failures.size(); ++i) {
                const Failure failure = failures[i];
                SCOPED_TRACE(failure.name);
                const FailureEffect effect = study.effectOf(failure);
                EXPECT_TRUE(effect.overloads.empty()) << "the promise of shared bandwidth";
                EXPECT_EQ(effect.all.hit.number, nbUsing(plan, failure));
                EXPECT_EQ(effect.lsps.size(), effect.all.hit.number);
                tally.add(FailureName{failure}, effect);
                std::vector<BrokenLsps> levels(effect.levels.size());
                for (const auto &[id, fate, reason] : effect.lsps) {
                    ++fates[static_cast<std::size_t>(fate)];
                    BrokenLsps &level =
                        levels[static_cast<std::size_t>(plan.demands[id.index()].level)];
                    ++level.hit.number;
                    level.lost.number += fate == Fate::lost ? 1 : 0;
                    const Cover cover = coverOf(lspOf(plan, id));
                    const bool isSafe = cover == Cover::nodes ||
                                        (cover == Cover::links && set == FailureSet::links);
                    EXPECT_FALSE(isSafe && fate == Fate::lost);
                    EXPECT_FALSE(cover == Cover::none && fate != Fate::lost && fate != Fate::ended);
                }
                for (std::size_t p = 0; p < levels.size(); ++p) {
                    EXPECT_EQ(effect.levels[p].hit.number, levels[p].hit.number);
                    EXPECT_EQ(effect.levels[p].lost.number, levels[p].lost.number);
                }
            }
        }
        for (const LinkPeak &peak : tally.worst)
            EXPECT_LE(peak.share, 1.0 + 1e-9);
    }
    for (const Fate fate : {Fate::local, Fate::global, Fate::lost, Fate::ended})
        EXPECT_GT(fates[static_cast<std::size_t>(fate)], 10u) << nameOf(fate);
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
    FailureTally tally{study.normal(), 1};
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
        tally.add(FailureName{failure}, effect);
        EXPECT_EQ(effect.lsps[0].fate, row.fate);
        ASSERT_EQ(effect.overloads.size(), row.overloaded.empty() ? 0u : 1u);
        if (!row.overloaded.empty()) {
            EXPECT_EQ(effect.overloads[0].link, LinkId{2});
            EXPECT_EQ(effect.overloads[0].use, 11.0);
        }
    }
    // Voice without a failure, data with the first one.
    EXPECT_EQ((std::array{tally.normal[2].share, tally.worst[2].before, tally.worst[2].share}),
              (std::array{0.7, 0.5, 1.1}));
    EXPECT_EQ(tally.worstFailure[2], 0u);
    EXPECT_EQ(tally.worstFailure[6], 2u) << "a > f is used when the first backup is broken";
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
        const FailureList failures = listOf(network, set);
        for (std::size_t i = 0; i < failures.size(); ++i) {
            const Failure failure = failures[i];
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
    network.nodes.push_back({.name = "d", .at = {}});
    network.links.push_back(link(2, 3));
    EXPECT_EQ(described(FailureSet::pairs),
              "a - b + b > c:012 a - b + c > d:023 b > c + c > d:13 ");
    FailureList named;
    named.add(network, formats::parseFailureSets("failure \"a duct\" duplex b a link b c\n"
                                                 "failure one node d link b c\n",
                                                 "sets", network));
    EXPECT_EQ(named[0].links, (std::vector{LinkId{0}, LinkId{1}, LinkId{2}}));
    EXPECT_EQ(named[1].links, (std::vector{LinkId{1}, LinkId{3}}));
    EXPECT_FALSE(named[1].isSingle());
}

TEST(Fail, NamesWhatIsWrongWithAFileOfSets)
{
    Network network;
    for (const char *name : {"a", "b"})
        network.nodes.push_back({.name = name, .at = {}});
    network.links = {{NodeId{0}, NodeId{1}, {1.0}}};
    const std::pair<const char *, const char *> rows[] = {
        {"duct x link a b", "sets:1:1: unknown statement 'duct' (failure)"},
        {"failure x\nfailure y node a", "sets:1:10: expected: failure NAME (link FROM TO | duplex "
                                        "FROM TO | node NAME)..."},
        {"failure x link b a", "sets:1:16: there is no link from b to a"},
        {"failure x node c", "sets:1:16: there is no node c"},
        {"failure x duplex b", "sets:1:19: expected the name of a node"},
        {"failure x a b", "sets:1:11: expected link, duplex or node, not 'a'"},
        {"failure x node a\nfailure x node b", "sets:2:9: there is a failure x already"},
        {"# nothing", "sets:1:10: expected: failure NAME and what fails"}};
    for (const auto &[text, problem] : rows) {
        try {
            formats::parseFailureSets(text, "sets", network);
            ADD_FAILURE() << text;
        } catch (const InputError &error) {
            EXPECT_STREQ(error.what(), problem);
        }
    }
}

namespace
{

/** What is left of the links of a plan when LSPs are gone, for primaries without backups. */
std::vector<std::vector<double>> roomWithout(const Plan &plan, const std::vector<DemandId> &gone)
{
    std::vector<std::vector<double>> room;
    for (std::size_t i = 0; i < plan.network.links.size(); ++i) {
        room.push_back(plan.network.links[i].capacity);
        for (std::size_t c = 0; c < room[i].size(); ++c)
            for (const double level : plan.use[i].total[c])
                room[i][c] -= level;
    }
    const LinkFinder finder{plan.network};
    for (const DemandId id : gone) {
        const Demand &demand = plan.demands[id.index()];
        const std::vector<LinkId> links = finder.along(lspOf(plan, id).path).value();
        for (const LinkId link : links)
            room[link.index()][static_cast<std::size_t>(demand.classType)] += demand.bandwidth;
    }
    return room;
}

/** Whether a demand finds a way over links that are `usable`. */
template <class Usable>
bool findsWay(const Plan &plan, const Demand &demand, Usable usable)
{
    std::vector<bool> isReached(plan.network.nodes.size());
    isReached[demand.ingress.index()] = true;
    for (std::size_t round = 0; round < isReached.size(); ++round)
        for (std::size_t i = 0; i < plan.network.links.size(); ++i)
            if (isReached[plan.network.links[i].from.index()] && usable(i))
                isReached[plan.network.links[i].to.index()] = true;
    return isReached[demand.egress.index()];
}

} // namespace

TEST(Reroute, PlacesWhatFitsAroundTheFailureAndNothingElse)
{
    std::size_t nbPlaced = 0;
    std::size_t nbRefused = 0;
    for (std::uint32_t seed = 1; seed <= 6; ++seed) {
        const Plan plan = somePlan(seed, {Scheme::local});
        FailureStudy study{plan};
        Rerouter rerouter{plan, Reroute::gently};
        const FailureList failures = listOf(plan.network, FailureSet::pairs);
        for (std::size_t i = 0; i < failures.size(); ++i) {
            SCOPED_TRACE(testing::Message() << seed << ' ' << failures[i].name);
            std::vector<DemandId> lost;
            for (const FailedLsp &lsp : study.effectOf(failures[i]).lsps)
                if (lsp.fate == Fate::lost)
                    lost.push_back(lsp.id);
            const auto tried = rerouter.reroute(lost, {}, failures[i].links);
            ASSERT_TRUE(std::ranges::equal(tried, lost, {}, &ReroutedLsp::id));
            auto room = roomWithout(plan, lost);
            const auto hasFailed = [&](std::size_t link) {
                return std::ranges::count(failures[i].links, LinkId(static_cast<int>(link))) > 0;
            };
            for (const ReroutedLsp &lsp : tried) {
                const Demand &demand = plan.demands[lsp.id.index()];
                NodeId at = demand.ingress;
                for (const LinkId link : lsp.links) {
                    EXPECT_FALSE(hasFailed(link.index()));
                    EXPECT_EQ(plan.network.links[link.index()].from, at);
                    at = plan.network.links[link.index()].to;
                    room[link.index()][static_cast<std::size_t>(demand.classType)] -=
                        demand.bandwidth;
                }
                EXPECT_TRUE(lsp.links.empty() || at == demand.egress);
            }
            for (const auto &ofLink : room)
                EXPECT_GT(*std::ranges::min_element(ofLink), -1e-9);
            for (const ReroutedLsp &lsp : tried) {
                ++(lsp.links.empty() ? nbRefused : nbPlaced);
                const Demand &demand = plan.demands[lsp.id.index()];
                const auto hasRoom = [&](std::size_t link) {
                    return !hasFailed(link) &&
                           room[link][static_cast<std::size_t>(demand.classType)] >
                               demand.bandwidth + 1e-9;
                };
                if (!lsp.links.empty())
                    continue;
                EXPECT_FALSE(findsWay(plan, demand, hasRoom));
                EXPECT_EQ(lsp.reason == Reason::notConnected,
                          !findsWay(plan, demand, std::not_fn(hasFailed)));
            }
        }
    }
    EXPECT_GT(nbPlaced, 50u);
    EXPECT_GT(nbRefused, 50u);
}

/* Two ways from a to b, over c and over d; what matters loses the first and takes the second. */
TEST(Reroute, HasLessImportantLspsGiveWay)
{
    Plan plan;
    plan.network.classes = {"data"};
    plan.network.levels = {"gold", "bronze"};
    for (const char *name : {"a", "b", "c", "d"})
        plan.network.nodes.push_back({.name = name, .at = {}});
    const auto node = [](char name) { return NodeId{name - 'a'}; };
    for (const std::string_view ends : {"ac", "cb", "ad", "db"})
        plan.network.links.push_back({node(ends[0]), node(ends[1]), {10.0}});
    for (const int level : {0, 1})
        plan.demands.push_back({.name = "",
                                .ingress = node('a'),
                                .egress = node('b'),
                                .level = level,
                                .bandwidth = 6.0});
    plan.outcomes = {PlannedLsp{{node('a'), node('c'), node('b')}, {}, {}, {}},
                     PlannedLsp{{node('a'), node('d'), node('b')}, {}, {}, {}}};
    plan.setUp = {DemandId{0}, DemandId{1}};
    const Failure failure{"a > c", FailureSet::links, {LinkId{0}}, {}};
    const auto fates = [&](Reroute reroute) {
        FailureStudy study{plan, reroute};
        std::string text;
        const FailureEffect effect = study.effectOf(failure);
        for (const FailedLsp &lsp : effect.lsps)
            text += fmt::format("{} {} ", lsp.id.value, nameOf(lsp.fate));
        for (const LinkPeak &peak : effect.peaks)
            text += fmt::format("{}:{} ", peak.link.value, peak.share);
        return text;
    };
    EXPECT_EQ(fates(Reroute::no), "0 lost ");
    EXPECT_EQ(fates(Reroute::gently), "0 lost ");
    EXPECT_EQ(fates(Reroute::preempting), "0 rerouted 1 displaced ");
    plan.network.links.push_back({node('a'), node('b'), {6.0}});
    EXPECT_EQ(fates(Reroute::gently), "0 rerouted 4:1 ");
    std::swap(plan.network.links.back().capacity[0], plan.network.links[3].capacity[0]);
    plan.demands[0].bandwidth = 8.0;
    EXPECT_EQ(fates(Reroute::preempting), "0 rerouted 4:0.8 ");
}
