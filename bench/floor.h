/**
 * The least that a search for a path takes: by hand, on flat arrays of the links that have room,
 * laid out beforehand, from both ends. It keeps no books, admits nothing, and of equally good paths
 * it takes any; it only finds the cost of one.
 */
#ifndef TARNEX_BENCH_FLOOR_H
#define TARNEX_BENCH_FLOOR_H

#include "peer.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

class Floor
{
public:
    /** The nodes and links of a network; `linkCost` says which search suits. */
    Floor(const property::NetworkPlan &plan, LinkCost linkCost);

    /** Takes over which links have room at a peer, and their slopes. */
    void prepare(const Peer &peer, double bw);
    /** The cost of the cheapest path to another node, in slopes; nothing if there is none. */
    std::optional<unsigned> search(unsigned src, unsigned dst);

private:
    struct Arc {
        unsigned node, slope;
    };
    struct Label {
        std::uint32_t stamp = 0;
        unsigned distance = 0;
    };
    /** The search from one end: nodes by distance, in as many buckets as the distances that lie in
     * the queue at a time, rounded up to a power of 2. */
    struct End {
        static constexpr unsigned nbBuckets = 8192;

        std::vector<unsigned> first; ///< by node: its first arc
        std::vector<Arc> arcs;
        std::vector<Label> labels; ///< by node
        std::vector<unsigned> queue;
        std::array<std::vector<unsigned>, nbBuckets> buckets;
        std::array<std::uint64_t, nbBuckets / 64> filled{}; ///< a bit per bucket
        unsigned nearest = 0;                               ///< distance that was reached
        std::size_t next = 0;
        std::size_t nbQueued = 0;
    };

    static void layOut(End &end, std::size_t nbNodes, const std::vector<unsigned> &from,
                       const std::vector<unsigned> &to, const std::vector<unsigned> &slopes);
    std::optional<unsigned> searchLevels(unsigned src, unsigned dst);
    std::optional<unsigned> searchSlopes(unsigned src, unsigned dst);
    bool growLevel(End &end, const End &other);
    void push(End &end, unsigned node, unsigned distance);
    bool advance(End &end) const;
    void empty(End &end) const;
    void settle(End &end, const End &other);

    LinkCost cost;
    std::size_t nbNodes;
    std::vector<unsigned> sources, destinations; ///< by link
    std::vector<unsigned> slopes;                ///< by link; 0: no room
    End ahead, behind;
    std::uint32_t stamp = 0;
    unsigned best = 0; ///< cost of a path found so far
};

#endif
