#include "formats/cursor.h"
#include "formats/dot/graph.h"
#include "formats/keys.h"
#include "formats/number.h"
#include "formats/parsers.h"

#include <fmt/format.h>
#include <tarnex/options.h>

#include <optional>

namespace tarnex::formats
{

namespace
{

std::string valueOf(const DotAttributes &attributes, const std::string &name)
{
    const auto found = attributes.find(name);
    return found == attributes.end() ? "" : found->second;
}

/** A capacity as it is written: a number, perhaps with a unit. */
struct Rate {
    double value = 0.0;
    bool isInBits = false; ///< "1Gbps", in bit/s then
};

std::optional<Rate> rateIn(std::string_view text)
{
    std::size_t length = text.size();
    while (length > 0 && !isDigit(text[length - 1]) && text[length - 1] != '.')
        --length;
    std::string_view unit = text.substr(length);
    while (!unit.empty() && isBlank(unit.front()))
        unit.remove_prefix(1);
    const auto value = numberIn(text.substr(0, length));
    if (!value)
        return std::nullopt;
    if (unit.empty())
        return Rate{*value, false};
    std::string name = unit.ends_with("bps")
                           ? std::string(unit.substr(0, unit.size() - 3)) + "bit/s"
                           : std::string(unit);
    if (name.starts_with('K'))
        name[0] = 'k';
    const auto bits = bitsPerSecond(name);
    return bits ? std::optional(Rate{*value * *bits, true}) : std::nullopt;
}

class DotParser
{
public:
    DotParser(std::string_view text, const std::string &fileName)
        : graph(readDotGraph(text, fileName)), file(fileName)
    {
    }

    Source parse()
    {
        source.name = graph.id;
        source.isDirected = graph.isDirected;
        source.unit = valueOf(graph.attributes, ownKeys.unit);
        source.classes = numbered(&OwnKeys::classType, maxClassTypes);
        source.levels = numbered(&OwnKeys::level, maxLevels);
        addSwitches();
        attachHosts();
        addEdges();
        return std::move(source);
    }

private:
    /** The attributes of the graph whose names are numbered from 0. */
    std::vector<std::string> numbered(std::string (OwnKeys::*key)(std::size_t) const,
                                      std::size_t most) const
    {
        std::vector<std::string> values;
        for (std::size_t i = 0; i <= most; ++i) {
            const auto found = graph.attributes.find((ownKeys.*key)(i));
            if (found == graph.attributes.end())
                break;
            values.push_back(found->second);
        }
        return values;
    }

    bool isHost(std::size_t node) const
    {
        return valueOf(graph.nodes[node].attributes, "type") == "host";
    }

    void addSwitches()
    {
        position.resize(graph.nodes.size());
        for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
            if (isHost(i))
                continue;
            const DotNode &given = graph.nodes[i];
            SourceNode node;
            node.key = given.id;
            node.line = given.line;
            const std::string longitude = valueOf(given.attributes, "longitude");
            const std::string latitude = valueOf(given.attributes, "latitude");
            if (!longitude.empty() && !latitude.empty())
                node.at = Coordinates{number(longitude, given.line), number(latitude, given.line)};
            position[i] = source.nodes.size();
            source.nodes.push_back(std::move(node));
        }
    }

    double number(const std::string &text, std::size_t line) const
    {
        const auto value = numberIn(text);
        if (!value)
            throw InputError(file, line, 0, fmt::format("expected a number, not '{}'", text));
        return *value;
    }

    /** A host becomes another name of the switch that it hangs on. */
    void attachHosts()
    {
        std::vector<std::optional<std::size_t>> switchOf(graph.nodes.size());
        for (const DotEdge &edge : graph.edges) {
            if (isHost(edge.from) == isHost(edge.to))
                continue;
            const std::size_t host = isHost(edge.from) ? edge.from : edge.to;
            const std::size_t other = isHost(edge.from) ? edge.to : edge.from;
            if (switchOf[host].value_or(other) != other)
                source.remarks.note("hosts at several switches", "taken as at the first",
                                    graph.nodes[host].id);
            else
                switchOf[host] = other;
        }
        std::size_t nbAttached = 0;
        for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
            if (!isHost(i))
                continue;
            if (!switchOf[i]) {
                source.remarks.note("hosts without a switch", "left out", graph.nodes[i].id);
                continue;
            }
            source.nodes[position[*switchOf[i]]].hosts.push_back(graph.nodes[i].id);
            ++nbAttached;
        }
        if (nbAttached > 0)
            source.remarks.choose(counted(nbAttached, "host") + " and the access links",
                                  "left out; demands between hosts go between their switches");
    }

    void addEdges()
    {
        for (const DotEdge &given : graph.edges) {
            if (isHost(given.from) || isHost(given.to))
                continue;
            SourceEdge edge;
            edge.from = graph.nodes[given.from].id;
            edge.to = graph.nodes[given.to].id;
            edge.line = given.line;
            edge.capacity = capacityOf(given);
            source.edges.push_back(std::move(edge));
        }
        if (hasBits && source.unit.empty())
            source.unit = "bit/s";
    }

    std::vector<double> capacityOf(const DotEdge &edge)
    {
        std::vector<double> capacity;
        for (std::size_t i = 0; i < source.classes.size(); ++i)
            addRate(capacity, edge, ownKeys.capacity(i));
        if (capacity.empty())
            addRate(capacity, edge, "capacity");
        return capacity;
    }

    void addRate(std::vector<double> &capacity, const DotEdge &edge, const std::string &name)
    {
        const auto found = edge.attributes.find(name);
        if (found == edge.attributes.end())
            return;
        const auto rate = rateIn(found->second);
        if (!rate)
            throw InputError(
                file, edge.line, 0,
                fmt::format("expected a {} such as 10 or 1Gbps, not '{}'", name, found->second));
        hasBits = hasBits || rate->isInBits;
        capacity.push_back(rate->value);
    }

    DotGraph graph;
    const std::string &file;
    Source source;
    std::vector<std::size_t> position; ///< of switches among the source's nodes
    bool hasBits = false;
};

} // namespace

Source parseDot(std::string_view text, const std::string &file)
{
    return DotParser(text, file).parse();
}

} // namespace tarnex::formats
