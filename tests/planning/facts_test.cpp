/** Facts of networks and figures of plans, against plain counting. */
#include "planning/network_facts.h"
#include "planning/place.h"
#include "planning/random_plans.h"
#include "planning/summary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace tarnex;
using namespace tarnex::planning;
using namespace planning_tests;

namespace
{

constexpr std::size_t unreachable = 1000;

/** Hops between all nodes, by the plainest way there is. */
std::vector<std::vector<std::size_t>> allHops(const Network &network)
{
    const std::size_t n = network.nodes.size();
    std::vector hops(n, std::vector<std::size_t>(n, unreachable));
    for (std::size_t i = 0; i < n; ++i)
        hops[i][i] = 0;
    for (const Link &link : network.links)
        hops[link.from.index()][link.to.index()] = 1;
    for (std::size_t via = 0; via < n; ++via) {
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j)
                hops[i][j] = std::min(hops[i][j], hops[i][via] + hops[via][j]);
        }
    }
    return hops;
}

double bandwidthOf(const Plan &plan, std::size_t kind)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < plan.demands.size(); ++i)
        sum += plan.outcomes[i].index() == kind ? plan.demands[i].bandwidth : 0.0;
    return sum;
}

} // namespace

TEST(NetworkFacts, ComponentsAndDiameterAreThoseOfAllShortestPaths)
{
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw{seed};
        Network network = randomNetwork(draw, {.nodes = 10, .chords = 5});
        std::erase_if(network.links, [&](const Link &) { return draw.oneIn(3); });
        const auto hops = allHops(network);
        const NetworkFacts facts = factsOf(network, {});
        std::vector<std::size_t> componentOf(network.nodes.size(), unreachable);
        for (std::size_t c = 0; c < facts.components.size(); ++c) {
            for (const NodeId node : facts.components[c]) {
                ASSERT_EQ(componentOf[node.index()], unreachable);
                componentOf[node.index()] = c;
            }
            ASSERT_TRUE(c == 0 || facts.components[c - 1].size() >= facts.components[c].size());
        }
        std::size_t diameter = 0;
        for (std::size_t i = 0; i < network.nodes.size(); ++i) {
            for (std::size_t j = 0; j < network.nodes.size(); ++j) {
                const bool isJoined = hops[i][j] < unreachable && hops[j][i] < unreachable;
                ASSERT_EQ(componentOf[i] == componentOf[j], isJoined);
                if (isJoined && componentOf[i] == 0)
                    diameter = std::max(diameter, hops[i][j]);
            }
        }
        EXPECT_EQ(facts.diameter, diameter);
    }
}

TEST(NetworkFacts, OfASmallNetwork)
{
    const Network network{.name = {},
                          .unit = {},
                          .classes = {"a", "b"},
                          .levels = {"x"},
                          .nodes = {{"A", {}}, {"B", {}}, {"C", {}}, {"D", {}}},
                          .links = {{NodeId{0}, NodeId{1}, {4.0, 1.0}},
                                    {NodeId{1}, NodeId{0}, {2.0}},
                                    {NodeId{1}, NodeId{2}, {3.0, 5.0}}}};
    const std::vector<Demand> demands{{.name = {},
                                       .ingress = NodeId{0},
                                       .egress = NodeId{1},
                                       .classType = 1,
                                       .level = 0,
                                       .bandwidth = 2.5},
                                      {.name = {},
                                       .ingress = NodeId{0},
                                       .egress = NodeId{1},
                                       .classType = 1,
                                       .level = 0,
                                       .bandwidth = 1.0}};
    const NetworkFacts facts = factsOf(network, demands);
    EXPECT_EQ(facts.capacity[0].total, 9.0);
    EXPECT_EQ(facts.capacity[0].smallest, 2.0);
    EXPECT_EQ(facts.capacity[1].smallest, 0.0);
    EXPECT_EQ(facts.capacity[1].largest, 5.0);
    EXPECT_EQ(facts.demands[1][0], (Amount{2, 3.5}));
    EXPECT_EQ(facts.demands[0][0], Amount{});
    EXPECT_EQ(facts.allDemands, (Amount{2, 3.5}));
    EXPECT_EQ(facts.averageDegree, 0.75);
    EXPECT_EQ(facts.linksWithoutReverse, std::vector{LinkId{2}});
    EXPECT_EQ(facts.nbIsolated, 1U);
    EXPECT_EQ(facts.components[0], (std::vector{NodeId{0}, NodeId{1}}));
}

