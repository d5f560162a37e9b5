#include "formats/describe.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tarnex::formats
{

std::string describe(const Network &network)
{
    std::string text =
        fmt::format("network '{}' unit '{}' classes {} levels {}\n", network.name, network.unit,
                    fmt::join(network.classes, ","), fmt::join(network.levels, ","));
    for (const Node &node : network.nodes) {
        text += node.name;
        if (node.at)
            text += fmt::format(" at {} {}", node.at->longitude, node.at->latitude);
        if (!node.hosts.empty())
            text += fmt::format(" with {}", fmt::join(node.hosts, ","));
        text += '\n';
    }
    for (const Link &link : network.links)
        text += fmt::format("{} > {}: {}\n", network.nameOf(link.from), network.nameOf(link.to),
                            fmt::join(link.capacity, " "));
    return text;
}

std::string describe(const Network &network, const std::vector<Demand> &demands)
{
    std::string text;
    for (const Demand &demand : demands)
        text += fmt::format("[{}] {} > {} {}/{} {}\n", demand.name, network.nameOf(demand.ingress),
                            network.nameOf(demand.egress),
                            network.classes.at(static_cast<std::size_t>(demand.classType)),
                            network.levels.at(static_cast<std::size_t>(demand.level)),
                            demand.bandwidth);
    return text;
}

std::string describe(const Remarks &remarks)
{
    std::string text;
    for (const Remark &remark : remarks.all())
        text += fmt::format("{} {}\n", remark.isError ? '!' : '-', textOf(remark));
    return text;
}

Input settled(Format format, std::string_view text, const ReadOptions &options)
{
    Source source = parseSource(format, text, "input");
    source.file = "input";
    Remarks remarks = source.remarks;
    Input input = settle(source, options, remarks);
    input.remarks = remarks;
    return input;
}

} // namespace tarnex::formats
