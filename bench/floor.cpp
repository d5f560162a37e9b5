#include "floor.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace
{
constexpr unsigned unreached = std::numeric_limits<unsigned>::max();
} // namespace

Floor::Floor(const property::NetworkPlan &plan, LinkCost linkCost)
    : cost(linkCost), nbNodes(plan.nodes.size())
{
    std::vector<property::PlannedLink> links = plan.links;
    std::ranges::stable_sort(links, {}, &property::PlannedLink::src);
    for (const property::PlannedLink &link : links) {
        sources.push_back(static_cast<unsigned>(link.src));
        destinations.push_back(static_cast<unsigned>(link.dst));
    }
    for (End *end : {&ahead, &behind}) {
        end->labels.resize(nbNodes);
        end->queue.resize(nbNodes);
    }
}

void Floor::prepare(const Peer &peer, double bw)
{
    peer.costs(bw, slopes);
    layOut(ahead, nbNodes, sources, destinations, slopes);
    layOut(behind, nbNodes, destinations, sources, slopes);
}

void Floor::layOut(End &end, std::size_t nbNodes, const std::vector<unsigned> &from,
                   const std::vector<unsigned> &to, const std::vector<unsigned> &slopes)
{
    end.first.assign(nbNodes + 2, 0);
    for (std::size_t link = 0; link < from.size(); ++link)
        end.first[from[link] + 2] += slopes[link] > 0 ? 1 : 0;
    for (std::size_t node = 2; node < end.first.size(); ++node)
        end.first[node] += end.first[node - 1];
    end.arcs.resize(end.first.back());
    for (std::size_t link = 0; link < from.size(); ++link) {
        if (slopes[link] > 0)
            end.arcs[end.first[from[link] + 1]++] = {to[link], slopes[link]};
    }
}

std::optional<unsigned> Floor::search(unsigned src, unsigned dst)
{
    ++stamp;
    return cost == LinkCost::fortz ? searchSlopes(src, dst) : searchLevels(src, dst);
}

std::optional<unsigned> Floor::searchLevels(unsigned src, unsigned dst)
{
    for (const auto &[end, start] : {std::pair{&ahead, src}, std::pair{&behind, dst}}) {
        end->labels[start] = {stamp, 0};
        end->queue[0] = start;
        end->next = 0;
        end->nbQueued = 1;
        end->nearest = 0;
    }
    while (ahead.next < ahead.nbQueued && behind.next < behind.nbQueued) {
        const bool aheadIsLess = ahead.nbQueued - ahead.next < behind.nbQueued - behind.next;
        if (aheadIsLess ? growLevel(ahead, behind) : growLevel(behind, ahead))
            return ahead.nearest + behind.nearest;
    }
    return std::nullopt;
}

bool Floor::growLevel(End &end, const End &other)
{
    ++end.nearest;
    for (const std::size_t last = end.nbQueued; end.next < last; ++end.next) {
        const unsigned node = end.queue[end.next];
        for (unsigned i = end.first[node]; i < end.first[node + 1]; ++i) {
            const unsigned to = end.arcs[i].node;
            if (end.labels[to].stamp == stamp)
                continue;
            if (other.labels[to].stamp == stamp)
                return true;
            end.labels[to].stamp = stamp;
            end.queue[end.nbQueued++] = to;
        }
    }
    return false;
}

void Floor::push(End &end, unsigned node, unsigned distance)
{
    end.labels[node] = {stamp, distance};
    const unsigned bucket = distance % End::nbBuckets;
    end.buckets[bucket].push_back(node);
    end.filled[bucket / 64] |= std::uint64_t{1} << bucket % 64;
    ++end.nbQueued;
}

/** Goes on to the nearest bucket with a node; whether there is one. */
bool Floor::advance(End &end) const
{
    if (end.nbQueued == 0)
        return false;
    unsigned bucket = end.nearest % End::nbBuckets;
    std::uint64_t bits = end.filled[bucket / 64] >> bucket % 64 << bucket % 64;
    unsigned word = bucket / 64;
    while (bits == 0)
        bits = end.filled[word = (word + 1) % (End::nbBuckets / 64)];
    bucket = word * 64 + static_cast<unsigned>(std::countr_zero(bits));
    end.nearest += (bucket - end.nearest) % End::nbBuckets;
    return true;
}

/** Takes a node of the nearest bucket and labels what its arcs lead to. */
void Floor::settle(End &end, const End &other)
{
    const unsigned bucket = end.nearest % End::nbBuckets;
    const unsigned node = end.buckets[bucket].back();
    end.buckets[bucket].pop_back();
    --end.nbQueued;
    if (end.buckets[bucket].empty())
        end.filled[bucket / 64] &= ~(std::uint64_t{1} << bucket % 64);
    if (end.labels[node].distance != end.nearest)
        return;
    for (unsigned i = end.first[node]; i < end.first[node + 1]; ++i) {
        const auto [to, slope] = end.arcs[i];
        const unsigned distance = end.nearest + slope;
        if (end.labels[to].stamp == stamp && end.labels[to].distance <= distance)
            continue;
        push(end, to, distance);
        if (other.labels[to].stamp == stamp)
            best = std::min(best, distance + other.labels[to].distance);
    }
}

/** Takes out what a search has left in the buckets. */
void Floor::empty(End &end) const
{
    while (advance(end)) {
        const unsigned bucket = end.nearest % End::nbBuckets;
        end.nbQueued -= end.buckets[bucket].size();
        end.buckets[bucket].clear();
        end.filled[bucket / 64] &= ~(std::uint64_t{1} << bucket % 64);
    }
}

std::optional<unsigned> Floor::searchSlopes(unsigned src, unsigned dst)
{
    best = unreached;
    for (const auto &[end, start] : {std::pair{&ahead, src}, std::pair{&behind, dst}}) {
        end->nearest = 0;
        push(*end, start, 0);
    }
    while (advance(ahead) && advance(behind) && ahead.nearest + behind.nearest < best) {
        if (ahead.nbQueued < behind.nbQueued)
            settle(ahead, behind);
        else
            settle(behind, ahead);
    }
    empty(ahead);
    empty(behind);
    return best == unreached ? std::nullopt : std::optional{best};
}
