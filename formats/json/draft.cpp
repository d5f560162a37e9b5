#include "formats/json/draft.h"

#include "formats/json/events.h"
#include "formats/json/schemas.h"
#include "formats/node_pair.h"
#include "formats/number.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarnex::formats::json
{

namespace
{

std::int32_t idBelow(std::size_t count, std::int64_t id, const std::string &what)
{
    if (id < 0 || static_cast<std::uint64_t>(id) >= count)
        throw Problem("there is no " + what + " " + std::to_string(id) + ", expected an id below " +
                      std::to_string(count));
    return static_cast<std::int32_t>(id);
}

/** Makes room for one more; beyond the first thousand for as many as the rest of the text is likely
 * to hold, so that a large list is not copied when memory is fullest. */
template <class T>
void reserveNext(std::vector<T> &list, const TextStream &text)
{
    if (list.size() < list.capacity() || list.size() < 1000 || text.size() <= text.offset())
        return;
    const double perOne = static_cast<double>(text.offset()) / static_cast<double>(list.size());
    const double expected = static_cast<double>(text.size()) / perOne;
    list.reserve(static_cast<std::size_t>(expected * 1.05) + 16);
}

} // namespace

void Draft::setKind(const std::string &schema)
{
    if (schema == networkSchema)
        kind = Kind::network;
    else if (schema == demandsSchema)
        kind = Kind::demands;
    else if (schema == planSchema)
        kind = Kind::plan;
    else
        throw Problem("unknown schema \"" + schema + "\", expected \"" + networkSchema + "\", \"" +
                      demandsSchema + "\" or \"" + planSchema + "\"");
}

void Draft::addName(std::vector<std::string> &names, std::string &name)
{
    if (std::find(names.begin(), names.end(), name) != names.end())
        throw Problem("a second \"" + name + "\" in the list");
    if (names.size() == static_cast<std::size_t>(maxLevels))
        throw Problem("expected at most " + std::to_string(maxLevels) + " names");
    names.push_back(std::move(name));
}

void Draft::addNode()
{
    if (longitude.has_value() != latitude.has_value())
        throw Problem(R"(expected both "longitude" and "latitude" or neither in a node)");
    if (longitude)
        node.at = Coordinates{*longitude, *latitude};
    const NodeId id(static_cast<std::int32_t>(plan.network.nodes.size()));
    if (!nodesByName.emplace(node.name, id).second)
        throw Problem("a second node \"" + node.name + "\"");
    plan.network.nodes.push_back(std::move(node));
}

void Draft::addLink()
{
    Network &network = plan.network;
    if (from == to)
        throw Problem("expected a link to another node, not from \"" + network.nameOf(from) +
                      "\" to itself");
    if (!nodePairs.insert(numberOf(from, to)).second)
        throw Problem("a second link from \"" + network.nameOf(from) + "\" to \"" +
                      network.nameOf(to) + "\"");
    if (row.size() != network.classes.size())
        throw Problem("expected a capacity per class, which are " +
                      std::to_string(network.classes.size()));
    network.links.push_back({from, to, row});
}

void Draft::beginDemand()
{
    from = to = {};
    demand = {};
    demand.classType = demand.level = -1;
    outcome = {};
}

void Draft::addDemand()
{
    if ((demand.classType < 0 && plan.network.classes.size() > 1) ||
        (demand.level < 0 && plan.network.levels.size() > 1))
        throw Problem(std::string("expected \"") + (demand.level < 0 ? "level" : "class") +
                      "\" in a demand");
    demand.ingress = from;
    demand.egress = to;
    demand.classType = std::max(demand.classType, 0);
    demand.level = std::max(demand.level, 0);
    reserveNext(plan.demands, *text);
    plan.demands.push_back(std::move(demand));
    if (kind != Kind::plan)
        return;
    reserveNext(plan.outcomes, *text);
    plan.outcomes.push_back(std::move(outcome));
}

void Draft::addRow()
{
    if (rows.size() == plan.network.classes.size() || row.size() != plan.network.levels.size())
        throw Problem("expected a list per class with a number per level");
    rows.push_back(row);
}

std::vector<std::vector<double>> Draft::takeRows()
{
    if (rows.size() != plan.network.classes.size())
        throw Problem("expected a list per class with a number per level");
    return std::move(rows);
}

void Draft::addUse()
{
    if (plan.use.size() == plan.network.links.size())
        throw Problem("expected no more than a use per link");
    plan.use.push_back(std::move(use));
}

void Draft::addSetUp(std::int64_t demandId)
{
    const DemandId id(idBelow(plan.demands.size(), demandId, "demand"));
    isSetUp.resize(plan.demands.size());
    if (isSetUp[id.index()])
        throw Problem("demand " + std::to_string(demandId) + " a second time");
    isSetUp[id.index()] = true;
    plan.setUp.push_back(id);
}

void Draft::setEngineSize()
{
    plan.options.engine.classTypes = static_cast<int>(plan.network.classes.size());
    plan.options.engine.levels = static_cast<int>(plan.network.levels.size());
}

void Draft::setPrices()
{
    const std::vector<std::vector<double>> prices = takeRows();
    for (std::size_t classType = 0; classType < prices.size(); ++classType)
        std::copy(prices[classType].begin(), prices[classType].end(),
                  plan.options.engine.preemptionPrices[classType].begin());
}

void Draft::addProtection(LevelScheme scheme)
{
    if (plan.options.protection.size() == plan.network.levels.size())
        throw Problem("expected no more than a word per level");
    plan.options.protection.push_back(scheme);
}

NodeId Draft::nodeId(std::int64_t id) const
{
    return NodeId(idBelow(plan.network.nodes.size(), id, "node"));
}

LinkId Draft::linkId(std::int64_t id) const
{
    return LinkId(idBelow(plan.network.links.size(), id, "link"));
}

NodeId Draft::nodeNamed(const std::string &name)
{
    const auto found = nodesByName.find(name);
    if (found != nodesByName.end())
        return found->second;
    if (kind != Kind::demands)
        throw Problem("there is no node \"" + name + "\"");
    const NodeId id(static_cast<std::int32_t>(plan.network.nodes.size()));
    nodesByName.emplace(name, id);
    plan.network.nodes.push_back({name, {}});
    return id;
}

void Draft::setEnd(NodeId &end, NodeId said)
{
    if (end.isValid() && end != said)
        throw Problem("expected the name and the id of the same node");
    end = said;
}

void Draft::setOutcome(Outcome &&became)
{
    if (!std::holds_alternative<std::monostate>(outcome))
        throw Problem(R"(expected one of "lsp", "preempted" and "refused" in a demand)");
    if (const auto *gaveWay = std::get_if<PreemptedLsp>(&became))
        lastPreempting = std::max(lastPreempting, gaveWay->by);
    outcome = std::move(became);
}

void Draft::addBackup()
{
    lsp.backups.push_back(std::move(backup));
    backup = {};
}

void Draft::checkPreempted() const
{
    if (lastPreempting.isValid() && lastPreempting.index() >= plan.demands.size())
        throw Problem("there is no demand " + std::to_string(lastPreempting.value) +
                      ", which others are said to have given way to");
}

void Draft::finish() const
{
    checkPreempted();
    if (kind == Kind::plan && plan.use.size() != plan.network.links.size())
        throw Problem("expected a use per link");
}

void expectBefore(bool isThere, const char *member)
{
    if (!isThere)
        throw Problem(std::string("expected \"") + member + "\" before this");
}

void expectSome(const std::vector<std::string> &names)
{
    if (names.empty())
        throw Problem("expected at least one name");
}

void expectNextId(std::int64_t id, std::size_t next)
{
    if (id < 0 || static_cast<std::uint64_t>(id) != next)
        throw Problem("expected the id " + std::to_string(next) + ", the next in the list");
}

double amount(double value)
{
    if (!(value >= 0.0))
        throw Problem("expected a number of 0 or more");
    return value;
}

double bandwidth(double value)
{
    if (!(value <= largestBandwidth))
        throw Problem("expected a number that is no larger than 1e100");
    return amount(value);
}

int count(std::int64_t value)
{
    if (value < 0 || value > std::numeric_limits<int>::max())
        throw Problem("expected an integer of 0 or more");
    return static_cast<int>(value);
}

int placeAmong(const std::vector<std::string> &names, const std::string &name)
{
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
        std::string expected;
        for (const std::string &one : names)
            expected += (expected.empty() ? " \"" : ", \"") + one + "\"";
        throw Problem("unknown name \"" + name + "\", expected" +
                      (expected.empty() ? " none" : expected));
    }
    return static_cast<int>(found - names.begin());
}

} // namespace tarnex::formats::json
