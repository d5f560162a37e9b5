#include "formats/keys.h"
#include "formats/words.h"
#include "formats/writers.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <unordered_set>

namespace tarnex::formats
{

namespace
{

std::string inQuotes(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

void writeAttributes(std::ostream &out, const Network &network)
{
    if (!network.unit.empty())
        fmt::print(out, "  graph [{}={}];\n", ownKeys.unit, inQuotes(network.unit));
    if (hasClasses(network))
        for (std::size_t i = 0; i < network.classes.size(); ++i)
            fmt::print(out, "  graph [{}={}];\n", ownKeys.classType(i),
                       inQuotes(network.classes[i]));
    if (hasLevels(network))
        for (std::size_t i = 0; i < network.levels.size(); ++i)
            fmt::print(out, "  graph [{}={}];\n", ownKeys.level(i), inQuotes(network.levels[i]));
}

void writeNodes(std::ostream &out, const Network &network)
{
    for (const Node &node : network.nodes)
        if (node.at)
            fmt::print(out, "  {} [longitude=\"{}\", latitude=\"{}\"];\n", inQuotes(node.name),
                       node.at->longitude, node.at->latitude);
        else
            fmt::print(out, "  {};\n", inQuotes(node.name));
}

void writeHosts(std::ostream &out, const Network &network)
{
    std::unordered_set<std::string_view> taken;
    for (const Node &node : network.nodes)
        taken.insert(node.name);
    for (const Node &node : network.nodes)
        for (const std::string &host : node.hosts)
            if (taken.insert(host).second)
                fmt::print(out, "  {0} [type=host];\n  {0} -> {1};\n  {1} -> {0};\n",
                           inQuotes(host), inQuotes(node.name));
}

std::string nameOfCapacity(const Network &network, std::size_t classType)
{
    return hasClasses(network) ? ownKeys.capacity(classType) : "capacity";
}

void writeLinks(std::ostream &out, const Network &network)
{
    for (const Link &link : network.links) {
        fmt::print(out, "  {} -> {} [", inQuotes(network.nameOf(link.from)),
                   inQuotes(network.nameOf(link.to)));
        for (std::size_t i = 0; i < link.capacity.size(); ++i)
            fmt::print(out, "{}{}=\"{}\"", i == 0 ? "" : ", ", nameOfCapacity(network, i),
                       link.capacity[i]);
        fmt::print(out, "];\n");
    }
}

} // namespace

void writeDot(std::ostream &out, const Network &network)
{
    fmt::print(out, "digraph {} {{\n", inQuotes(network.name));
    writeAttributes(out, network);
    writeNodes(out, network);
    writeHosts(out, network);
    writeLinks(out, network);
    fmt::print(out, "}}\n");
}

} // namespace tarnex::formats
