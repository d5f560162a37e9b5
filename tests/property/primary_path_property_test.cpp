#include "admission/admission.h"
#include "computation/primary/driver.h"
#include "computation/primary/plain/score.h"
#include "computation/primary/plain/search.h"
#include "database/books/change.h"
#include "database/reservations/failure_tables.h"
#include "predicate/predicate.h"
#include "support/session.h"
#include "support/topology_route.h"

#include <cmath>
#include <limits>

namespace property
{
namespace
{

using W = PrimaryComputationConfig;

class PrimaryPathProperty : public Session
{
protected:
    void ask(double bw, NodePath path)
    {
        request = requestOf({.bw = {bw, bw / 2}, .path = std::move(path)});
    }

    W &weights = tarnexConfig.primaryComputationConfig;
    RequestRecord request;
};

TEST_F(PrimaryPathProperty, ScoreAddsTheWeightedGrowth)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char *name;
        double (W::*weight)[MAXOA];
        double value, capacity, cost, gain, score; // the cost is that of the path so far
    } rows[] = {
        {"load", &W::load, 5, 100, 1, 0, 51},
        {"squared load", &W::sqLoad, 7, 100, 1, 0, 7701},
        {"utilization", &W::relLoad, 11, 100, 1, 0, 2.1},
        {"squared utilization", &W::sqRelLoad, 13, 100, 1, 0, 2.43},
        {"delay", &W::delay, 17, 100, 1, 0, 1.085},
        {"balance", &W::loadBal, 3, 100, 1, 0, 1.315},
        {"no balance", &W::loadBal, 3, 0, 1, 0, infinity},
        {"preemption", &W::rerouting, 2, 100, 61, 5, 122},
        {"of two levels", &W::rerouting, 2, 100, 61, 25, 427},
        {"scales no negative score", &W::rerouting, 2, 100, -100, 5, -100},
    };
    build(networkOf("1:0-1"));
    ask(10, {0, -1, 1});
    request->bw[1] = 0;
    Topology topo;
    ASSERT_EQ(fillTopo(db, request.get(), &topo), 0);
    topo.nbLinks = 10;
    BKNodeInfo &start = placedNode(topo, 0).info;
    start.sum[0] = 0.2;
    tarnexConfig.reroutingConfig.scoreCoef[0][7] = 1;
    tarnexConfig.reroutingConfig.scoreCoef[0][5] = 2;
    const State state{DBlinkStateNew()};
    state->rbw[0][7] = state->rbw[0][5] = 20;
    state->pbw[0][1] = state->pbw[0][7] = 25; // the load is that of all levels
    for (const auto &row : rows) {
        weights = {};
        (weights.*row.weight)[0] = row.value;
        std::ranges::fill(state->cap, row.capacity);
        start.cost = row.cost;
        BKConnect connect{0, state.get(), {{row.gain}}};
        EXPECT_DOUBLE_EQ(makeScore(&topo, request.get(), 0, 1, &connect), row.score) << row.name;
    }
    // Breakpoints are single-precision but for 9/10, and what is no number takes the last slope.
    weights = {};
    weights.Fortz = 2;
    start.cost = 1;
    const double slopes[][3] = {{33.33333334, 100, 1}, {50, 100, 3},     {66.666668, 100, 3},
                                {89.999999, 100, 10},  {90, 100, 70},    {100, 100, 500},
                                {110, 100, 500},       {120, 100, 5000}, {0, 0, 5000}};
    for (const auto &[load, capacity, slope] : slopes) {
        state->pbw[0][1] = state->pbw[0][7] = load / 2;
        std::ranges::fill(state->cap, capacity);
        BKConnect connect{0, state.get(), {}};
        EXPECT_EQ(makeScore(&topo, request.get(), 0, 1, &connect), 1 + 20 * slope) << load;
    }
}

