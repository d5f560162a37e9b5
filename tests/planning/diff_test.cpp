/** What differs between two plans. */
#include "planning/diff.h"
#include "planning/place.h"
#include "planning/random_plans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace tarnex;
using namespace tarnex::planning;
using namespace planning_tests;

namespace
{

Plan somePlan(std::uint32_t seed)
{
    PlanOptions options;
    options.protection.assign(3, Scheme::localOrGlobal);
    return planOf(seed, options);
}

/** The same plan with nodes, links and demands numbered the other way round; demands that are told
 * apart by their place keep it. */
Plan renumbered(const Plan &plan)
{
    const auto swapped = [](auto &id, std::size_t size) {
        id.value = static_cast<std::int32_t>(size) - 1 - id.value;
    };
    Plan other = plan;
    std::ranges::reverse(other.network.nodes);
    std::ranges::reverse(other.network.links);
    std::ranges::reverse(other.use);
    const auto swapNode = [&](NodeId &node) { swapped(node, plan.network.nodes.size()); };
    for (Link &link : other.network.links) {
        swapNode(link.from);
        swapNode(link.to);
    }
    for (Demand &demand : other.demands) {
        swapNode(demand.ingress);
        swapNode(demand.egress);
    }
    for (Outcome &outcome : other.outcomes) {
        if (auto *lsp = std::get_if<PlannedLsp>(&outcome)) {
            std::ranges::for_each(lsp->path, swapNode);
            for (PlannedBackup &backup : lsp->backups)
                std::ranges::for_each(backup.path, swapNode);
        }
    }
    return other;
}

std::size_t firstPlaced(const Plan &plan, bool withBackups)
{
    const auto isWanted = [=](const Outcome &outcome) {
        const auto *lsp = std::get_if<PlannedLsp>(&outcome);
        return lsp && lsp->backups.empty() != withBackups;
    };
    return static_cast<std::size_t>(std::ranges::find_if(plan.outcomes, isWanted) -
                                    plan.outcomes.begin());
}

} // namespace

TEST(Diff, OfAPlanWithItselfIsEmptyHoweverItIsNumbered)
{
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
        const Plan plan = somePlan(seed);
        EXPECT_TRUE(diff(plan, plan, 0.0).isEmpty());
        EXPECT_TRUE(diff(plan, renumbered(plan), 0.0).isEmpty());
    }
}

TEST(Diff, TellsWhatBecameOfOneDemand)
{
    const Plan plan = somePlan(3);
    const std::size_t at = firstPlaced(plan, true);
    const std::vector<std::pair<Change, std::function<void(Plan &)>>> rows{
        {Change::moved,
         [=](Plan &p) { std::get<PlannedLsp>(p.outcomes[at]).path.emplace_back(0); }},
        {Change::reprotected,
         [=](Plan &p) { std::get<PlannedLsp>(p.outcomes[at]).backups.pop_back(); }},
        {Change::lost, [=](Plan &p) { p.outcomes[at] = Refusal{}; }},
    };
    for (const auto &[change, make] : rows) {
        Plan changed = plan;
        make(changed);
        const PlanDiff found = diff(plan, changed, 0.0);
        ASSERT_EQ(found.demands.size(), 1U);
        EXPECT_EQ(found.demands[0].change, change);
        EXPECT_EQ(found.demands[0].before, DemandId{static_cast<std::int32_t>(at)});
        EXPECT_TRUE(found.links.empty());
    }
    Plan changed = plan;
    changed.outcomes[at] = Refusal{};
    EXPECT_EQ(diff(changed, plan, 0.0).demands.at(0).change, Change::gained);
    changed.demands[at].name = "another";
    const PlanDiff other = diff(plan, changed, 0.0);
    ASSERT_EQ(other.demands.size(), 2U);
    EXPECT_EQ(other.demands[0].change, Change::added);
    EXPECT_EQ(other.demands[1].change, Change::lost);
    EXPECT_EQ(other.demands[1].after, std::nullopt);
    changed = plan;
    changed.demands[at].bandwidth *= 2.0;
    EXPECT_EQ(diff(plan, changed, 0.0).demands.at(0).change, Change::resized);
}

TEST(Diff, ListsLinksThatChangedByMoreThanAShare)
{
    const Plan plan = somePlan(4);
    Plan changed = plan;
    changed.network.links[2].capacity[1] = 50.0;
    changed.use[2].total[1][0] += 5.0;
    EXPECT_TRUE(diff(plan, changed, 0.11).isEmpty());
    const PlanDiff found = diff(plan, changed, 0.09);
    ASSERT_EQ(found.links.size(), 1U);
    EXPECT_EQ(found.links[0].after, LinkId{2});
    EXPECT_EQ(found.links[0].className, "class1");
    EXPECT_NEAR(found.links[0].gain(), 0.1, 1e-12);
    EXPECT_NEAR(diff(changed, plan, 0.01).links.at(0).reservedBefore, found.links[0].reservedAfter,
                0.0);

    changed = plan;
    changed.network.nodes.push_back({"new", {}});
    changed.network.links.push_back({NodeId{0}, NodeId{12}, {1.0, 1.0}});
    changed.use.push_back(changed.use[0]);
    const PlanDiff grown = diff(plan, changed, 1.0);
    EXPECT_EQ(grown.nodesGained, std::vector<std::string>{"new"});
    EXPECT_EQ(grown.links.size(), 2U);
    EXPECT_EQ(diff(changed, plan, 1.0).nodesLost, grown.nodesGained);
}
