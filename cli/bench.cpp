#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/request_kinds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using Seconds = std::chrono::duration<double>;

/** What was measured of one kind. */
struct Measured {
    std::size_t number = 0;
    Seconds time{0.0};
};

using AllMeasured = std::array<Measured, nbRequestKinds>;

/** Demands for a network that has none: ten per node, ends spread by a fixed sequence of numbers,
 * each a hundredth of an average link. */
std::vector<Demand> inventedDemands(const Network &network)
{
    double capacity = 0.0;
    for (const Link &link : network.links)
        capacity += link.capacity.front();
    const double bandwidth = capacity / static_cast<double>(network.links.size()) / 100.0;

    std::vector<Demand> demands(10 * network.nodes.size());
    std::uint64_t state = 1;
    const auto draw = [&state](std::size_t most) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::int32_t>((state >> 33U) % most);
    };
    const std::size_t nbNodes = network.nodes.size();
    for (Demand &demand : demands) {
        const std::int32_t from = draw(nbNodes);
        const auto step = static_cast<std::size_t>(draw(nbNodes - 1)) + 1;
        const std::size_t to = (static_cast<std::size_t>(from) + step) % nbNodes;
        demand.ingress = NodeId{from};
        demand.egress = NodeId{static_cast<std::int32_t>(to)};
        demand.bandwidth = bandwidth;
    }
    return demands;
}

/** Rounds of one request of each kind until the time is over. */
AllMeasured measure(RequestBench &bench, Seconds most)
{
    AllMeasured all{};
    Seconds spent{0.0};
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t round = 0; spent < most; ++round) {
        for (std::size_t kind = 0; kind < nbRequestKinds; ++kind)
            if (const auto time = bench.next(static_cast<RequestKind>(kind), round)) {
                ++all.at(kind).number;
                all.at(kind).time += *time;
            }
        spent = std::chrono::steady_clock::now() - begin;
    }
    return all;
}

Table tableOf(const AllMeasured &all)
{
    Table table{.key = "kinds",
                .columns = {{"kind", "request"},
                            {"number", "number"},
                            {"perSecond", "per second"},
                            {"microseconds", "microseconds"},
                            {"share", "share of time"}}};
    Seconds sum{0.0};
    for (const Measured &measured : all)
        sum += measured.time;
    for (std::size_t kind = 0; kind < nbRequestKinds; ++kind) {
        const auto &[count, time] = all.at(kind);
        auto &row = table.rows.emplace_back();
        row = {wordsFor(static_cast<RequestKind>(kind)), number(count), {}, {}, {}};
        if (count == 0)
            continue;
        const double each = time.count() / static_cast<double>(count);
        row[2] = std::round(1.0 / each);
        row[3] = std::round(each * 1e7) / 10.0;
        row[4] = Ratio{time / sum};
    }
    return table;
}

class BenchCommand : public Command
{
public:
    const Page &page() const override
    {
        static const Page page{
            .name = "bench",
            .summary = "measures how many requests per second the engine answers on a network",
            .purpose =
                R"(Places the demands of a network at its least important level, or demands of its own if there are none, and then puts requests of every kind to the engine, one of each in turn: a path only; placing and removing an LSP; placing one that others have to give way to; backups for an LSP, local and global; and a request that is refused with the reason and the largest bandwidth that would fit. Every request leaves the LSPs as they were, and the demands take turns, so that two runs measure the same.

A kind that the network has no example of stays empty: no LSP that would give way, no way around. The share of time is that of a kind when there are as many requests of each.)",
            .examples = {{"Half a second on Abilene:",
                          "tarnex bench abilene/abilene.network "
                          "--demands abilene/abilene.demands --seconds 0.5"}},
            .findings = {}};
        return page;
    }

    void declare(Declaration &declaration) override
    {
        declaration.file("FILE", "A network, with or without demands, or a plan", file);
        input.declareDemands(declaration);
        declaration.option({.name = "--seconds",
                            .argument = "NUMBER",
                            .help = "How long to measure (default: 2)",
                            .take = [this](const std::string &text) {
                                seconds = Seconds{numberFrom(text, "--seconds")};
                            }});
        input.declareReading(declaration);
        declareForms(declaration, form, "the kinds of request");
    }

    ExitStatus run() override
    {
        const NetworkInput read = readInput(file, input);
        const Network &network = read.theNetwork();
        const auto &own = read.plan && input.demands.empty() ? read.plan->demands : read.demands;
        if (network.nodes.size() < 2 || network.links.empty())
            throw UsageError(fmt::format("{}: expected a network with links", file));
        const std::vector<Demand> demands = own.empty() ? inventedDemands(network) : own;

        nowDoing("placing the LSPs to measure with");
        RequestBench bench{network, demands};
        const std::size_t nbLsps = bench.nbLsps();
        nowDoing("measuring");
        const AllMeasured all = measure(bench, seconds);
        Facts facts{"network",
                    "",
                    {{"nodes", "nodes", number(network.nodes.size())},
                     {"links", "directed links", number(network.links.size())},
                     {"lsps", "LSPs that are there", number(nbLsps)}}};
        print({"bench", network.unit, {std::move(facts), tableOf(all)}}, form);
        return ExitStatus::done;
    }

private:
    std::string file;
    InputOptions input;
    Seconds seconds{2.0};
    Form form = Form::text;
};

} // namespace

std::unique_ptr<Command> makeBench() { return std::make_unique<BenchCommand>(); }

} // namespace tarnex::cli