TEST_F(PrimaryPathProperty, TopologyFollowsEveryLinkAndListsTheAdmitted)
{
    tarnexConfig.predicateConfig = {true, true, true};
    //   1 <-- 4 <--> 9 <-- 1      Refused are 4-1 by its colour and 4-5 as the link to leave;
    //   6 --> 9, 4    5 --> 5     6 is outside, and so is 5.
    build(networkOf("1:4-1 2:4-9 3:9-4 4:1-9 5:6-9 6:4-5 7:5-5"));
    DBgetLinkState(db, 4, 1)->color = 8;
    for (const int oa : {0, 1})
        DBgetLinkState(db, 4, 9)->pbw[oa][7] = 100;
    ask(1, {4, -1, 9});
    ASSERT_EQ(longVecPushBack(&request->forbidLinks, 8), 0);
    request->rerouteInfo = {77, 4, 5};
    Topology topo;
    ASSERT_EQ(fillTopo(db, request.get(), &topo), 0);
    std::string text;
    for (const BKNode &node : inUse(topo.nodeVec)) {
        text += " from";
        for (BKConnect &in : inUse(node.inNeighb))
            text += " " + std::to_string(in.neighbId);
        text += " by " + std::to_string(node.nodeId) + " to";
        for (BKConnect &out : inUse(node.outNeighb))
            text += " " + std::to_string(out.neighbId);
    }
    // The node met last comes first.
    EXPECT_EQ(text, " from 9 by 4 to 9 from 1 4 6 by 9 to 4 from 5 by 5 to 5 from by 1 to 9");
    BKConnect &preempting = placedNode(topo, 4).outNeighb.cont[0];
    EXPECT_EQ(std::pair(preempting.info.gain[0], preempting.info.gain[1]), std::pair(1.0, 0.5));
    // Each link is asked once, the one from a node to itself from both ends.
    expectTrail(Trail(7 + 1, "[WARNING] Cannot find the old LSP" + inDatabase));
}

TEST_F(PrimaryPathProperty, DriverWritesThePathOrSaysWhy)
{
    const Trail unreachable{"Destination unreachable" + inPrimary,
                            "Unable to update requested path" + inPrimary};
    const Trail unknown{"Node don't exist (id = 40)" + inDatabase,
                        "Unable to get the list of neighbours" + inPrimary,
                        "Unable to build topology" + inPrimary};
    const Trail malformed{"Bad requested path format" + inPrimary,
                          "Unable to get requested source" + inPrimary};
    const Trail outside{"Inexistent node" + inPrimary, "Bellman-Kalaba failure" + inPrimary};
    const struct {
        const char *name;
        NodePath wanted, path;
        double cost; ///< what COST grows by
        Trail trail;
    } rows[] = {
        {"two hops", {2, -1, 4}, {2, 3, 4}, 12, {}},
        {"one hop", {5, -1, 6}, {5, 6}, 32, {}},
        {"refused link", {5, -1, 7}, {}, 0, unreachable},
        {"just beyond the index", {4, -1, 5}, {}, 0, unreachable},
        {"where it starts", {4, -1, 4}, {4}, 0, {"Bad requested path format" + inPrimary}},
        {"unknown source", {40, -1, 4}, {40, -1, 4}, 0, unknown},
        {"no destination", {2, -1}, {2, -1}, 0, malformed},
        {"link from outside, larger id", {8, -1, 9}, {8, -1, 9}, 0, outside},
    };
    weights.relLoad[0] = 1;
    tarnexConfig.predicateConfig.capacityClause = true;
    //   1 --> 2 --> 3 --> 4       6 <-- 5 --> 7       8 --> 9 <-- 10
    build(networkOf("1:2-3/2 2:3-4/1 3:5-6/0.25 4:5-7/0.1 5:1-2 6:8-9 7:10-9"));
    double total = 0.0;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        ask(0.25, row.wanted);
        EXPECT_EQ(computePrimaryPath(db, request.get()), row.trail.empty() ? 0 : -1);
        EXPECT_EQ(idsIn(request->path), row.path);
        expectTrail(row.trail);
        EXPECT_EQ(COST, total += row.cost / 32);
    }
}

/*
 *        0 ---id---> 1      a direct link, another way, and one back
 *        '---> 2 ----^
 */
std::string triangle(Long id, double capacity)
{
    return std::to_string(id) + ":0-1/" + std::to_string(capacity) + " 1:1-0 2:0-2 3:2-1";
}

