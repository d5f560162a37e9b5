#include "peer.h"

#include <boost/graph/dijkstra_shortest_paths_no_color_map.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

namespace
{

constexpr double unusable = std::numeric_limits<double>::max();
constexpr double chargePerHop = 0.01; ///< keeps backups short where bandwidth is shared for free

struct Piece {
    double below;
    double slope;
};

// As the engine has them: breakpoints of single precision but for 9/10.
constexpr std::array<Piece, 5> pieces{
    {{1.0F / 3.0F, 1.0}, {2.0F / 3.0F, 3.0}, {0.9, 10.0}, {1.0, 70.0}, {11.0F / 10.0F, 500.0}}};
constexpr double lastSlope = 5000.0;

double slopeAt(double utilization)
{
    for (const Piece &piece : pieces) {
        if (utilization < piece.below)
            return piece.slope;
    }
    return lastSlope;
}

std::vector<property::PlannedLink> bySource(const property::NetworkPlan &plan)
{
    std::vector<property::PlannedLink> sorted = plan.links;
    std::ranges::stable_sort(sorted, {}, &property::PlannedLink::src);
    return sorted;
}

} // namespace

/** Notes the link that reaches each node, and leaves the search at a target. */
struct Peer::Search : boost::default_dijkstra_visitor {
    struct Reached {
        unsigned node;
    };

    explicit Search(Peer &searching) : peer(searching) {}
    void examine_vertex(unsigned node, const Graph &) const
    {
        if (peer.isTarget[node])
            throw Reached{node};
    }
    template <class Edge>
    void edge_relaxed(Edge edge, const Graph &graph) const
    {
        peer.entries[target(edge, graph)] = get(boost::edge_index, graph, edge);
    }

    Peer &peer;
};

Peer::Peer(const property::NetworkPlan &plan, LinkCost linkCost)
    : cost(linkCost), needs(plan.links.size()), weights(plan.links.size()),
      distances(plan.nodes.size()), entries(plan.nodes.size()), isTarget(plan.nodes.size()),
      worstNeeds(plan.links.size())
{
    for (const property::PlannedLink &link : bySource(plan))
        links.push_back(
            {static_cast<unsigned>(link.src), static_cast<unsigned>(link.dst), link.capacity});
    std::vector<std::pair<unsigned, unsigned>> ends;
    for (const Link &link : links)
        ends.emplace_back(link.src, link.dst);
    graph = Graph{boost::edges_are_sorted, ends.begin(), ends.end(),
                  static_cast<unsigned>(plan.nodes.size())};
}

bool Peer::hasRoom(const Link &link, double bw) const
{
    return link.load + link.shared + bw <= link.capacity;
}

void Peer::route(unsigned src, unsigned dst, double bw, Extent extent, LinkPath &path)
{
    const auto weigh = [&](auto slope) {
        std::ranges::transform(links, weights.begin(), [&](const Link &link) {
            return hasRoom(link, bw) ? slope(link) * bw : unusable;
        });
    };
    if (cost == LinkCost::fortz)
        weigh([](const Link &link) { return slopeAt(link.load / link.capacity); });
    else
        weigh([](const Link &) { return 1.0; });
    isTarget[dst] = extent == Extent::untilEgress;
    grow(src);
    isTarget[dst] = false;
    foundCost = distances[dst];
    path.clear();
    if (foundCost < unusable)
        walkBack(src, dst, path);
}

/**
 * Dijkstra's algorithm from `src` over `weights`.
 *
 * The fastest of the forms that Boost.Graph offers. A whole tree over 2000 nodes with Fortz-Thorup
 * weights took 206 us, with an adjacency_list 236, with weights computed when asked for 310, with
 * those and a filtered_graph instead of a price on unusable links 318, with a colour map 327.
 */
void Peer::grow(unsigned src)
{
    const auto nodeIndex = get(boost::vertex_index, graph);
    settledTarget = src;
    try {
        boost::dijkstra_shortest_paths_no_color_map(
            graph, src,
            boost::weight_map(
                boost::make_iterator_property_map(weights.begin(), get(boost::edge_index, graph)))
                .distance_map(boost::make_iterator_property_map(distances.begin(), nodeIndex))
                .predecessor_map(boost::dummy_property_map{})
                .visitor(Search{*this}));
    } catch (const Search::Reached &reached) {
        settledTarget = reached.node;
    }
}

void Peer::walkBack(unsigned src, unsigned dst, LinkPath &path) const
{
    for (unsigned node = dst; node != src; node = links[path.back()].src)
        path.push_back(entries[node]);
    std::ranges::reverse(path);
}

void Peer::costs(double bw, std::vector<unsigned> &slopes) const
{
    slopes.clear();
    for (const Link &link : links) {
        const double slope = cost == LinkCost::fortz ? slopeAt(link.load / link.capacity) : 1.0;
        slopes.push_back(hasRoom(link, bw) ? static_cast<unsigned>(slope) : 0);
    }
}

