#include "planning/failures.h"

#include "planning/link_finder.h"
#include "planning/names.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace tarnex::planning
{

namespace
{

LinkId linkAt(std::size_t index) { return LinkId{static_cast<std::int32_t>(index)}; }

std::vector<Failure> everyLink(const Network &network)
{
    std::vector<Failure> failures;
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        failures.push_back({network.nameOf(link.from) + " > " + network.nameOf(link.to),
                            FailureSet::links,
                            {linkAt(i)},
                            {}});
    }
    return failures;
}

std::vector<Failure> everyDuplex(const Network &network)
{
    const LinkFinder finder{network};
    std::vector<Failure> failures;
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        const std::optional<LinkId> back = finder.between(link.to, link.from);
        if (back && back->index() < i)
            continue; // came with the other direction
        Failure failure{network.nameOf(link.from) + (back ? " - " : " > ") +
                            network.nameOf(link.to),
                        FailureSet::duplex,
                        {linkAt(i)},
                        {}};
        if (back)
            failure.links.push_back(*back); // which has the larger id
        failures.push_back(std::move(failure));
    }
    return failures;
}

/** Adds the links of a failure's nodes, and puts all in order. */
void complete(Failure &failure, const std::vector<std::vector<LinkId>> &linksOf)
{
    for (const NodeId node : failure.nodes) {
        const std::vector<LinkId> &links = linksOf[node.index()];
        failure.links.insert(failure.links.end(), links.begin(), links.end());
    }
    std::ranges::sort(failure.links);
    failure.links.erase(std::unique(failure.links.begin(), failure.links.end()),
                        failure.links.end());
}

/** By node: the links into it and out of it. */
std::vector<std::vector<LinkId>> linksOfNodes(const Network &network)
{
    std::vector<std::vector<LinkId>> links(network.nodes.size());
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        links[network.links[i].from.index()].push_back(linkAt(i));
        links[network.links[i].to.index()].push_back(linkAt(i));
    }
    return links;
}

std::vector<Failure> everyNode(const Network &network)
{
    const auto links = linksOfNodes(network);
    std::vector<Failure> failures;
    for (std::size_t i = 0; i < network.nodes.size(); ++i) {
        const NodeId node{static_cast<std::int32_t>(i)};
        complete(
            failures.emplace_back(Failure{network.nodes[i].name, FailureSet::nodes, {}, {node}}),
            links);
    }
    return failures;
}

Failure bothOf(const Failure &one, const Failure &other)
{
    Failure both{one.name + " + " + other.name, FailureSet::pairs, {}, {}};
    std::ranges::merge(one.links, other.links, std::back_inserter(both.links));
    return both;
}

std::size_t nbPairsOf(std::size_t count) { return count < 2 ? 0 : count * (count - 1) / 2; }

} // namespace

std::string_view nameOf(FailureSet set)
{
    switch (set) {
    case FailureSet::links:
        return "links";
    case FailureSet::duplex:
        return "duplex";
    case FailureSet::nodes:
        return "nodes";
    case FailureSet::pairs:
        return "pairs";
    case FailureSet::named:
        return "named";
    }
    return {};
}

void FailureList::add(const Network &network, FailureSet set)
{
    switch (set) {
    case FailureSet::links:
        return append(everyLink(network), false);
    case FailureSet::duplex:
        return append(everyDuplex(network), false);
    case FailureSet::nodes:
        return append(everyNode(network), false);
    case FailureSet::pairs:
        return append(everyDuplex(network), true);
    case FailureSet::named:
        return;
    }
}

void FailureList::add(const Network &network, std::vector<formats::NamedFailure> named)
{
    const auto links = linksOfNodes(network);
    std::vector<Failure> failures;
    for (formats::NamedFailure &one : named)
        complete(failures.emplace_back(Failure{std::move(one.name), FailureSet::named,
                                               std::move(one.links), std::move(one.nodes)}),
                 links);
    append(std::move(failures), false);
}

void FailureList::append(std::vector<Failure> singles, bool isOfPairs)
{
    const std::size_t count = singles.size();
    Stretch stretch{nbFailures, isOfPairs, std::move(singles), {}};
    if (isOfPairs) // those with the same first one follow each other
        for (std::size_t first = 0, before = 0; first < count; before += count - ++first)
            stretch.pairsWith.push_back(before);
    stretches.push_back(std::move(stretch));
    nbFailures += isOfPairs ? nbPairsOf(count) : count;
}

Failure FailureList::operator[](std::size_t position) const
{
    const auto past = std::ranges::upper_bound(stretches, position, {}, &Stretch::begin);
    const Stretch &stretch = *std::prev(past);
    const std::size_t rest = position - stretch.begin;
    if (!stretch.isOfPairs)
        return stretch.singles[rest];
    const auto last = stretch.pairsWith.end() - 1; // is the first of none
    const auto with = std::prev(std::upper_bound(stretch.pairsWith.begin(), last, rest));
    const auto first = static_cast<std::size_t>(with - stretch.pairsWith.begin());
    return bothOf(stretch.singles[first], stretch.singles[first + 1 + rest - *with]);
}

} // namespace tarnex::planning
