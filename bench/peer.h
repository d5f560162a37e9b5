/**
 * What a user writes who does without the engine: a Boost.Graph digraph with plain arrays of
 * reservations beside it, a shortest path over the links that have room, and backups that share
 * bandwidth between single link failures. One class type, no preemption, no records of LSPs.
 *
 * Links are named by their position in the order of their source nodes, nodes by ids without gaps.
 */
#ifndef TARNEX_BENCH_PEER_H
#define TARNEX_BENCH_PEER_H

#include "support/random_network.h"

#include <boost/graph/compressed_sparse_row_graph.hpp>

#include <span>
#include <vector>

/** What a link costs a primary: the bandwidth itself, or times the Fortz-Thorup slope. */
enum class LinkCost { hops, fortz };

/** How far a search for a primary goes. */
enum class Extent { wholeTree, untilEgress };

using LinkId = unsigned;
using LinkPath = std::vector<LinkId>;

class Peer
{
public:
    /** A network with node ids 0, 1, 2, ... and nothing reserved. */
    Peer(const property::NetworkPlan &plan, LinkCost linkCost);

    /** Finds the cheapest path with room for `bw`; without one `path` is empty. */
    void route(unsigned src, unsigned dst, double bw, Extent extent, LinkPath &path);
    /** Cost of what `route` has found last. */
    double routeCost() const { return foundCost; }

    void reserve(const LinkPath &path, double bw);
    void release(const LinkPath &path, double bw);

    /**
     * Finds a backup for each link of a primary, in the order of the links; they share with each
     * other as with the stored ones. Nothing is reserved; false when a link has none.
     */
    bool protectLinks(const LinkPath &primary, double bw, std::vector<LinkPath> &backups);
    /** Finds one backup that avoids all links of a primary; false when there is none. */
    bool protectPath(const LinkPath &primary, double bw, std::vector<LinkPath> &backups);
    /** Reserves for a backup that is used when one of the links `failing` fails. */
    void store(const LinkPath &backup, std::span<const LinkId> failing, double bw);

    /** By link, as a network names them that is ordered by source: the slope of the cost, 0 where
     * there is no room for `bw`. */
    void costs(double bw, std::vector<unsigned> &slopes) const;
    /** Whether every link of a path has room for `bw`. */
    bool fits(const LinkPath &path, double bw) const;
    /** Share of the links that lack room for `bw`. */
    double shareWithoutRoom(double bw) const;
    std::vector<Long> nodesOf(const LinkPath &path) const;
    /** Throws when two successive nodes are not linked. */
    LinkPath linksOf(std::span<const Long> nodes) const;

private:
    /** Numbers of 32 bits and nothing bundled: a search touches little memory. */
    using Graph =
        boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, boost::no_property,
                                           boost::no_property, unsigned, unsigned>;

    struct Link {
        unsigned src, dst;
        double capacity;
        double load = 0.0;   ///< reserved by primaries
        double shared = 0.0; ///< reserved by backups: the largest need of one failure
    };
    struct OnLink {
        LinkId link;
        double bw;
    };
    struct Search;

    bool hasRoom(const Link &link, double bw) const;
    void grow(unsigned src);
    bool detour(std::span<const LinkId> failing, std::span<const LinkId> rejoin, double bw,
                LinkPath &path);
    void setBackupWeights(std::span<const LinkId> failing, double bw);
    void walkBack(unsigned src, unsigned dst, LinkPath &path) const;
    void addNeeds(std::span<const LinkId> failing);
    void clearNeeds(std::span<const LinkId> failing);
    void share(const LinkPath &backup, double bw);
    void unshare();

    LinkCost cost;
    std::vector<Link> links;
    Graph graph;
    std::vector<std::vector<OnLink>> needs; ///< by failed link: the backup bandwidth it activates
    double foundCost = 0.0;

    // Working storage of one search, kept from one to the next.
    std::vector<double> weights;      ///< by link
    std::vector<double> distances;    ///< by node
    std::vector<LinkId> entries;      ///< by node: the link that reaches it
    std::vector<char> isTarget;       ///< by node: the search may stop here
    unsigned settledTarget = 0;       ///< the target that a search has stopped at
    std::vector<double> worstNeeds;   ///< by link, largest over the failures in question
    std::vector<OnLink> sharedBefore; ///< what the backups found so far have changed
};

#endif
