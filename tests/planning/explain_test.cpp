/** Answers about one more LSP, held to what placing it does. */
#include "planning/explain.h"
#include "planning/names.h"
#include "planning/place.h"
#include "planning/random_plans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace tarnex;
using namespace tarnex::planning;
using namespace planning_tests;

TEST(Explaining, TellsWhatPlacingDoes)
{
    std::size_t nbVictims = 0, nbRefused = 0, nbProtected = 0, nbUnprotected = 0;
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw{seed};
        const Network network = randomNetwork(draw, {.classes = 1});
        PlanOptions options;
        options.order = Order::given;
        options.protection.assign(3, draw.oneIn(2) ? Scheme::local : Scheme::global);
        Progress progress;
        const Plan plan = place(network, randomDemands(draw, network, 80), options, progress);
        for (Demand &demand : randomDemands(draw, network, 10)) {
            if (demand.bandwidth == 0.0)
                continue;
            demand.bandwidth *= 2.0;
            const auto answer = explain(plan, {demand, true, options.protection[0]});
            const Plan after = placeMore(plan, {demand}, progress);
            const Outcome &outcome = after.outcomes.back();
            const auto *lsp = std::get_if<PlannedLsp>(&outcome);
            ASSERT_EQ(lsp != nullptr, answer.lsp.has_value());
            for (const Victim &victim : answer.victims) {
                ++nbVictims;
                const auto *gone =
                    std::get_if<PreemptedLsp>(&after.outcomes[victim.demand.index()]);
                ASSERT_TRUE(gone);
                EXPECT_EQ(gone->by.index(), plan.demands.size());
                EXPECT_EQ(victim.name, nameOf(network, plan.demands, victim.demand));
                EXPECT_EQ(
                    victim.nbBackups,
                    std::get<PlannedLsp>(plan.outcomes[victim.demand.index()]).backups.size());
            }
            if (lsp) {
                EXPECT_EQ(lsp->path, answer.lsp->path);
                EXPECT_EQ(lsp->backups.size(), answer.lsp->backups.size());
                EXPECT_EQ(lsp->backups.empty(), answer.unprotected.has_value());
                ++(lsp->backups.empty() ? nbUnprotected : nbProtected);
                continue;
            }
            ++nbRefused;
            EXPECT_EQ(answer.refusal->reason, std::get<Refusal>(outcome).reason);
        }
    }
    for (const std::size_t number : {nbVictims, nbRefused, nbProtected, nbUnprotected})
        EXPECT_GT(number, 0U);
}

TEST(Explaining, WhatWouldFitFitsAndNoMore)
{
    std::size_t nbChecked = 0;
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw{seed};
        const Plan plan = randomPlan(draw);
        const Network &network = plan.network;
        Demand demand{.name = {},
                      .ingress = NodeId{0},
                      .egress = NodeId{5},
                      .classType = 0,
                      .level = 1,
                      .bandwidth = 500.0};
        const auto refusal = explain(plan, {demand, false, {}}).refusal;
        ASSERT_TRUE(refusal);
        for (const NamedLink &link : refusal->inTheWay) {
            EXPECT_LT(link.room, demand.bandwidth);
            EXPECT_EQ(link.name, nameOf(network, link.link));
        }
        EXPECT_FALSE(refusal->inTheWay.empty());
        demand.bandwidth = std::nextafter(refusal->largestBandwidth, 1e9);
        EXPECT_FALSE(explain(plan, {demand, false, {}}).lsp);
        if (refusal->largestBandwidth > 0.0) {
            ++nbChecked;
            demand.bandwidth = refusal->largestBandwidth;
            EXPECT_TRUE(explain(plan, {demand, false, {}}).lsp);
        }
    }
    EXPECT_GT(nbChecked, 10U);
}