TEST_F(PrimaryPathProperty, PathsAvoidALinkWhoseIdNoTableHasRoomFor)
{
    for (const Long id : {268435452, 268435453, 268435455}) {
        const NodePath expected = id == 268435452 ? NodePath{0, 1} : NodePath{0, 2, 1};
        // Another way is as good as the second one.
        rebuild(networkOf(triangle(id, 1) + " 4:0-3 5:3-1"));
        for (const auto weight : {&W::load, &W::sqLoad}) {
            for (const bool testsCapacity : {true, false}) {
                weights = {};
                (weights.*weight)[0] = 1;
                tarnexConfig.predicateConfig.capacityClause = testsCapacity;
                ask(0.25, {0, -1, 1});
                double cost = 0.0;
                EXPECT_EQ(routeByTopology(db, *request, cost), 0);
                const Trail trail = takeTrail(); // the predicate says why
                ask(0.25, {0, -1, 1});
                EXPECT_EQ(computePrimaryPath(db, request.get()), 0);
                EXPECT_EQ(idsIn(request->path), expected) << id;
                expectTrail(trail);
            }
        }
        const LspRecord lsp = recordOf({.bw = {1}, .path = {0, 1}});
        const int result = DBaddLSP(db, lsp.get(), &preempted);
        EXPECT_EQ(result, id == 268435452 ? 0 : -1);
        expectTrail(result == 0 ? Trail{}
                                : Trail{noList, noMemory + inDatabase,
                                        "Unable to update link state in predicate/predicate",
                                        "LSP refused by the predicate" + inDatabase});
    }
}

TEST_F(PrimaryPathProperty, DecimalsFillALinkAsFarAsTheirSumInOrderDoes)
{
    tarnexConfig.predicateConfig.capacityClause = true;
    int met[2] = {};
    for (int tenths = 1; tenths <= 20; ++tenths) {
        const double capacity = tenths / 10.0;
        for (int reserved = 0; reserved < tenths; ++reserved) {
            for (const int parts : {1, reserved}) {
                rebuild(networkOf(triangle(0, capacity)));
                for (Long id = 0; id < parts && reserved > 0; ++id)
                    ASSERT_EQ(DBaddLSP(db,
                                       recordOf({.id = id,
                                                 .precedence = id * 5 % MAXPL,
                                                 .bw = {reserved / 10.0 / parts},
                                                 .path = {0, 1}})
                                           .get(),
                                       &preempted),
                              0);
                request = requestOf(
                    {.precedence = 3, .bw = {(tenths - reserved) / 10.0}, .path = {0, -1, 1}});
                double gain[MAXOA];
                const bool fits =
                    isValidRequestLink(db, 0, 1, &storedState(db, {0, 1}), request.get(), gain);
                EXPECT_EQ(computePrimaryPath(db, request.get()), 0);
                EXPECT_EQ(idsIn(request->path), fits ? (NodePath{0, 1}) : (NodePath{0, 2, 1}))
                    << capacity << " " << reserved;
                ++met[fits ? 1 : 0];
            }
        }
    }
    EXPECT_GT(std::min(met[0], met[1]), 10);
}

TEST_F(PrimaryPathProperty, LeadsOutOfItsWayOverALinkThatGains)
{
    for (const double weight : {1.0, -1.0}) { // the link that is too full gains, or the others
        rebuild(
            {.nodes = {0, 1, 2, 3, 4},
             .links = {
                 {0, 0, 1, 10.0}, {1, 0, 2, 4.0}, {2, 2, 3, 4.0}, {3, 3, 4, 1.0}, {4, 4, 1, 4.0}}});
        tarnexConfig.predicateConfig = {};
        ASSERT_EQ(add({.id = 0, .bw = {0.9}, .path = {3, 4}}), 0);
        tarnexConfig.predicateConfig = {false, false, false};
        weights = {};
        weights.delay[0] = weight;
        request = requestOf({.bw = {1.0}, .path = {0, -1, 1}});
        ASSERT_EQ(computePrimaryPath(db, request.get()), 0);
        EXPECT_EQ(idsIn(request->path),
                  weight > 0.0 ? (NodePath{0, 2, 3, 4, 1}) : (NodePath{0, 1}));
    }
}

