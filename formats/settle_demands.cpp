/** From a source to demands on a network. */
#include "formats/names.h"
#include "formats/number.h"
#include "formats/oddities.h"
#include "formats/shares.h"
#include "formats/source.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <tarnex/options.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace tarnex::formats
{

namespace
{

/** Whose nodes the demands of a source are on. */
enum class NodesOf { source, otherFile };

/** The nodes of a network by what a source may call them. */
class NodeNames
{
public:
    NodeNames(const Source &source, const Network &network, NodesOf whose)
        : byPosition(source.demandsByPosition && source.nodes.empty()),
          nbNodes(network.nodes.size())
    {
        if (whose == NodesOf::source) {
            for (std::size_t i = 0; i < source.nodes.size(); ++i)
                byKey.emplace(source.nodes[i].key, idAt(i));
        } else {
            for (std::size_t i = 0; i < nbNodes; ++i)
                byName.emplace(network.nodes[i].name, idAt(i));
        }
        for (std::size_t i = 0; i < nbNodes; ++i) // names come before what hangs on the nodes
            for (const std::string &host : network.nodes[i].hosts)
                byName.emplace(host, idAt(i));
        if (whose == NodesOf::otherFile)
            addKeys(source);
    }

    NodeId find(const std::string &name) const
    {
        if (byPosition) {
            const auto position = positionIn(name);
            return position && *position < nbNodes ? idAt(*position) : NodeId();
        }
        const auto found = byKey.find(name);
        return found == byKey.end() ? named(name) : found->second;
    }

private:
    using Ids = std::unordered_map<std::string_view, NodeId>;

    static NodeId idAt(std::size_t i) { return NodeId(static_cast<std::int32_t>(i)); }

    /** Another file may list the nodes in any order: its keys stand for the names it gives them. */
    void addKeys(const Source &source)
    {
        std::vector<std::string> names = namesOfNodes(source);
        tellApart(names);
        for (std::size_t i = 0; i < names.size(); ++i)
            byKey.emplace(source.nodes[i].key, named(names[i]));
    }

    NodeId named(const std::string &name) const
    {
        auto found = byName.find(name);
        if (found == byName.end())
            found = byName.find(cleanName(name)); // as the names of the network are
        return found == byName.end() ? NodeId() : found->second;
    }

    bool byPosition;
    std::size_t nbNodes;
    Ids byKey;
    Ids byName;
};

/** Names of classes or levels that demands use, and what those that use none get. */
class Names
{
public:
    /** `known`: those of the network; none, or a single default, gives way to what is brought. */
    Names(std::vector<std::string> &known, std::string_view fallback, std::string_view kind,
          int nbAtMost)
        : names(known), what(kind), most(static_cast<std::size_t>(nbAtMost)),
          isOpen(known.empty() || (known.size() == 1 && known[0] == fallback))
    {
    }

    bool isDefault() const { return isOpen && !isBrought; }
    /** Whether demands brought names of their own, in the order in which they turned up. */
    bool turnedUp() const { return isBrought && !areDeclared && names.size() > 1; }

    /** Brings names that are declared in their order, where the network has none. */
    void declare(const std::vector<std::string> &declared)
    {
        if (!isOpen || declared.empty())
            return;
        names = declared;
        isOpen = false;
        isBrought = true;
        areDeclared = true;
    }

    /** The number of a name; nothing when there is none such and none can be added. */
    std::optional<int> find(const std::string &name)
    {
        const auto found = std::find(names.begin(), names.end(), name);
        if (found != names.end() && !isDefault())
            return static_cast<int>(found - names.begin());
        if (!isOpen)
            return std::nullopt;
        if (!isBrought)
            names.clear();
        isBrought = true;
        if (names.size() == most)
            return std::nullopt;
        names.push_back(name);
        return static_cast<int>(names.size() - 1);
    }

    const std::vector<std::string> &all() const { return names; }
    const std::string &kindOfName() const { return what; }

private:
    std::vector<std::string> &names;
    std::string what;
    std::size_t most;
    bool isOpen;
    bool isBrought = false;
    bool areDeclared = false;
};

class DemandSettler
{
public:
    DemandSettler(const Source &described, Network &target, NodesOf whose,
                  const ReadOptions &chosen, Remarks &remarks)
        : source(described), network(target), options(chosen), nodes(described, target, whose),
          oddities(described.file, chosen.isStrict, remarks),
          classes(target.classes, defaultClass, "class", maxClassTypes),
          levels(target.levels, defaultLevel, "level", maxLevels), turns(chosen.mix)
    {
    }

    std::vector<Demand> settle()
    {
        checkOptions();
        factor = options.scale * unitFactor();
        std::vector<Demand> demands;
        demands.reserve(source.demands.size());
        std::unordered_set<std::string> names;
        for (const SourceDemand &given : source.demands) {
            auto demand = settled(given);
            if (!demand)
                continue;
            if (!demand->name.empty() && !names.insert(demand->name).second)
                oddities.note("demands named as one before", "taken as they are", demand->name,
                              given.line);
            demands.push_back(std::move(*demand));
        }
        if (demands.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
            oddities.fail(0, "too many demands");
        remarkChoices();
        return demands;
    }

private:
    void checkOptions()
    {
        if (!(options.scale >= 0.0 && options.scale <= largestBandwidth))
            throw InputError("--scale", 0, 0, "expected a number of 0 or more");
        if (!options.mix.empty()) {
            checkShares(options.mix, "--mix", Total::one);
            if (!options.level.empty())
                throw InputError("--mix", 0, 0, "--level gives all demands one level already");
        }
        levels.declare(cleanNames(source.levels));
        const bool hasLevels =
            std::any_of(source.demands.begin(), source.demands.end(),
                        [](const auto &demand) { return !demand.level.empty(); });
        if (!hasLevels)
            levels.declare(options.level.empty() ? namesOf(options.mix)
                                                 : std::vector{options.level});
        for (const Share &part : options.mix)
            if (!hasLevels)
                mixed.push_back(numberOf(levels, part.name, 0));
    }

    /** What a bandwidth of the source is to be multiplied with to be in the network's unit. */
    double unitFactor()
    {
        if (network.unit.empty() || source.unit.empty() || network.unit == cleanName(source.unit)) {
            if (network.unit.empty())
                network.unit = cleanName(source.unit);
            return 1.0;
        }
        const auto theirs = bitsPerSecond(source.unit);
        const auto ours = bitsPerSecond(network.unit);
        const bool isKnown = theirs && ours;
        oddities.choose(fmt::format("bandwidths in {}", source.unit),
                        isKnown ? fmt::format("converted to {}", network.unit)
                                : fmt::format("taken as {}", network.unit));
        return isKnown ? *theirs / *ours : 1.0;
    }

    std::optional<Demand> settled(const SourceDemand &given)
    {
        Demand demand;
        demand.name = cleanName(given.name);
        demand.ingress = nodes.find(given.from);
        demand.egress = nodes.find(given.to);
        demand.bandwidth = given.bandwidth * factor;
        if (!(given.bandwidth >= 0.0 && demand.bandwidth <= largestBandwidth))
            oddities.fail(given.line,
                          fmt::format("the bandwidth of {} is {}, not 0 to {}", labelOf(given),
                                      given.bandwidth, largestBandwidth));
        if (!demand.ingress.isValid() || !demand.egress.isValid()) {
            if (source.demandsByPosition)
                oddities.fail(given.line, fmt::format("the nodes of {} are {} and {}, but there "
                                                      "are {}, counted from 0",
                                                      labelOf(given), given.from, given.to,
                                                      network.nodes.size()));
            oddities.note("demands with unknown nodes", "left out", labelOf(given), given.line);
            return std::nullopt;
        }
        if (isVoid(demand)) {
            noteVoid(oddities, demand, labelOf(given), given.line);
            return std::nullopt;
        }
        demand.classType = classOf(given);
        demand.level = levelOf(given);
        return demand;
    }

    static std::string labelOf(const SourceDemand &given)
    {
        return cleanName(given.name.empty() ? fmt::format("{} > {}", given.from, given.to)
                                            : given.name);
    }

    int classOf(const SourceDemand &given)
    {
        const std::string &name = given.className.empty() ? options.className : given.className;
        if (!name.empty())
            return classNumber(cleanName(name), given.line);
        ++nbWithoutClass;
        return 0;
    }

    int classNumber(const std::string &name, std::size_t line)
    {
        const int number = numberOf(classes, name, line);
        if (number > 0 && !network.links.empty() &&
            network.links[0].capacity.size() <= static_cast<std::size_t>(number))
            oddities.fail(line, fmt::format("'{}' is a second class, but the network has one "
                                            "capacity for all: divide it with --classes",
                                            name));
        return number;
    }

    int levelOf(const SourceDemand &given)
    {
        if (!given.level.empty())
            return numberOf(levels, cleanName(given.level), given.line);
        if (!mixed.empty())
            return mixed[turns.next()];
        if (!options.level.empty())
            return numberOf(levels, options.level, 0);
        ++nbWithoutLevel;
        return 0;
    }

    int numberOf(Names &names, const std::string &name, std::size_t line)
    {
        const auto number = names.find(name);
        if (!number)
            oddities.fail(line, fmt::format("no {} is called '{}' ({})", names.kindOfName(), name,
                                            fmt::join(names.all(), ", ")));
        return *number;
    }

    void remarkChoices()
    {
        if (nbWithoutClass > 0 && network.classes.size() > 1)
            oddities.choose("class of " + counted(nbWithoutClass, "demand"),
                            fmt::format("taken as {}", network.classes[0]));
        if (nbWithoutLevel > 0 && network.levels.size() > 1)
            oddities.choose("level of " + counted(nbWithoutLevel, "demand"),
                            fmt::format("taken as {}", network.levels[0]));
        if (levels.turnedUp())
            oddities.choose("order of the levels",
                            fmt::format("taken as that in which they turn up: {}",
                                        fmt::join(network.levels, ", ")));
        if (options.scale != 1.0 && !source.demands.empty())
            oddities.choose("bandwidths of demands",
                            fmt::format("multiplied by {}", options.scale));
    }

    const Source &source;
    Network &network;
    const ReadOptions &options;
    NodeNames nodes;
    Oddities oddities;
    Names classes;
    Names levels;
    Turns turns;
    std::vector<int> mixed; ///< numbers of the levels of the mix
    double factor = 1.0;
    std::size_t nbWithoutClass = 0;
    std::size_t nbWithoutLevel = 0;
};

} // namespace

std::vector<Demand> settleDemands(const Source &source, Network &network,
                                  const ReadOptions &options, Remarks &remarks)
{
    return DemandSettler(source, network, NodesOf::otherFile, options, remarks).settle();
}

std::vector<Demand> settleOwnDemands(const Source &source, Network &network,
                                     const ReadOptions &options, Remarks &remarks)
{
    return DemandSettler(source, network, NodesOf::source, options, remarks).settle();
}

} // namespace tarnex::formats
