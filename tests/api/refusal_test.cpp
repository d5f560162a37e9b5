/* What a refusal tells, confirmed by the engine itself. */
#include "api/networks.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace tarnex::test
{

namespace
{

struct Terms {
    int classTypes;
    int levels;
    bool isProtected;
    Objective objective;
    double price;
    double unit; ///< of bandwidth
};

class RefusalCertificate : public testing::TestWithParam<Terms>
{
};

/** A larger request than the largest bandwidth is refused, that one is not. */
void expectLargest(Engine &engine, const Request &request, const Refusal &refusal)
{
    Request asked = request;
    asked.bandwidth = refusal.largestBandwidth;
    const bool fits = static_cast<bool>(engine.propose(asked));
    // Where not even 0 fits, 0 is told as well.
    EXPECT_TRUE(fits || refusal.sentence.ends_with("nothing would fit.")) << refusal.sentence;
    asked.bandwidth = std::nextafter(refusal.largestBandwidth, 1e300);
    EXPECT_FALSE(engine.propose(asked)) << refusal.sentence;
}

/** Whether some of the links are to be avoided. */
template <class Links, class Proj = std::identity>
bool meet(const Links &links, std::span<const LinkId> avoided, Proj linkOf = {})
{
    return std::ranges::any_of(
        links, [&](LinkId link) { return std::ranges::count(avoided, link) > 0; }, linkOf);
}

/** The links in the way separate the ends, none has the room, and room is the largest there. */
void expectBoundary(Engine &engine, const Request &request, const Refusal &refusal)
{
    EXPECT_TRUE(std::ranges::is_sorted(refusal.inTheWay, {}, &LinkInTheWay::link));
    EXPECT_FALSE(meet(refusal.inTheWay, request.avoid, &LinkInTheWay::link));
    for (const LinkInTheWay &inTheWay : refusal.inTheWay) {
        EXPECT_LT(inTheWay.room, request.bandwidth);
        const LinkUse use = engine.use(inTheWay.link);
        Request over = request;
        over.bandwidth = std::nextafter(inTheWay.room, 1e300);
        const std::vector hop{use.from, use.to};
        const auto refused = engine.add(over, hop);
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.refusal().largestBandwidth, inTheWay.room);
    }
}

/** The largest part of an LSP's bandwidth can be protected, more cannot; the links in the way have
 * room for less, but for all that nothing reserves. */
void expectLargestPart(Engine &engine, const Lsp &lsp, const Refusal &refusal)
{
    EXPECT_LT(refusal.largestBandwidth, lsp.bandwidth) << refusal.sentence;
    const Scheme scheme = Scheme::localOrGlobal;
    const double more = std::nextafter(refusal.largestBandwidth, 1e300);
    EXPECT_FALSE(engine.protect(lsp.id, scheme, {}, more)) << refusal.sentence;
    if (refusal.largestBandwidth > 0.0) {
        const auto part = engine.protect(lsp.id, scheme, {}, refusal.largestBandwidth);
        ASSERT_TRUE(part) << refusal.sentence;
        EXPECT_EQ(part->backups.front().bandwidth, refusal.largestBandwidth);
        for (const Lsp &backup : part->backups)
            engine.remove(backup.id);
    }
    for (const LinkInTheWay &inTheWay : refusal.inTheWay) {
        EXPECT_LT(inTheWay.room, lsp.bandwidth);
        const LinkUse use = engine.use(inTheWay.link);
        const auto at = static_cast<std::size_t>(lsp.classType);
        double free = use.capacity[at];
        for (std::size_t level = 0; level < use.total[at].size(); ++level)
            free -= use.total[at][level];
        EXPECT_GE(inTheWay.room, free - 1e-9 * use.capacity[at]);
    }
}

} // namespace