TEST_F(PrimaryPathProperty, RequestsOfAnyKindEndAsTheyDoByWayOfTheTopology)
{
    Rng rng{8};
    int found = 0;
    for (int round = 0; round < 400; ++round) {
        // Two parts, few links of which, if any, lead from one to the other.
        NetworkPlan plan{.nodes = {0, 1, 2, 3, 4}, .links = {}};
        const int parts = randomInt(rng, 32);
        for (Long i = 0; i < 25; ++i) {
            const Long src = i % 5, dst = i / 5;
            const int way = (parts >> src & 1) - (parts >> dst & 1);
            const int chances = way == 0 ? 6 : way > 0 ? 3 : round % 2;
            if (src != dst && randomInt(rng, 8) < chances)
                plan.links.push_back({i, src, dst, 1.0 + randomInt(rng, 2)});
        }
        rebuild(plan);
        tarnexConfig.predicateConfig = {};
        for (const PlannedLink &link : plan.links) {
            const Hop hop{link.src, link.dst};
            ASSERT_EQ(add({.id = link.id,
                           .precedence = randomInt(rng, 3),
                           .bw = {0.5 * randomInt(rng, 3)},
                           .path = {link.src, link.dst}}),
                      0);
            const State state{DBlinkStateNew()};
            ASSERT_EQ(DBlinkStateCopy(state.get(), &storedState(db, hop)), 0);
            state->color = 1 + link.id % 3;
            if (round % 4 == 1 && link.id % 7 == 0)
                state->cap[0] = 0.0;
            ASSERT_EQ(DBsetLinkState(db, link.src, link.dst, state.get()), 0);
            EXPECT_EQ(storedState(db, hop).color, state->color);
        }
        tarnexConfig.predicateConfig = {randomInt(rng, 2) == 0, randomInt(rng, 4) > 0,
                                        randomInt(rng, 2) == 0};
        weights = {};
        weights.relLoad[0] = randomInt(rng, 2);
        weights.sqLoad[1] = randomInt(rng, 2);
        // Below 0 on a link that is to carry more than its capacity.
        weights.delay[0] = randomInt(rng, 2);
        // Under a large weight, balance rewards every detour but those that end where they began.
        for (const int oa : {0, 1})
            weights.loadBal[oa] = randomInt(rng, 4) * 10.0;
        weights.rerouting[0] = randomInt(rng, 2);
        std::ranges::fill(tarnexConfig.reroutingConfig.scoreCoef[0], randomInt(rng, 3));
        const Long color = randomInt(rng, 10);
        const Long rerouted = randomInt(rng, 4) == 0 ? randomInt(rng, 25) : -1;
        for (Long src = 0; src < 5; ++src) {
            for (Long dst = 0; dst < 5; ++dst) {
                RequestRecord requests[2];
                for (RequestRecord &req : requests) {
                    req = requestOf({.precedence = round % 3,
                                     .bw = {0.5 * (round % 4)},
                                     .path = {src, -1, dst}});
                    ASSERT_EQ(longVecPushBack(&req->forbidLinks, color), 0);
                    req->forbidLinks.top = color > 3 ? 0 : 1;
                    req->rerouteInfo = {rerouted, rerouted % 5, rerouted / 5};
                }
                const Long other = randomInt(rng, 25);
                if (other % 5 != other / 5 && (src + dst) % 4 == 1)
                    exchangeLink({other, other % 5, other / 5, 1.0});
                DBLink *link = linkAt(db->linkTab, other % 5, other / 5);
                if (link && (src + dst) % 3 == 0)
                    DBgetLinkState(db, other % 5, other / 5)->color = 1 + randomInt(rng, 3);
                COST = 0.0;
                double cost = 0.0;
                const int expected = routeByTopology(db, *requests[0], cost);
                const Trail trail = takeTrail();
                EXPECT_EQ(computePrimaryPath(db, requests[1].get()), expected);
                EXPECT_EQ(idsIn(requests[1]->path), idsIn(requests[0]->path));
                EXPECT_TRUE(COST == cost || (std::isnan(COST) && std::isnan(cost)));
                expectTrail(trail);
                found += expected == 0 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(found, 1000);
}

/** The search in its plain form: every pass looks at every in-link of every reached node. */
void searchPlainly(BKTopology &topo, LSPRequest &req)
{
    NodePath reached{req.path.cont[0]}; // in the order in which they are
    const auto isReached = [&](Long nd) { return std::ranges::count(reached, nd) > 0; };
    /** Whether `nd` is on the chain of choices that leads from the source to `end`. */
    const auto isOnChain = [&](Long nd, Long end) {
        while (end != nd && end != reached.front()) {
            const BKNode &node = placedNode(topo, end);
            end = node.inNeighb.cont[node.info.newNeighbInd].neighbId;
        }
        return end == nd;
    };
    const auto choose = [&](BKNode &node, BKConnect &in) {
        node.info.newNeighbInd = static_cast<Long>(&in - node.inNeighb.cont);
        node.info.newCost = makeScore(&topo, &req, in.neighbId, node.nodeId, &in);
        for (int oa = 0; oa < MAXOA; ++oa)
            node.info.newSum[oa] =
                req.bw[oa] / in.linkState->cap[oa] + placedNode(topo, in.neighbId).info.sum[oa];
    };
    const auto commit = [](BKNode &node) {
        node.neighbInd = node.info.newNeighbInd;
        node.info.cost = node.info.newCost;
        std::ranges::copy(node.info.newSum, node.info.sum);
    };
    const auto expand = [&](const BKNode &from) {
        for (BKConnect &out : inUse(from.outNeighb)) {
            if (isReached(out.neighbId))
                continue;
            reached.push_back(out.neighbId);
            BKNode &node = placedNode(topo, out.neighbId);
            choose(node,
                   *std::ranges::find(inUse(node.inNeighb), from.nodeId, &BKConnect::neighbId));
            commit(node);
        }
    };

    BKNode &source = topo.nodeVec.cont[0];
    for (const BKNode &node : inUse(topo.nodeVec)) {
        for (BKConnect &in : inUse(node.inNeighb)) {
            for (int oa = 0; oa < MAXOA; ++oa)
                source.info.sum[oa] += primaryLoad(*in.linkState, oa) / in.linkState->cap[oa];
        }
    }
    expand(source);
    for (bool changed = true; changed;) {
        const NodePath inPass{reached.begin() + 1, reached.end()};
        changed = false;
        for (const Long nd : inPass) {
            BKNode &node = placedNode(topo, nd);
            for (BKConnect &in : inUse(node.inNeighb)) {
                if (!isReached(in.neighbId) || isOnChain(nd, in.neighbId))
                    continue;
                if (makeScore(&topo, &req, in.neighbId, nd, &in) - node.info.cost < -1e-10) {
                    choose(node, in);
                    changed = true;
                }
            }
            expand(node);
        }
        for (const Long nd : inPass)
            commit(placedNode(topo, nd));
        changed = changed || reached.size() > inPass.size() + 1;
    }
}

class SearchProperty : public PrimaryPathProperty, public ::testing::WithParamInterface<unsigned>
{
protected:
    /** The driver's path to every `step`th node is that of the labels, and so is its score. */
    void routeAndCompare(const BKTopology &topo, int step)
    {
        const Long source = request->path.cont[0];
        for (Long i = 1 + randomInt(rng, step); i < topo.nodeVec.top; i += step) {
            const BKNode &end = topo.nodeVec.cont[i];
            NodePath path;
            if (end.neighbInd >= 0)
                path = {end.nodeId};
            while (!path.empty() && path.front() != source) {
                const BKNode &node = placedNode(topo, path.front());
                path.insert(path.begin(), node.inNeighb.cont[node.neighbInd].neighbId);
            }
            std::ranges::copy(NodePath{source, -1, end.nodeId}, request->path.cont);
            request->path.top = 3;
            COST = 0.0;
            if (i % 4 == 0) // so the stamps come to their end
                db->index.lastStamp =
                    std::max(db->index.lastStamp, std::numeric_limits<std::uint32_t>::max() -
                                                      static_cast<std::uint32_t>(i % 3));
            EXPECT_EQ(computePrimaryPath(db, request.get()), path.empty() ? -1 : 0);
            EXPECT_EQ(idsIn(request->path), path);
            EXPECT_EQ(COST, path.empty() ? 0.0 : end.info.cost);
            errorManager.top = 0;
        }
    }

    /** The engine's labels are the plain ones, and no allowed in-link improves a final label. */
    void searchAndCompare(int step)
    {
        for (int i = 0; i < 3; ++i) // links come and go beside those of the plan
            exchangeLink(anyOf(rng, others));
        const Long source = request->path.cont[0];
        request->precedence = randomInt(rng, MAXPL);
        LSPRequest *req = request.get();
        Topology expected, topo;
        ASSERT_EQ(fillTopo(db, req, &expected) | fillTopo(db, req, &topo), 0);
        searchPlainly(expected, *req);
        ASSERT_EQ(bellmanKalaba(&topo, req), 0);
        for (const BKNode &node : inUse(topo.nodeVec)) {
            const Long nd = node.nodeId;
            ASSERT_EQ(node.neighbInd, placedNode(expected, nd).neighbInd) << nd;
            ASSERT_EQ(node.info.cost, placedNode(expected, nd).info.cost) << nd;
            for (BKConnect &in : inUse(node.inNeighb)) {
                const Long nb = in.neighbId;
                if ((placedNode(topo, nb).neighbInd < 0 && nb != source) || !noLoop(&topo, nb, nd))
                    continue;
                EXPECT_GE(makeScore(&topo, req, nb, nd, &in), node.info.cost - 1e-10);
                ++compared;
            }
        }
        routeAndCompare(topo, step);
    }

    Rng rng{GetParam()};
    NetworkPlan plan = randomNetwork(rng, 40, 3, GetParam() % 2 == 0 ? 1 : 5);
    std::vector<PlannedLink> others;
    int compared = 0;
};

TEST_P(SearchProperty, EqualsThePlainPassesUnderEveryWeight)
{
    for (PlannedLink &link : plan.links)
        link.capacity = 4.1 + 3.0 * randomInt(rng, 4);
    for (const Long node : {plan.nodes[1], plan.nodes[2]})
        plan.links.push_back({1000 + node, node, node}); // to itself
    build(plan);
    for (Long id = 2000; id < 2040; ++id) {
        const PlannedLink link{id, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), 9.0};
        if (!linkAt(db->linkTab, link.src, link.dst))
            others.push_back(link);
    }
    PlannedLsp lsp;
    for (; lsp.id < 120; ++lsp.id) {
        lsp.precedence = randomInt(rng, MAXPL);
        lsp.bw = {static_cast<double>(1 + lsp.id % 4) / 3.0, 0.2};
        lsp.path = hopPath(plan, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), rng);
        ASSERT_EQ(add(lsp), 0);
    }
    double(W::*const weightTables[])[MAXOA] = {&W::load,  &W::sqLoad,  &W::relLoad,  &W::sqRelLoad,
                                               &W::delay, &W::loadBal, &W::rerouting};
    for (auto &coefficients : tarnexConfig.reroutingConfig.scoreCoef)
        std::ranges::fill(coefficients, 0.3);
    for (int number = 0; number < 20; ++number) { // none, each alone, and with Fortz; all
        const int which = number % 10;
        const double scale = number < 10 ? 1.0 : 1e-10; // then differences come near the margin
        SCOPED_TRACE("weights " + std::to_string(number));
        weights = {};
        weights.Fortz = which == 1 || which > 7 ? scale / 3.0 : 0.0;
        for (int i = 0; i < 7; ++i) {
            if (which == i + 2 || which == 9)
                std::fill_n(weights.*weightTables[i], 2, (0.7 - 0.1 * i) * scale);
        }
        for (const double bw : {1.0 / 3.0, 1.0, 4.0}) {
            for (const bool preempts : {false, true}) {
                // A delay is no longer one on links with more LSPs than capacity.
                tarnexConfig.predicateConfig = {preempts && weights.delay[0] == 0.0, true, false};
                ask(bw, {anyOf(rng, plan.nodes), -1, 0});
                const bool addsOneOfFew = which == 1; // what a link adds
                const bool addsAlike = which == 2;
                if (addsOneOfFew || addsAlike)
                    request->bw[1] = 0.0;
                searchAndCompare(addsOneOfFew || addsAlike ? 1 : 12);
            }
        }
    }
    EXPECT_GT(compared, 500);
}

INSTANTIATE_TEST_SUITE_P(Seeds, SearchProperty, ::testing::Range(0U, 6U));

} // namespace
} // namespace property
