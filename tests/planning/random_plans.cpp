#include "planning/random_plans.h"

#include "planning/place.h"

#include <set>
#include <sstream>
#include <utility>
#include <variant>

using namespace tarnex;

namespace planning_tests
{

Network randomNetwork(Draw &draw, const Shape &shape)
{
    Network network;
    network.name = "drawn";
    for (int c = 0; c < shape.classes; ++c)
        network.classes.push_back("class" + std::to_string(c));
    for (int p = 0; p < shape.levels; ++p)
        network.levels.push_back("level" + std::to_string(p));
    for (int n = 0; n < shape.nodes; ++n)
        network.nodes.push_back({"n" + std::to_string(n), {}});
    std::set<std::pair<int, int>> joined;
    const auto join = [&](int from, int to) {
        if (from == to || !joined.emplace(from, to).second)
            return;
        Link link{NodeId{from}, NodeId{to}, {}};
        for (int c = 0; c < shape.classes; ++c)
            link.capacity.push_back(shape.capacity +
                                    draw.below(static_cast<std::size_t>(shape.capacity)));
        network.links.push_back(link);
    };
    for (int n = 0; n < shape.nodes; ++n) {
        join(n, (n + 1) % shape.nodes);
        join((n + 1) % shape.nodes, n);
    }
    for (int i = 0; i < shape.chords; ++i) {
        const int from = draw.below(network.nodes.size());
        const int to = draw.below(network.nodes.size());
        join(from, to);
        if (!draw.oneIn(4))
            join(to, from);
    }
    return network;
}

std::vector<Demand> randomDemands(Draw &draw, const Network &network, int number)
{
    std::vector<Demand> demands;
    for (int i = 0; i < number; ++i) {
        Demand demand;
        if (draw.oneIn(3))
            demand.name = "d" + std::to_string(i);
        demand.ingress = NodeId{draw.below(network.nodes.size())};
        demand.egress = NodeId{draw.below(network.nodes.size())};
        demand.classType = draw.below(network.classes.size());
        demand.level = draw.below(network.levels.size());
        demand.bandwidth = draw.oneIn(20) ? 0.0 : 0.1 * (1 + draw.below(80));
        demands.push_back(demand);
    }
    return demands;
}

PlanOptions randomOptions(Draw &draw, const Network &network)
{
    PlanOptions options;
    options.engine.weights = Weights::of(static_cast<Objective>(draw.below(5)));
    options.order = static_cast<Order>(draw.below(4));
    options.preempts = !draw.oneIn(4);
    options.retryRounds = draw.below(4);
    const bool protects = !draw.oneIn(3);
    for (std::size_t p = 0; p < network.levels.size() && protects; ++p) {
        const int scheme = draw.below(4);
        options.protection.push_back(scheme == 3 ? LevelScheme{}
                                                 : LevelScheme{static_cast<Scheme>(scheme)});
    }
    return options;
}

namespace
{

template <class Value>
std::ostream &operator<<(std::ostream &out, const std::vector<Value> &values)
{
    for (const Value &value : values) {
        if constexpr (requires { value.value; })
            out << value.value << ' ';
        else
            out << value << ' ';
    }
    return out << ';';
}

void write(std::ostream &out, const Refusal &refusal)
{
    out << "refused " << refusal.sentence << ' ' << refusal.largestBandwidth;
    for (const auto &[link, room] : refusal.inTheWay)
        out << ' ' << link.value << ':' << room;
}

void write(std::ostream &out, const Outcome &outcome)
{
    if (const auto *lsp = std::get_if<PlannedLsp>(&outcome)) {
        out << "placed " << lsp->path << lsp->score.value_or(-1.0);
        for (const PlannedBackup &backup : lsp->backups)
            out << static_cast<int>(backup.kind) << backup.path << backup.protectedLinks
                << backup.protectedNodes;
        if (lsp->unprotected)
            write(out, *lsp->unprotected);
    } else if (const auto *preempted = std::get_if<PreemptedLsp>(&outcome)) {
        out << "preempted " << preempted->by.value << ' ';
        if (preempted->retry)
            write(out, *preempted->retry);
    } else if (const auto *refusal = std::get_if<Refusal>(&outcome)) {
        write(out, *refusal);
    }
    out << '\n';
}

} // namespace

Plan randomPlan(Draw &draw)
{
    const Network network = randomNetwork(draw, {});
    const auto demands = randomDemands(draw, network, 120);
    const PlanOptions options = randomOptions(draw, network);
    tarnex::planning::Progress progress;
    return tarnex::planning::place(network, demands, options, progress);
}

Plan planOf(std::uint32_t seed, const PlanOptions &options)
{
    Draw draw{seed};
    const Network network = randomNetwork(draw, {});
    planning::Progress progress;
    return planning::place(network, randomDemands(draw, network, 80), options, progress);
}

std::string textOf(const Plan &plan)
{
    std::ostringstream out;
    out << std::hexfloat;
    for (const Outcome &outcome : plan.outcomes)
        write(out, outcome);
    for (const PlannedUse &use : plan.use)
        out << use.primary << use.total << '\n';
    out << plan.setUp;
    return out.str();
}

} // namespace planning_tests