TEST_P(RefusalCertificate, LargestBandwidthFitsAndTheNextDoesNot)
{
    const Terms &terms = GetParam();
    int refusals = 0;
    int unprotected = 0;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        Rng rng{seed};
        NetworkPlan plan = property::randomNetwork(rng, 12, 3, 1);
        for (property::PlannedLink &link : plan.links)
            link.capacity = (50.0 + randomInt(rng, 1000) / 7.0) * terms.unit;
        Options options{.classTypes = terms.classTypes, .levels = terms.levels};
        options.weights = Weights::of(terms.objective);
        for (auto &ofClass : options.preemptionPrices)
            ofClass.fill(terms.price);
        Engine engine{options};
        build(engine, plan);
        for (int step = 0; step < 120; ++step) {
            Request request = randomRequest(rng, plan, options);
            request.bandwidth *= terms.unit;
            std::vector<LinkId> avoided;
            for (int n = randomInt(rng, 4); n > 0; --n)
                avoided.emplace_back(anyOf(rng, plan.links).id);
            request.avoid = avoided;
            const auto placed = engine.place(request);
            EXPECT_TRUE(!placed || !meet(placed->path.links, avoided));
            if (placed && terms.isProtected && !engine.protect(placed->id, Scheme::localOrGlobal)) {
                const auto why = engine.explainProtection(placed->id, Scheme::localOrGlobal);
                ASSERT_TRUE(why);
                if (why->reason == Reason::noRoomForDisjointPath) {
                    ++unprotected;
                    expectLargestPart(engine, engine.lsp(placed->id), *why);
                }
            }
            if (placed || placed.refusal().reason != Reason::noRoom)
                continue;
            ++refusals;
            expectLargest(engine, request, placed.refusal());
            expectBoundary(engine, request, placed.refusal());
        }
    }
    EXPECT_GT(refusals, 20);
    EXPECT_TRUE(unprotected > 20 || !terms.isProtected) << unprotected;
}

INSTANTIATE_TEST_SUITE_P(Terms, RefusalCertificate,
                         testing::Values(Terms{1, 1, false, Objective::hops, 0.0, 1.0},
                                         Terms{1, 8, false, Objective::fortz, 0.0, 1e9},
                                         Terms{1, 8, true, Objective::fortz, 0.0, 1.0},
                                         Terms{3, 4, true, Objective::load, 2.0, 1e6},
                                         Terms{2, 8, true, Objective::balance, 0.0, 1e-3},
                                         Terms{8, 8, true, Objective::delay, 1.0, 1.0}));

/** Nodes by whether links, whatever they carry, lead to them from `start`. */
std::vector<bool> reachedFrom(const NetworkPlan &plan, Long start)
{
    std::vector<bool> isReached(plan.nodes.size());
    isReached[static_cast<std::size_t>(start)] = true;
    for (std::size_t round = 0; round < plan.nodes.size(); ++round) {
        for (const property::PlannedLink &link : plan.links) {
            if (isReached[static_cast<std::size_t>(link.src)])
                isReached[static_cast<std::size_t>(link.dst)] = true;
        }
    }
    return isReached;
}

TEST(OneWayLinks, LeadWhereTheyDoWhateverComesFromElsewhere)
{
    Rng rng{5};
    int nbRefused = 0;
    for (int round = 0; round < 60; ++round) {
        NetworkPlan plan{.nodes = {0, 1, 2, 3, 4, 5}, .links = {}};
        for (Long i = 0; i < 36; ++i) {
            if (i / 6 != i % 6 && randomInt(rng, 5) == 0)
                plan.links.push_back({i, i / 6, i % 6, 10.0});
        }
        for (const Objective objective : {Objective::hops, Objective::fortz, Objective::balance}) {
            Engine engine{{.weights = Weights::of(objective)}};
            build(engine, plan);
            for (Long pair = 0; pair < 36; ++pair) {
                const Request request{
                    .ingress = node(pair / 6), .egress = node(pair % 6), .bandwidth = 1.0};
                if (pair / 6 == pair % 6)
                    continue;
                const auto placed = engine.propose(request);
                const bool isReached =
                    reachedFrom(plan, pair / 6)[static_cast<std::size_t>(pair % 6)];
                ASSERT_EQ(static_cast<bool>(placed), isReached);
                nbRefused += placed ? 0 : 1;
                const auto reason = placed ? std::nullopt : std::optional{placed.refusal().reason};
                EXPECT_EQ(reason.value_or(Reason::notConnected), Reason::notConnected);
                Request large = request;
                large.bandwidth = 11.0;
                const auto refused = engine.propose(large);
                EXPECT_EQ(refused.refusal().largestBandwidth, isReached ? 10.0 : 0.0);
            }
        }
    }
    EXPECT_GT(nbRefused, 500);
}

} // namespace tarnex::test