TEST(Summary, AddsUpToWhatPlainCountingGives)
{
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw{seed};
        const Plan plan = randomPlan(draw);
        const Summary summary = summaryOf(plan, 5);
        const auto &all = summary.all;
        const auto nbOf = [&](std::size_t kind) {
            return static_cast<std::size_t>(
                std::ranges::count(plan.outcomes, kind, &Outcome::index));
        };
        EXPECT_EQ(all.demanded.number, 120U);
        const Amount *const fates[]{&all.leftOut, &all.placed, &all.preempted, &all.refused};
        for (std::size_t kind = 0; kind < 4; ++kind) {
            EXPECT_EQ(fates[kind]->number, nbOf(kind));
            EXPECT_EQ(fates[kind]->bandwidth, bandwidthOf(plan, kind));
        }
        std::size_t nbByLevel = 0, nbByReason = 0;
        for (const Fates &level : summary.levels)
            nbByLevel += level.placed.number;
        for (const Amount &amount : summary.refused)
            nbByReason += amount.number;
        EXPECT_EQ(nbByLevel, all.placed.number);
        EXPECT_EQ(nbByReason, all.refused.number);
        const auto &cover = all.coverage;
        EXPECT_EQ(cover.nodes.number + cover.links.number + cover.some.number + cover.none.number,
                  all.placed.number);

        double primary = 0.0, dedicated = 0.0;
        for (std::size_t i = 0; i < plan.demands.size(); ++i) {
            const auto *lsp = std::get_if<PlannedLsp>(&plan.outcomes[i]);
            const double bandwidth = plan.demands[i].bandwidth;
            primary += lsp ? bandwidth * static_cast<double>(lsp->path.size() - 1) : 0.0;
            for (std::size_t b = 0; lsp && b < lsp->backups.size(); ++b)
                dedicated += bandwidth * static_cast<double>(lsp->backups[b].path.size() - 1);
        }
        EXPECT_NEAR(summary.cost.primary, primary, 1e-9 * primary);
        EXPECT_NEAR(summary.cost.dedicated, dedicated, 1e-9 * dedicated);
        EXPECT_EQ(summary.cost.shared > 1e-9, dedicated > 0.0);
        ASSERT_EQ(summary.fullest.size(), 5U);
        EXPECT_TRUE(
            std::ranges::is_sorted(summary.fullest, std::greater{}, &LinkLoad::utilization));
    }
}

TEST(Summary, CoverIsAsGoodAsTheWorstPartOfAPath)
{
    const auto backup = [](std::vector<LinkId> links, std::vector<NodeId> nodes) {
        return PlannedBackup{LspKind::localBackup, {}, std::move(links), std::move(nodes)};
    };
    PlannedLsp lsp;
    lsp.path = {NodeId{0}, NodeId{1}, NodeId{2}};
    EXPECT_EQ(coverOf(lsp), Cover::none);
    lsp.backups = {backup({LinkId{0}}, {NodeId{1}})};
    EXPECT_EQ(coverOf(lsp), Cover::some);
    lsp.backups.push_back(backup({LinkId{1}}, {}));
    EXPECT_EQ(coverOf(lsp), Cover::nodes);
    lsp.backups[0].protectedNodes.clear();
    EXPECT_EQ(coverOf(lsp), Cover::links);
}
