/** Whatever is placed, verify accepts, whoever sets it up again gets the same bits, and so does
 * whoever places it again. */
#include "planning/admit.h"
#include "planning/place.h"
#include "planning/random_plans.h"
#include "planning/setup.h"
#include "planning/summary.h"
#include "planning/verify.h"

#include <gtest/gtest.h>

using namespace tarnex;
using namespace tarnex::planning;
using namespace planning_tests;

namespace
{

/** Stops before a step. */
class StopAt : public Progress
{
public:
    explicit StopAt(std::size_t step) : stepsLeft(step) {}
    bool mustStop() override { return stepsLeft-- == 0; }

private:
    std::size_t stepsLeft;
};

std::string firstFault(const Plan &plan)
{
    const auto faults = verify(plan);
    return faults.empty()
               ? ""
               : std::string{planning::nameOf(faults[0].fault)} + ": " + faults[0].sentence;
}

void expectSameBits(const Plan &plan)
{
    const Engine engine = setUp(plan);
    for (std::size_t i = 0; i < plan.use.size(); ++i) {
        const PlannedUse use = plannedUse(engine, LinkId{static_cast<std::int32_t>(i)});
        ASSERT_EQ(use.primary, plan.use[i].primary);
        ASSERT_EQ(use.total, plan.use[i].total);
    }
}

/** What the plans of a test had in them: a test without some of it would show little. */
struct Seen {
    std::size_t refused = 0, preempted = 0, nodes = 0, links = 0, unprotected = 0, retried = 0;

    void add(const Plan &plan)
    {
        const Summary summary = summaryOf(plan, 0);
        refused += summary.all.refused.number;
        preempted += summary.all.preempted.number;
        nodes += summary.all.coverage.nodes.number;
        links += summary.all.coverage.links.number;
        for (const Amount &amount : summary.unprotected)
            unprotected += amount.number;
        for (const Outcome &outcome : plan.outcomes) {
            const auto *lsp = std::get_if<PreemptedLsp>(&outcome);
            retried += lsp && lsp->retry ? 1 : 0;
        }
    }

    void expectAll() const
    {
        for (const std::size_t number : {refused, preempted, nodes, links, unprotected, retried})
            EXPECT_GT(number, 0U);
    }
};

} // namespace

TEST(Placing, IsAcceptedByVerifyAndComesToTheSameBits)
{
    Seen seen;
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw{seed};
        const Network network = randomNetwork(draw, {.nodes = 5 + draw.below(15),
                                                     .classes = 1 + draw.below(3),
                                                     .levels = 1 + draw.below(8)});
        const auto demands = randomDemands(draw, network, 150);
        const PlanOptions options = randomOptions(draw, network);
        Progress progress;
        const Plan plan = place(network, demands, options, progress);
        ASSERT_EQ(firstFault(plan), "");
        expectSameBits(plan);
        ASSERT_EQ(textOf(plan), textOf(place(network, demands, options, progress)));
        seen.add(plan);

        const Plan more = placeMore(plan, randomDemands(draw, network, 60), progress);
        ASSERT_EQ(firstFault(more), "");
        expectSameBits(more);
        seen.add(more);
        ASSERT_EQ(textOf(placeMore(more, {}, progress)), textOf(more));

        StopAt stop{static_cast<std::size_t>(draw.below(250))};
        const Plan stopped = place(network, demands, options, stop);
        for (const Deviation &fault : verify(stopped))
            ASSERT_EQ(fault.fault, Fault::unfinished) << fault.sentence;
        expectSameBits(stopped);
    }
    seen.expectAll();
}

TEST(Placing, StopsBeforeTheStepThatItIsToldAt)
{
    Draw draw{5};
    const Network network = randomNetwork(draw, {.capacity = 1000});
    auto demands = randomDemands(draw, network, 40);
    PlanOptions options;
    options.order = Order::given;
    StopAt stop{10};
    const Plan plan = place(network, demands, options, stop);
    std::size_t nbTried = 0;
    for (std::size_t i = 0; i < demands.size(); ++i) {
        nbTried += demands[i].bandwidth > 0.0 ? 1 : 0;
        const bool isLeftOut = std::holds_alternative<std::monostate>(plan.outcomes[i]);
        EXPECT_EQ(isLeftOut, demands[i].bandwidth == 0.0 || nbTried > 10) << i;
    }
}

TEST(Placing, GoesByTheOrderAskedFor)
{
    // One link has room for one of three demands; which one that is tells the order.
    Network network{.name = {},
                    .unit = {},
                    .classes = {"all"},
                    .levels = {"high", "low"},
                    .nodes = {{"A", {}}, {"B", {}}},
                    .links = {{NodeId{0}, NodeId{1}, {10.0}}}};
    const auto demand = [](int level, double bandwidth) {
        return Demand{.name = {},
                      .ingress = NodeId{0},
                      .egress = NodeId{1},
                      .classType = 0,
                      .level = level,
                      .bandwidth = bandwidth};
    };
    const std::vector<Demand> demands{demand(1, 7), demand(0, 8), demand(1, 9), demand(1, 6)};
    const std::vector<std::pair<Order, int>> rows{
        {Order::given, 0}, {Order::level, 1}, {Order::largest, 2}, {Order::smallest, 3}};
    for (const auto &[order, winner] : rows) {
        PlanOptions options;
        options.order = order;
        options.preempts = false;
        Progress progress;
        const Plan plan = place(network, demands, options, progress);
        EXPECT_EQ(plan.setUp, std::vector{DemandId{winner}});
    }
}

TEST(Placing, RoundsPlaceAgainWhatGaveWay)
{
    std::size_t nbBetter = 0;
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        Draw draw{seed};
        const Network network = randomNetwork(draw, {.classes = 1});
        const auto demands = randomDemands(draw, network, 90);
        const auto nbPreempted = [&](int rounds) {
            PlanOptions options;
            options.order = Order::given;
            options.engine.weights = Weights::of(Objective::hops);
            options.retryRounds = rounds;
            Progress progress;
            return summaryOf(place(network, demands, options, progress), 0).all.preempted.number;
        };
        nbBetter += nbPreempted(3) < nbPreempted(0) ? 1 : 0;
    }
    EXPECT_GT(nbBetter, 4U);
}

TEST(Admitting, NeverReservesMoreThanThereIs)
{
    std::size_t nbTakenBack = 0;
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw{seed};
        const Network network = randomNetwork(draw, {.classes = 1});
        PlanOptions options;
        options.order = Order::given;
        options.protection.assign(3, Scheme::localOrGlobal);
        Progress progress;
        const Plan plan = place(network, randomDemands(draw, network, 60), options, progress);
        Engine engine = setUp(plan);
        for (const Demand &demand : randomDemands(draw, network, 60)) {
            Request request = requestOf(demand, DemandId{}, true);
            request.id = LspId{};
            const Admission admission = admit(engine, request);
            nbTakenBack += admission.isTakenBack ? 1 : 0;
            ASSERT_TRUE(admission.lost.empty());
            for (std::size_t i = 0; i < network.links.size(); ++i)
                ASSERT_FALSE(isOverbooked(engine.use(LinkId{static_cast<std::int32_t>(i)})));
        }
    }
    EXPECT_GT(nbTakenBack, 0U);
}
