#include "planning/diff.h"

#include "planning/names.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <variant>

namespace tarnex::planning
{

namespace
{

/** What a demand is known by in any plan; `place` tells those apart that agree in the rest. */
using DemandKey =
    std::tuple<std::string, std::string, std::string, std::string, std::string, std::size_t>;

DemandKey keyOf(const Network &network, const Demand &demand)
{
    if (!demand.name.empty())
        return {demand.name, {}, {}, {}, {}, 0};
    return {{},
            network.nameOf(demand.ingress),
            network.nameOf(demand.egress),
            network.classes.at(static_cast<std::size_t>(demand.classType)),
            network.levels.at(static_cast<std::size_t>(demand.level)),
            0};
}

std::vector<DemandKey> keysOf(const Plan &plan)
{
    std::map<DemandKey, std::size_t> seen;
    std::vector<DemandKey> keys;
    for (const Demand &demand : plan.demands) {
        DemandKey key = keyOf(plan.network, demand);
        const std::size_t place = seen[key]++;
        std::get<5>(key) = place;
        keys.push_back(std::move(key));
    }
    return keys;
}

/** Pairs the things of two plans that have the same key: first those of the second plan in order,
 * then what is in the first alone. */
template <class Id, class Key>
std::vector<std::pair<std::optional<Id>, std::optional<Id>>> pairUp(const std::vector<Key> &before,
                                                                    const std::vector<Key> &after)
{
    const auto idAt = [](std::size_t i) { return Id{static_cast<std::int32_t>(i)}; };
    std::map<Key, Id> rest;
    for (std::size_t i = 0; i < before.size(); ++i)
        rest.emplace(before[i], idAt(i));
    std::vector<std::pair<std::optional<Id>, std::optional<Id>>> pairs;
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto found = rest.find(after[i]);
        pairs.emplace_back(found == rest.end() ? std::nullopt : std::optional{found->second},
                           idAt(i));
        if (found != rest.end())
            rest.erase(found);
    }
    std::vector<Id> left;
    left.reserve(rest.size());
    for (const auto &[key, id] : rest)
        left.push_back(id);
    std::ranges::sort(left);
    for (const Id id : left)
        pairs.emplace_back(id, std::nullopt);
    return pairs;
}

using NamedPath = std::vector<std::string>;

NamedPath namedPath(const Network &network, const std::vector<NodeId> &path)
{
    NamedPath names;
    for (const NodeId node : path)
        names.push_back(network.nameOf(node));
    return names;
}

/** A placed demand in names, so that it can be compared with one of another plan. */
struct NamedLsp {
    double bandwidth = 0.0;
    NamedPath path;
    std::vector<std::pair<LspKind, NamedPath>> backups;
};

std::optional<NamedLsp> lspOf(const Plan &plan, std::optional<DemandId> id)
{
    const auto *lsp = id ? std::get_if<PlannedLsp>(&plan.outcomes.at(id->index())) : nullptr;
    if (!lsp)
        return std::nullopt;
    NamedLsp named{.bandwidth = plan.demands[id->index()].bandwidth,
                   .path = namedPath(plan.network, lsp->path),
                   .backups = {}};
    for (const PlannedBackup &backup : lsp->backups)
        named.backups.emplace_back(backup.kind, namedPath(plan.network, backup.path));
    return named;
}

std::optional<Change> changeOf(const Plan &before, std::optional<DemandId> idBefore,
                               const Plan &after, std::optional<DemandId> idAfter)
{
    const auto old = lspOf(before, idBefore);
    const auto now = lspOf(after, idAfter);
    if (old && now) {
        if (old->path != now->path)
            return Change::moved;
        if (old->bandwidth != now->bandwidth)
            return Change::resized;
        return old->backups != now->backups ? std::optional{Change::reprotected} : std::nullopt;
    }
    if (now)
        return Change::gained;
    if (old)
        return Change::lost;
    if (!idBefore)
        return Change::added;
    return idAfter ? std::nullopt : std::optional{Change::removed};
}

std::vector<DemandChange> demandChanges(const Plan &before, const Plan &after)
{
    std::vector<DemandChange> changes;
    for (const auto &[old, now] : pairUp<DemandId>(keysOf(before), keysOf(after))) {
        if (const auto change = changeOf(before, old, after, now))
            changes.push_back({.change = *change,
                               .name = now ? nameOf(after.network, after.demands, *now)
                                           : nameOf(before.network, before.demands, *old),
                               .before = old,
                               .after = now});
    }
    return changes;
}

std::vector<std::pair<std::string, std::string>> linkKeys(const Network &network)
{
    std::vector<std::pair<std::string, std::string>> keys;
    for (const Link &link : network.links)
        keys.emplace_back(network.nameOf(link.from), network.nameOf(link.to));
    return keys;
}

std::optional<std::size_t> classNamed(const Network &network, const std::string &name)
{
    const auto found = std::ranges::find(network.classes, name);
    if (found == network.classes.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - network.classes.begin());
}

/** What a link has and reserves in a class; 0 where there is no such link or class. */
struct Figures {
    double capacity = 0.0;
    double reserved = 0.0;
};

Figures figuresOf(const Plan &plan, std::optional<LinkId> link, const std::string &className)
{
    const auto at = classNamed(plan.network, className);
    if (!link || !at)
        return {};
    const auto &capacity = plan.network.links[link->index()].capacity;
    const auto &levels = plan.use.at(link->index()).total.at(*at);
    return {.capacity = *at < capacity.size() ? capacity[*at] : 0.0,
            .reserved = std::accumulate(levels.begin(), levels.end(), 0.0)};
}

/** The classes of both plans, those of the second first. */
std::vector<std::string> classesOf(const Plan &before, const Plan &after)
{
    std::vector<std::string> classes = after.network.classes;
    for (const std::string &name : before.network.classes) {
        if (!classNamed(after.network, name))
            classes.push_back(name);
    }
    return classes;
}

std::vector<LinkChange> linkChanges(const Plan &before, const Plan &after, double share)
{
    std::vector<LinkChange> changes;
    const auto classes = classesOf(before, after);
    for (const auto &[old, now] :
         pairUp<LinkId>(linkKeys(before.network), linkKeys(after.network))) {
        for (const std::string &name : classes) {
            const Figures was = figuresOf(before, old, name);
            const Figures is = figuresOf(after, now, name);
            const LinkChange change{.name = now ? nameOf(after.network, *now)
                                                : nameOf(before.network, *old),
                                    .className = name,
                                    .before = old,
                                    .after = now,
                                    .reservedBefore = was.reserved,
                                    .reservedAfter = is.reserved,
                                    .capacity = now ? is.capacity : was.capacity};
            if (!old || !now || std::abs(change.gain()) > share)
                changes.push_back(change);
        }
    }
    return changes;
}

/** The names of nodes that a network has and another has not. */
std::vector<std::string> nodesOnlyIn(const Network &network, const Network &other)
{
    std::set<std::string_view> known;
    for (const Node &node : other.nodes)
        known.insert(node.name);
    std::vector<std::string> names;
    for (const Node &node : network.nodes) {
        if (!known.contains(node.name))
            names.push_back(node.name);
    }
    return names;
}

} // namespace

const char *wordsFor(Change change)
{
    switch (change) {
    case Change::moved:
        return "moved";
    case Change::gained:
        return "gained";
    case Change::lost:
        return "lost";
    case Change::reprotected:
        return "other backups";
    case Change::resized:
        return "other bandwidth";
    case Change::added:
        return "added, not placed";
    case Change::removed:
        return "removed, was not placed";
    }
    return "";
}

double LinkChange::gain() const
{
    const double gained = reservedAfter - reservedBefore;
    if (gained == 0.0)
        return 0.0;
    return capacity > 0.0 ? gained / capacity
                          : std::copysign(std::numeric_limits<double>::infinity(), gained);
}

PlanDiff diff(const Plan &before, const Plan &after, double share)
{
    return {.demands = demandChanges(before, after),
            .links = linkChanges(before, after, share),
            .nodesGained = nodesOnlyIn(after.network, before.network),
            .nodesLost = nodesOnlyIn(before.network, after.network)};
}

} // namespace tarnex::planning
