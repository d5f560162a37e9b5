/** A sound plan, tampered with in one place, is refused for what was done to it. */
#include "planning/place.h"
#include "planning/verify.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

using namespace tarnex;
using namespace tarnex::planning;

namespace
{

// Two rings that share 0 - 3, all links in both directions, of 10 each:
//
//     1 --- 2
//     |     |
//     0 --- 3
//     |     |
//     4 --- 5
Network rings()
{
    Network network{.name = {},
                    .unit = {},
                    .classes = {"data"},
                    .levels = {"high", "low"},
                    .nodes = {},
                    .links = {}};
    for (const char *name : {"0", "1", "2", "3", "4", "5"})
        network.nodes.push_back({name, {}});
    const std::vector<std::pair<int, int>> edges{{0, 1}, {1, 2}, {2, 3}, {3, 0},
                                                 {0, 4}, {4, 5}, {5, 3}};
    for (const auto &[a, b] : edges) {
        network.links.push_back({NodeId{a}, NodeId{b}, {10.0}});
        network.links.push_back({NodeId{b}, NodeId{a}, {10.0}});
    }
    return network;
}

Demand demand(std::string name, int from, int to, int level, double bandwidth)
{
    return {.name = std::move(name),
            .ingress = NodeId{from},
            .egress = NodeId{to},
            .classType = 0,
            .level = level,
            .bandwidth = bandwidth};
}

enum { local, global, preempted, refused, unasked, winner, ends, plain };

/** Demands of every fate, named above by their position. */
Plan soundPlan()
{
    PlanOptions options;
    options.order = Order::given;
    options.engine.weights = Weights::of(Objective::hops);
    options.protection = {Scheme::local};
    Progress progress;
    std::vector<Demand> demands{demand("local", 1, 3, 0, 2.0),     demand("global", 4, 3, 0, 1.0),
                                demand("preempted", 0, 3, 1, 6.0), demand("refused", 0, 3, 1, 30.0),
                                demand("unasked", 1, 2, 1, 0.0),   demand("winner", 0, 3, 0, 5.0),
                                demand("ends", 2, 2, 0, 1.0),      demand("plain", 2, 3, 1, 1.0)};
    return place(rings(), demands, options, progress);
}

std::string placesOf(const Plan &plan)
{
    std::string text;
    for (const Outcome &outcome : plan.outcomes)
        text += "-LPR"[outcome.index()];
    return text;
}

PlannedLsp &lsp(Plan &plan, std::size_t demand)
{
    return std::get<PlannedLsp>(plan.outcomes[demand]);
}
std::vector<NodeId> path(std::initializer_list<int> nodes)
{
    std::vector<NodeId> ids;
    for (const int node : nodes)
        ids.emplace_back(node);
    return ids;
}

struct Row {
    const char *what;
    std::function<void(Plan &)> tamper;
    Fault fault;
};

const double nan = std::numeric_limits<double>::quiet_NaN();

std::vector<Row> rows()
{
    return {
        {"engine without a class", [](Plan &p) { p.options.engine.classTypes = 0; },
         Fault::options},
        {"weight that is no number", [](Plan &p) { p.options.engine.weights.delay = nan; },
         Fault::options},
        {"negative price", [](Plan &p) { p.options.engine.preemptionPrices[0][1] = -1; },
         Fault::options},
        {"negative rounds", [](Plan &p) { p.options.retryRounds = -1; }, Fault::options},
        {"too many schemes", [](Plan &p) { p.options.protection.resize(3); }, Fault::options},
        {"link to nowhere", [](Plan &p) { p.network.links[0].to = NodeId{6}; }, Fault::network},
        {"link to itself", [](Plan &p) { p.network.links[0].to = NodeId{0}; }, Fault::network},
        {"link twice", [](Plan &p) { p.network.links[0] = p.network.links[3]; }, Fault::network},
        {"negative capacity", [](Plan &p) { p.network.links[0].capacity = {-1.0}; },
         Fault::network},
        {"two nodes of one name", [](Plan &p) { p.network.nodes[1].name = "0"; }, Fault::network},
        {"demand to nowhere", [](Plan &p) { p.demands[refused].egress = NodeId{-1}; },
         Fault::demand},
        {"demand of no class", [](Plan &p) { p.demands[local].classType = 1; }, Fault::demand},
        {"demand of no level", [](Plan &p) { p.demands[local].level = 2; }, Fault::demand},
        {"demand of no amount", [](Plan &p) { p.demands[local].bandwidth = nan; }, Fault::demand},
        {"refusal missing", [](Plan &p) { p.outcomes[refused] = std::monostate{}; },
         Fault::unfinished},
        {"refusal of what was placed", [](Plan &p) { p.outcomes[plain] = Refusal{}; },
         Fault::setUpOrder},
        {"path for what was refused",
         [](Plan &p) {
             p.outcomes[refused] = PlannedLsp{path({0, 3}), 0.0, {}, {}};
         },
         Fault::setUpOrder},
        {"refused although it fits",
         [](Plan &p) { std::get<Refusal>(p.outcomes[refused]).largestBandwidth = 40.0; },
         Fault::outcome},
        {"refused for the wrong reason",
         [](Plan &p) { std::get<Refusal>(p.outcomes[ends]).reason = Reason::noRoom; },
         Fault::outcome},
        {"gave way to nobody",
         [](Plan &p) { std::get<PreemptedLsp>(p.outcomes[preempted]).by = DemandId{8}; },
         Fault::outcome},
        {"gave way to an equal",
         [](Plan &p) { std::get<PreemptedLsp>(p.outcomes[preempted]).by = DemandId{plain}; },
         Fault::outcome},
        {"gave way to what was refused",
         [](Plan &p) { std::get<PreemptedLsp>(p.outcomes[preempted]).by = DemandId{ends}; },
         Fault::outcome},
        {"gave way without preemption", [](Plan &p) { p.options.preempts = false; },
         Fault::outcome},
        {"protected and not", [](Plan &p) { lsp(p, local).unprotected = Refusal{}; },
         Fault::outcome},
        {"path without a link", [](Plan &p) { lsp(p, plain).path = path({2}); }, Fault::path},
        {"path without its middle",
         [](Plan &p) {
             lsp(p, plain).path = path({2, 0, 3});
         },
         Fault::path},
        {"path to elsewhere",
         [](Plan &p) {
             lsp(p, plain).path = path({2, 1});
         },
         Fault::path},
        {"path through a loop",
         [](Plan &p) {
             lsp(p, plain).path = path({2, 1, 2, 3});
         },
         Fault::loop},
        {"another path",
         [](Plan &p) {
             lsp(p, plain).path = path({2, 1, 0, 3});
         },
         Fault::primaryUse},
        {"refusal missing", [](Plan &p) { p.outcomes[refused] = std::monostate{}; },
         Fault::unfinished},
        {"backup missing", [](Plan &p) { lsp(p, local).backups.pop_back(); }, Fault::backupKind},
        {"backup twice", [](Plan &p) { lsp(p, local).backups[1] = lsp(p, local).backups[0]; },
         Fault::backupKind},
        {"backup that is a primary",
         [](Plan &p) { lsp(p, local).backups[0].kind = LspKind::primary; }, Fault::backupKind},
        {"backup from elsewhere",
         [](Plan &p) {
             lsp(p, local).backups[0].path = path({2, 3});
         },
         Fault::backupEnds},
        {"backup that leads upstream",
         [](Plan &p) {
             lsp(p, local).backups[1].path = path({0, 1});
         },
         Fault::backupEnds},
        {"backup over what it protects",
         [](Plan &p) {
             lsp(p, local).backups[0].path = path({1, 0, 3});
         },
         Fault::backupOverlap},
        {"backup through the node it claims to avoid",
         [](Plan &p) {
             lsp(p, local).backups[0].path = path({1, 2, 3, 0});
         },
         Fault::backupOverlap},
        {"claim of another link",
         [](Plan &p) { lsp(p, local).backups[0].protectedLinks = {LinkId{0}}; }, Fault::claim},
        {"claim of too little", [](Plan &p) { lsp(p, local).backups[0].protectedNodes.clear(); },
         Fault::claim},
        {"claim of a node elsewhere",
         [](Plan &p) { lsp(p, local).backups[0].protectedNodes.emplace_back(5); }, Fault::claim},
        {"backup on another way",
         [](Plan &p) {
             lsp(p, local).backups[1].path = path({0, 4, 5, 3});
         },
         Fault::totalUse},
        {"set up twice", [](Plan &p) { p.setUp.push_back(p.setUp[0]); }, Fault::setUpOrder},
        {"never set up", [](Plan &p) { p.setUp.pop_back(); }, Fault::setUpOrder},
        {"set up from nowhere", [](Plan &p) { p.setUp[0] = DemandId{99}; }, Fault::setUpOrder},
        {"less capacity", [](Plan &p) { p.network.links[7].capacity = {4.0}; }, Fault::capacity},
        {"more bandwidth asked for", [](Plan &p) { p.demands[winner].bandwidth = 12.0; },
         Fault::capacity},
        {"primary use", [](Plan &p) { p.use[4].primary[0][1] += 1e-6; }, Fault::primaryUse},
        {"use of no level", [](Plan &p) { p.use[4].primary[0].pop_back(); }, Fault::primaryUse},
        {"use that is no number", [](Plan &p) { p.use[4].primary[0][1] = nan; }, Fault::primaryUse},
        {"nothing shared", [](Plan &p) { p.use[1].total[0][0] += 1.0; }, Fault::totalUse},
        {"link without use", [](Plan &p) { p.use.pop_back(); }, Fault::totalUse},
        {"another last bit",
         [](Plan &p) { p.use[4].total[0][1] = std::nextafter(p.use[4].total[0][1], 9.0); },
         Fault::engine},
    };
}

} // namespace

TEST(Verifying, NamesWhatWasTamperedWith)
{
    const Plan sound = soundPlan();
    ASSERT_EQ(placesOf(sound), "LLPR-LRL");
    ASSERT_TRUE(verify(sound).empty()) << verify(sound)[0].sentence;
    for (const Row &row : rows()) {
        SCOPED_TRACE(row.what);
        Plan plan = sound;
        row.tamper(plan);
        const auto faults = verify(plan);
        ASSERT_FALSE(faults.empty());
        EXPECT_EQ(planning::nameOf(faults[0].fault), planning::nameOf(row.fault))
            << faults[0].sentence;
    }
}
