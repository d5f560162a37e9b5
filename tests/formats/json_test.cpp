#include "formats/json/json.h"
#include "formats/write.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>
#include <tuple>

namespace tarnex::formats
{

namespace
{

/** Makes things up. */
class Inventor
{
public:
    explicit Inventor(unsigned seed) : random(seed) {}

    int upTo(int largest) { return std::uniform_int_distribution<int>(0, largest)(random); }
    bool coin() { return upTo(1) == 1; }

    /** Any finite number of 0 or more: integers, fractions, every pattern of bits. */
    double amount()
    {
        if (coin())
            return upTo(20000) / (coin() ? 1.0 : 7.0);
        const std::uint64_t bits = random() >> 1U;
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        return std::isfinite(value) ? value : 0.0;
    }

    std::string name(const std::string &prefix)
    {
        static const std::vector<std::string> pieces{"a",    "\"", "\\", "\n", "Zürich", " ",
                                                     "\x01", "/",  "€",  "𝄞",  "{}",     ""};
        std::string result = prefix;
        for (int i = upTo(3); i > 0; --i)
            result += pieces[static_cast<std::size_t>(upTo(static_cast<int>(pieces.size()) - 1))];
        return result;
    }

    Network network()
    {
        Network made{name(""), coin() ? "Mbit/s" : "", {}, {}, {}, {}};
        for (int i = upTo(maxClassTypes - 1); i >= 0; --i)
            made.classes.push_back(name(std::to_string(i)));
        for (int i = upTo(maxLevels - 1); i >= 0; --i)
            made.levels.push_back(name(std::to_string(i)));
        const int nbNodes = 2 + upTo(10);
        for (int i = 0; i < nbNodes; ++i) {
            made.nodes.push_back({name(std::to_string(i)), {}});
            if (coin())
                made.nodes.back().at = Coordinates{-amount(), coin() ? -0.0 : amount()};
            if (upTo(3) == 0)
                made.nodes.back().hosts = {name("h"), name("i")};
        }
        for (int from = 0; from < nbNodes; ++from)
            for (int to = 0; to < nbNodes; ++to)
                if (from != to && upTo(2) == 0)
                    made.links.push_back({NodeId(from), NodeId(to), amounts(made.classes.size())});
        return made;
    }

    std::vector<Demand> demands(const Network &on)
    {
        std::vector<Demand> made(static_cast<std::size_t>(upTo(20)));
        for (Demand &demand : made)
            demand = {coin() ? name("d") : "",     id<NodeId>(on.nodes),
                      id<NodeId>(on.nodes),        id<NodeId>(on.classes).value,
                      id<NodeId>(on.levels).value, amount()};
        return made;
    }

    Plan plan()
    {
        Plan made;
        made.network = network();
        made.options = options(made.network);
        made.demands = demands(made.network);
        for (std::size_t i = 0; i < made.demands.size(); ++i) {
            made.outcomes.push_back(outcome(made));
            if (coin())
                made.setUp.insert(made.setUp.begin(), DemandId(static_cast<int>(i)));
        }
        for (std::size_t i = 0; i < made.network.links.size(); ++i)
            made.use.push_back({table(made.network), table(made.network)});
        return made;
    }

private:
    std::vector<double> amounts(std::size_t nb)
    {
        std::vector<double> made(nb);
        for (double &value : made)
            value = amount();
        return made;
    }

    std::vector<std::vector<double>> table(const Network &on)
    {
        std::vector<std::vector<double>> made;
        for (std::size_t i = 0; i < on.classes.size(); ++i)
            made.push_back(amounts(on.levels.size()));
        return made;
    }

    template <class Id, class Things>
    Id id(const Things &things)
    {
        return Id(upTo(static_cast<int>(things.size()) - 1));
    }

    template <class Id, class Things>
    std::vector<Id> ids(const Things &things)
    {
        std::vector<Id> made;
        for (int i = things.empty() ? 0 : upTo(5); i > 0; --i)
            made.push_back(id<Id>(things));
        return made;
    }

    PlanOptions options(const Network &on)
    {
        PlanOptions made;
        made.engine.weights = {amount(), amount(), amount(), amount(),
                               amount(), amount(), amount()};
        made.engine.testsCapacity = coin();
        made.engine.explainsRefusals = coin();
        for (std::size_t i = 0; i < on.classes.size(); ++i)
            made.engine.preemptionPrices.at(i).at(on.levels.size() - 1) = amount();
        made.order = static_cast<Order>(upTo(3));
        made.preempts = coin();
        made.retryRounds = upTo(9);
        for (int i = upTo(static_cast<int>(on.levels.size())); i > 0; --i)
            made.protection.push_back(coin() ? LevelScheme(static_cast<Scheme>(upTo(2)))
                                             : std::nullopt);
        return made;
    }

    Refusal refusal(const Network &on)
    {
        Refusal made{static_cast<Reason>(upTo(5)), name("no "), amount(), {}};
        for (const LinkId link : ids<LinkId>(on.links))
            made.inTheWay.push_back({link, amount()});
        return made;
    }

