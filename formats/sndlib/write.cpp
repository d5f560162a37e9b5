#include "formats/sndlib/sndlib.h"
#include "formats/words.h"
#include "formats/writers.h"

#include <fmt/ostream.h>

namespace tarnex::formats
{

namespace
{

void writeNodes(std::ostream &out, const Network &network, const std::vector<std::string> &names)
{
    fmt::print(out, "# <node_id> [(<longitude>, <latitude>)]\n\nNODES (\n");
    for (std::size_t i = 0; i < names.size(); ++i)
        if (const auto &at = network.nodes[i].at)
            fmt::print(out, "  {} ( {} {} )\n", names[i], at->longitude, at->latitude);
        else
            fmt::print(out, "  {}\n", names[i]);
    fmt::print(out, ")\n\n");
}

void writeLinks(std::ostream &out, const Network &network, const std::vector<std::string> &names)
{
    fmt::print(out, "# <link_id> ( <source> <target> ) <pre_installed_capacity> "
                    "<pre_installed_capacity_cost> <routing_cost> <setup_cost> "
                    "( {{<module_capacity> <module_cost>}}* )\n\nLINKS (\n");
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        const double capacity = totalCapacity(link);
        // A link with neither capacity nor module would be one whose capacity is not known.
        fmt::print(out, "  L{} ( {} {} ) {} 0 0 0 ({})\n", i, names[link.from.index()],
                   names[link.to.index()], capacity, capacity == 0.0 ? " 0 0 " : " ");
    }
    fmt::print(out, ")\n\n");
}

} // namespace

void writeSndlib(std::ostream &out, const Network &network, std::span<const Demand> demands)
{
    constexpr std::string_view marks = "()";
    const std::vector<std::string> names = nodeWords(network, "()#");
    fmt::print(out, "?SNDlib native format; type: network; version: 1.0\n");
    if (!network.name.empty())
        fmt::print(out, "{}{}\n", networkComment, network.name);
    fmt::print(out, "\nMETA (\n");
    if (!network.unit.empty())
        fmt::print(out, "  unit = {}\n", unitForSndlib(network.unit));
    fmt::print(out, "  link_model = {}\n)\n\n", directedModel);
    writeNodes(out, network, names);
    writeLinks(out, network, names);
    fmt::print(out, "# <demand_id> ( <source> <target> ) <routing_unit> <demand_value> "
                    "<max_path_length>\n\nDEMANDS (\n");
    const std::vector<std::string> ids = demandWords(demands, "D", marks);
    for (std::size_t i = 0; i < demands.size(); ++i)
        fmt::print(out, "  {} ( {} {} ) 1 {} UNLIMITED\n", ids[i],
                   names[demands[i].ingress.index()], names[demands[i].egress.index()],
                   demands[i].bandwidth);
    fmt::print(out, ")\n");
}

} // namespace tarnex::formats
