/** From a source to a network. */
#include "formats/bandwidth.h"
#include "formats/names.h"
#include "formats/node_pair.h"
#include "formats/number.h"
#include "formats/oddities.h"
#include "formats/shares.h"
#include "formats/source.h"

#include <fmt/format.h>
#include <tarnex/options.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace tarnex::formats
{

namespace
{

class NetworkSettler
{
public:
    NetworkSettler(const Source &described, const ReadOptions &chosen, Remarks &remarks)
        : source(described), options(chosen), oddities(described.file, chosen.isStrict, remarks)
    {
    }

    Network settle()
    {
        network.name = cleanName(source.name);
        network.unit = cleanName(source.unit);
        settleCapacity();
        settleClasses();
        settleLevels();
        addNodes();
        addLinks();
        return std::move(network);
    }

private:
    /** The capacity that an option gives to links without one, in the unit of the file. */
    void settleCapacity()
    {
        if (options.capacity.empty())
            return;
        try {
            chosenCapacity = parseBandwidth(options.capacity, network.unit);
        } catch (const BandwidthError &error) {
            throw InputError("--capacity " + options.capacity, 0, 0, error.what());
        }
    }

    void settleClasses()
    {
        if (!source.classes.empty() && !options.classes.empty())
            oddities.fail(0, "the file has classes; only a single capacity can be divided");
        checkShares(options.classes, "--classes", Total::atMostOne);
        network.classes =
            cleanNames(options.classes.empty() ? source.classes : namesOf(options.classes));
        checkNames(network.classes, "class types", maxClassTypes);
        if (network.classes.empty())
            network.classes = {defaultClass};
    }

    void settleLevels()
    {
        network.levels = cleanNames(source.levels);
        checkNames(network.levels, "levels", maxLevels);
        if (network.levels.empty())
            network.levels = {defaultLevel};
    }

    void checkNames(const std::vector<std::string> &names, std::string_view what, int most) const
    {
        if (names.size() > static_cast<std::size_t>(most))
            oddities.fail(0,
                          fmt::format("{} {}, at most {} are possible", names.size(), what, most));
        std::unordered_set<std::string> different(names.begin(), names.end());
        if (different.size() < names.size())
            oddities.fail(0, fmt::format("two {} have the same name", what));
    }

    void addNodes()
    {
        if (source.nodes.size() > largestId)
            oddities.fail(0, fmt::format("{} nodes are too many", source.nodes.size()));
        for (const SourceNode &node : source.nodes) {
            const NodeId id(static_cast<std::int32_t>(nodeByKey.size()));
            if (!nodeByKey.emplace(node.key, id).second)
                oddities.fail(node.line, fmt::format("there are two nodes '{}'", node.key));
        }
        std::vector<std::string> names = namesOfNodes(source);
        const std::size_t changed = tellApart(names);
        if (changed > 0)
            oddities.choose(counted(changed, "repeated name"), "continued with #2, #3, ...");
        const bool areDegrees = std::all_of(source.nodes.begin(), source.nodes.end(), isInDegrees);
        if (!areDegrees)
            oddities.choose("coordinates", "left out: not all are degrees");
        for (std::size_t i = 0; i < names.size(); ++i) {
            const SourceNode &node = source.nodes[i];
            network.nodes.push_back(
                {std::move(names[i]), areDegrees ? node.at : std::nullopt, cleanNames(node.hosts)});
        }
    }

    static bool isInDegrees(const SourceNode &node)
    {
        return !node.at ||
               (std::abs(node.at->longitude) <= 180.0 && std::abs(node.at->latitude) <= 90.0);
    }

    void addLinks()
    {
        std::size_t nbUndirected = 0;
        for (const SourceEdge &edge : source.edges) {
            const NodeId from = nodeOf(edge.from);
            const NodeId to = nodeOf(edge.to);
            if (!from.isValid() || !to.isValid()) {
                oddities.note("links to unknown nodes", "left out", labelOf(edge), edge.line);
                continue;
            }
            if (from == to) {
                oddities.note("self-loops", "left out", network.nameOf(from), edge.line);
                continue;
            }
            const std::vector<double> capacity = capacityOf(edge);
            const bool isUndirected = !edge.isDirected.value_or(source.isDirected);
            bool isParallel = !addLink(from, to, capacity, edge.line);
            if (isUndirected)
                isParallel = !addLink(to, from, capacity, edge.line) || isParallel;
            if (isParallel)
                noteParallel(from, to, edge.line);
            nbUndirected += isUndirected ? 1 : 0;
        }
        if (nbUndirected > 0)
            oddities.choose(counted(nbUndirected, "undirected edge"),
                            "each taken as two directed links");
        if (nbWithout > 0 && chosenCapacity)
            oddities.choose("capacity of " + counted(nbWithout, "link"),
                            fmt::format("taken as {}", *chosenCapacity));
        remarkClasses();
    }

    void remarkClasses()
    {
        if (options.classes.empty())
            return;
        std::string parts;
        for (const Share &part : options.classes)
            parts += fmt::format("{}{} {:g} %", parts.empty() ? "" : ", ", part.name,
                                 part.share * 100.0);
        oddities.choose("capacities", "divided: " + parts);
    }

    NodeId nodeOf(const std::string &key) const
    {
        const auto found = nodeByKey.find(key);
        return found == nodeByKey.end() ? NodeId() : found->second;
    }

    std::string nameOf(const std::string &key) const
    {
        const NodeId node = nodeOf(key);
        return node.isValid() ? network.nameOf(node) : cleanName(key);
    }

    std::string labelOf(const SourceEdge &edge) const
    {
        return fmt::format("{} > {}", nameOf(edge.from), nameOf(edge.to));
    }

    /** The capacity of an edge in each class type. */
    std::vector<double> capacityOf(const SourceEdge &edge)
    {
        std::vector<double> capacity = edge.capacity;
        if (capacity.empty())
            capacity.assign(std::max<std::size_t>(source.classes.size(), 1), defaultCapacity(edge));
        for (const double value : capacity)
            if (!(value >= 0.0 && value <= largestBandwidth))
                oddities.fail(edge.line, fmt::format("the capacity of {} is {}, not 0 to {}",
                                                     labelOf(edge), value, largestBandwidth));
        if (!options.classes.empty() && capacity.size() == 1)
            return dividedByClass(capacity[0]);
        if (capacity.size() != network.classes.size())
            oddities.fail(edge.line,
                          fmt::format("expected {} capacities of {}, not {}",
                                      network.classes.size(), labelOf(edge), capacity.size()));
        return capacity;
    }

    double defaultCapacity(const SourceEdge &edge)
    {
        if (!chosenCapacity)
            oddities.note("links without capacity", "given capacity 1", labelOf(edge), edge.line);
        ++nbWithout;
        return chosenCapacity.value_or(1.0);
    }

    std::vector<double> dividedByClass(double whole) const
    {
        std::vector<double> parts;
        for (const Share &part : options.classes)
            parts.push_back(whole * part.share);
        return parts;
    }

    /** Adds a link; false when one is there already: the new one is added to it or left out. */
    bool addLink(NodeId from, NodeId to, const std::vector<double> &capacity, std::size_t line)
    {
        const auto [found, isNew] = linkByEnds.emplace(numberOf(from, to), network.links.size());
        if (isNew) {
            if (network.links.size() >= largestId)
                oddities.fail(line, "too many links");
            network.links.push_back({from, to, capacity});
        } else if (options.parallel == ParallelLinks::sum) {
            addTo(network.links[found->second].capacity, capacity, line);
        }
        return isNew;
    }

    void addTo(std::vector<double> &sums, const std::vector<double> &capacity,
               std::size_t line) const
    {
        for (std::size_t i = 0; i < sums.size(); ++i) {
            sums[i] += capacity[i];
            if (sums[i] > largestBandwidth)
                oddities.fail(line, "the sum of parallel capacities is too large");
        }
    }

    void noteParallel(NodeId from, NodeId to, std::size_t line)
    {
        const std::string name = fmt::format("{} > {}", network.nameOf(from), network.nameOf(to));
        if (options.parallel == ParallelLinks::error)
            oddities.fail(line, "parallel links: " + name);
        oddities.note("parallel links",
                      options.parallel == ParallelLinks::sum ? "summed" : "left out but the first",
                      name, line);
    }

    static constexpr auto largestId =
        static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());

    const Source &source;
    const ReadOptions &options;
    Oddities oddities;
    Network network;
    std::unordered_map<std::string_view, NodeId> nodeByKey;
    std::unordered_map<std::uint64_t, std::size_t> linkByEnds;
    std::optional<double> chosenCapacity;
    std::size_t nbWithout = 0; ///< links to which the file gives no capacity
};

} // namespace

std::vector<std::string> namesOfNodes(const Source &source)
{
    std::vector<std::string> names;
    names.reserve(source.nodes.size());
    for (const SourceNode &node : source.nodes) {
        std::string name = cleanName(node.name.empty() ? node.key : node.name);
        if (name.empty())
            name = cleanName(node.key);
        names.push_back(name.empty() ? "node" : std::move(name));
    }
    return names;
}

Input settle(const Source &source, const ReadOptions &options, Remarks &remarks)
{
    Input input;
    input.network = NetworkSettler(source, options, remarks).settle();
    input.demands = settleOwnDemands(source, input.network, options, remarks);
    return input;
}

} // namespace tarnex::formats