void Peer::reserve(const LinkPath &path, double bw)
{
    for (const LinkId link : path)
        links[link].load += bw;
}

void Peer::release(const LinkPath &path, double bw)
{
    for (const LinkId link : path)
        links[link].load -= bw;
}

bool Peer::protectLinks(const LinkPath &primary, double bw, std::vector<LinkPath> &backups)
{
    backups.resize(primary.size());
    const std::span<const LinkId> path{primary};
    bool found = true;
    for (std::size_t i = path.size(); found && i-- > 0;)
        found = detour(path.subspan(i, 1), path.subspan(i), bw, backups[i]);
    unshare();
    return found;
}

bool Peer::protectPath(const LinkPath &primary, double bw, std::vector<LinkPath> &backups)
{
    backups.resize(1);
    const bool found = detour(primary, std::span{primary}.last(1), bw, backups.front());
    unshare();
    return found;
}

/** Leads from the first failing link to the end of any link of `rejoin`, and reserves for it. */
bool Peer::detour(std::span<const LinkId> failing, std::span<const LinkId> rejoin, double bw,
                  LinkPath &path)
{
    addNeeds(failing);
    setBackupWeights(failing, bw);
    for (const LinkId link : rejoin)
        isTarget[links[link].dst] = true;
    const unsigned src = links[failing.front()].src;
    grow(src);
    for (const LinkId link : rejoin)
        isTarget[links[link].dst] = false;
    path.clear();
    walkBack(src, settledTarget, path);
    share(path, bw);
    clearNeeds(failing);
    return !path.empty();
}

/** Prices a link by what it has to reserve on top. */
void Peer::setBackupWeights(std::span<const LinkId> failing, double bw)
{
    for (LinkId id = 0; id < links.size(); ++id) {
        const double extra = std::max(0.0, worstNeeds[id] + bw - links[id].shared);
        weights[id] = hasRoom(links[id], extra) ? extra + chargePerHop * bw : unusable;
    }
    for (const LinkId link : failing)
        weights[link] = unusable;
}

void Peer::addNeeds(std::span<const LinkId> failing)
{
    for (const LinkId failed : failing) {
        for (const OnLink &need : needs[failed])
            worstNeeds[need.link] = std::max(worstNeeds[need.link], need.bw);
    }
}

void Peer::clearNeeds(std::span<const LinkId> failing)
{
    for (const LinkId failed : failing) {
        for (const OnLink &need : needs[failed])
            worstNeeds[need.link] = 0.0;
    }
}

/** Raises what the links of a backup reserve, for the failures of `worstNeeds`. */
void Peer::share(const LinkPath &backup, double bw)
{
    for (const LinkId link : backup) {
        sharedBefore.push_back({link, links[link].shared});
        links[link].shared = std::max(links[link].shared, worstNeeds[link] + bw);
    }
}

void Peer::unshare()
{
    for (; !sharedBefore.empty(); sharedBefore.pop_back())
        links[sharedBefore.back().link].shared = sharedBefore.back().bw;
}

void Peer::store(const LinkPath &backup, std::span<const LinkId> failing, double bw)
{
    for (const LinkId failed : failing) {
        for (const LinkId link : backup) {
            std::vector<OnLink> &row = needs[failed];
            auto need = std::ranges::find(row, link, &OnLink::link);
            if (need == row.end())
                need = row.insert(row.end(), {link, 0.0});
            need->bw += bw;
            links[link].shared = std::max(links[link].shared, need->bw);
        }
    }
}

bool Peer::fits(const LinkPath &path, double bw) const
{
    return std::ranges::all_of(path, [&](LinkId link) { return hasRoom(links[link], bw); });
}

double Peer::shareWithoutRoom(double bw) const
{
    const auto full = std::ranges::count_if(links, [&](const Link &l) { return !hasRoom(l, bw); });
    return static_cast<double>(full) / static_cast<double>(links.size());
}

std::vector<Long> Peer::nodesOf(const LinkPath &path) const
{
    std::vector<Long> nodes{static_cast<Long>(links[path.front()].src)};
    for (const LinkId link : path)
        nodes.push_back(static_cast<Long>(links[link].dst));
    return nodes;
}

LinkPath Peer::linksOf(std::span<const Long> nodes) const
{
    LinkPath path;
    for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
        const auto src = static_cast<unsigned>(nodes[i]);
        const auto dst = static_cast<unsigned>(nodes[i + 1]);
        const auto [first, last] = std::ranges::equal_range(links, src, {}, &Link::src);
        const auto found = std::find_if(first, last, [&](const Link &l) { return l.dst == dst; });
        if (found == last)
            throw std::runtime_error("two nodes of a path are not linked");
        path.push_back(static_cast<LinkId>(found - links.begin()));
    }
    return path;
}
