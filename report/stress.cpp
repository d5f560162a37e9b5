#include "report/stress.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tarnex::report
{

namespace
{

using Hops = std::vector<std::uint16_t>;
constexpr std::uint16_t unreached = UINT16_MAX;

using Neighbours = std::vector<std::vector<std::size_t>>;

Neighbours neighboursIn(const Network &network)
{
    Neighbours neighbours(network.nodes.size());
    for (const Link &link : network.links) {
        neighbours[link.from.index()].push_back(link.to.index());
        neighbours[link.to.index()].push_back(link.from.index());
    }
    return neighbours;
}

/** Hops from a node to all; parts that are not joined are a little further off than the furthest
 * node. */
Hops hopsFrom(const Neighbours &neighbours, std::size_t start)
{
    Hops hops(neighbours.size(), unreached);
    hops[start] = 0;
    std::vector<std::size_t> queue{start};
    for (std::size_t i = 0; i < queue.size(); ++i)
        for (const std::size_t next : neighbours[queue[i]])
            if (hops[next] == unreached) {
                hops[next] = static_cast<std::uint16_t>(hops[queue[i]] + 1);
                queue.push_back(next);
            }
    const auto beyond = static_cast<std::uint16_t>(hops[queue.back()] + 2);
    std::ranges::replace(hops, unreached, beyond);
    return hops;
}

std::size_t furthest(const Hops &hops)
{
    return static_cast<std::size_t>(std::ranges::max_element(hops) - hops.begin());
}

/** A first placement: one axis between two nodes far from each other, one towards a third. */
std::vector<Point> roughly(const std::vector<Hops> &hops)
{
    const std::size_t left = furthest(hops[0]);
    const std::size_t right = furthest(hops[left]);
    Hops fromBoth = hops[left];
    for (std::size_t i = 0; i < fromBoth.size(); ++i)
        fromBoth[i] = std::min(fromBoth[i], hops[right][i]);
    const std::size_t top = furthest(fromBoth);
    std::vector<Point> points;
    for (std::size_t i = 0; i < hops.size(); ++i) {
        // Nodes that would be on top of each other are moved apart, each a little elsewhere.
        const double aside = static_cast<double>(i * 7919 % 1000) / 1000.0;
        points.push_back({(hops[left][i] - hops[right][i]) / 2.0 + aside,
                          hops[top][i] + static_cast<double>(i * 104729 % 1000) / 1000.0});
    }
    return points;
}

/** Moves a node to where its distances to all others want it on average. */
void settle(std::size_t node, const Hops &hops, std::vector<Point> &points)
{
    Point sum;
    double weights = 0.0;
    const Point here = points[node];
    for (std::size_t other = 0; other < points.size(); ++other) {
        if (other == node)
            continue;
        const double wanted = hops[other];
        const double weight = 1.0 / (wanted * wanted);
        const Point there = points[other];
        const double dx = here.x - there.x;
        const double dy = here.y - there.y;
        const double distance = std::sqrt(dx * dx + dy * dy);
        const double stretch = distance > 1e-9 ? wanted / distance : 0.0;
        sum = {sum.x + weight * (there.x + stretch * dx),
               sum.y + weight * (there.y + stretch * dy)};
        weights += weight;
    }
    if (weights > 0.0)
        points[node] = {sum.x / weights, sum.y / weights};
}

} // namespace

std::vector<Point> placedByStress(const Network &network)
{
    const Neighbours neighbours = neighboursIn(network);
    std::vector<Hops> hops;
    for (std::size_t node = 0; node < neighbours.size(); ++node)
        hops.push_back(hopsFrom(neighbours, node));
    if (hops.empty())
        return {};
    std::vector<Point> points = roughly(hops);
    constexpr int rounds = 60;
    for (int round = 0; round < rounds; ++round)
        for (std::size_t node = 0; node < points.size(); ++node)
            settle(node, hops[node], points);
    return points;
}

} // namespace tarnex::report