    Outcome outcome(const Plan &plan)
    {
        const Network &on = plan.network;
        switch (upTo(4)) {
        case 0:
            return std::monostate{};
        case 1:
            return refusal(on);
        case 2: {
            PreemptedLsp made{id<DemandId>(plan.demands), {}};
            if (coin())
                made.retry = refusal(on);
            return made;
        }
        default:
            break;
        }
        PlannedLsp made{ids<NodeId>(on.nodes), coin() ? amount() : -amount(), {}, {}};
        for (int i = upTo(2); i > 0; --i)
            made.backups.push_back({coin() ? LspKind::localBackup : LspKind::globalBackup,
                                    ids<NodeId>(on.nodes), ids<LinkId>(on.links),
                                    ids<NodeId>(on.nodes)});
        if (coin())
            made.unprotected = refusal(on);
        return made;
    }

    std::mt19937_64 random;
};

bool same(const Refusal &a, const Refusal &b)
{
    return std::tie(a.reason, a.sentence, a.largestBandwidth) ==
               std::tie(b.reason, b.sentence, b.largestBandwidth) &&
           std::equal(a.inTheWay.begin(), a.inTheWay.end(), b.inTheWay.begin(), b.inTheWay.end(),
                      [](const LinkInTheWay &x, const LinkInTheWay &y) {
                          return x.link == y.link && x.room == y.room;
                      });
}

bool same(const std::optional<Refusal> &a, const std::optional<Refusal> &b)
{
    return a.has_value() == b.has_value() && (!a || same(*a, *b));
}

bool same(std::monostate /*a*/, std::monostate /*b*/) { return true; }

bool same(const PreemptedLsp &a, const PreemptedLsp &b)
{
    return a.by == b.by && same(a.retry, b.retry);
}

bool same(const PlannedLsp &a, const PlannedLsp &b)
{
    const auto sameBackup = [](const PlannedBackup &x, const PlannedBackup &y) {
        return std::tie(x.kind, x.path, x.protectedLinks, x.protectedNodes) ==
               std::tie(y.kind, y.path, y.protectedLinks, y.protectedNodes);
    };
    return a.path == b.path && a.score == b.score && same(a.unprotected, b.unprotected) &&
           std::equal(a.backups.begin(), a.backups.end(), b.backups.begin(), b.backups.end(),
                      sameBackup);
}

bool same(const Outcome &a, const Outcome &b)
{
    return a.index() == b.index() && std::visit(
                                         [&](const auto &value) {
                                             using Value = std::decay_t<decltype(value)>;
                                             return same(value, std::get<Value>(b));
                                         },
                                         a);
}

bool same(const PlanOptions &a, const PlanOptions &b)
{
    return std::tie(a.engine.weights, a.engine.preemptionPrices, a.engine.testsCapacity,
                    a.engine.explainsRefusals, a.order, a.preempts, a.retryRounds, a.protection) ==
           std::tie(b.engine.weights, b.engine.preemptionPrices, b.engine.testsCapacity,
                    b.engine.explainsRefusals, b.order, b.preempts, b.retryRounds, b.protection);
}

bool same(const PlannedUse &a, const PlannedUse &b)
{
    return a.primary == b.primary && a.total == b.total;
}

template <class Value>
bool same(const std::vector<Value> &a, const std::vector<Value> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Value &x, const Value &y) { return same(x, y); });
}

Input readText(const std::string &text, const ReadOptions &options = {})
{
    return readJson(std::string_view(text), "x.json", options);
}

std::string written(const Plan &plan)
{
    std::ostringstream out;
    writePlan(out, plan);
    return out.str();
}

} // namespace

TEST(Json, PlansComeBackAsTheyWere)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        const Plan plan = Inventor(seed).plan();
        const std::string text = written(plan);
        const Plan back = std::move(*readText(text).plan);
        EXPECT_EQ(back.network, plan.network);
        EXPECT_EQ(back.demands, plan.demands);
        EXPECT_TRUE(same(back.options, plan.options));
        EXPECT_TRUE(same(back.outcomes, plan.outcomes));
        EXPECT_TRUE(same(back.use, plan.use));
        EXPECT_EQ(back.setUp, plan.setUp);
        EXPECT_EQ(back.options.engine.levels, static_cast<int>(plan.network.levels.size()));
        ASSERT_EQ(written(back), text);
    }
}

TEST(Json, NetworksAndDemandsComeBackAsTheyWere)
{
    ReadOptions halved;
    halved.scale = 0.5;
    for (unsigned seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(seed);
        Inventor inventor(seed);
        const Network network = inventor.network();
        const std::vector<Demand> demands = inventor.demands(network);
        std::ostringstream out;
        writeNetwork(out, network, demands);
        const Input back = readText(out.str());
        EXPECT_EQ(back.network, network);
        EXPECT_EQ(back.demands, demands);

        std::ostringstream alone;
        writeDemands(alone, network, demands);
        const Input named = readText(alone.str(), halved);
        EXPECT_EQ(named.network.classes, network.classes);
        ASSERT_EQ(named.demands.size(), demands.size());
        for (std::size_t i = 0; i < demands.size(); ++i) {
            const Demand &one = named.demands[i];
            EXPECT_EQ(named.network.nameOf(one.egress), network.nameOf(demands[i].egress));
            EXPECT_EQ(one.level, demands[i].level);
            EXPECT_EQ(one.bandwidth, 0.5 * demands[i].bandwidth);
        }
    }
}

} // namespace tarnex::formats
