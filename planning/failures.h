/** What can fail at once in a network. */
#ifndef TARNEX_PLANNING_FAILURES_H
#define TARNEX_PLANNING_FAILURES_H

#include "formats/failure_sets.h"
#include "formats/network.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::planning
{

/** Which failures are looked at. */
enum class FailureSet {
    links,  ///< every link, in its one direction
    duplex, ///< every pair of nodes with links: these in both directions
    nodes,  ///< every node, with all its links
    pairs,  ///< every two of `duplex` at once
    named   ///< what a file says
};

/** Links and nodes that fail at once. */
struct Failure {
    std::string name; ///< "Rome > Oslo", "Rome - Oslo", "Rome", or two with " + " in between
    FailureSet kind = FailureSet::links;
    std::vector<LinkId> links; ///< those of the nodes among them, ascending, each once
    std::vector<NodeId> nodes;

    /** Whether one link or one node fails, against which backups share bandwidth. */
    bool isSingle() const { return nodes.empty() ? links.size() == 1 : kind == FailureSet::nodes; }
};

/** What a failure is called, and what is to be expected of it. */
struct FailureName {
    std::string name;
    FailureSet kind = FailureSet::links;
    bool isSingle = false; ///< as Failure::isSingle

    explicit FailureName(const Failure &failure)
        : name(failure.name), kind(failure.kind), isSingle(failure.isSingle())
    {
    }
    FailureName() = default;
};

/** "links", "duplex", "nodes", "pairs" or "named". */
std::string_view nameOf(FailureSet set);

/** Failures of several sets, one set after the other, in the order of the links or nodes. Those of
 * two links are put together when they are asked for: there are many. */
class FailureList
{
public:
    /** Adds all failures of a set but `named`. */
    void add(const Network &network, FailureSet set);
    /** Adds what a file names. */
    void add(const Network &network, std::vector<formats::NamedFailure> named);

    std::size_t size() const { return nbFailures; }
    /** The failure at a position below `size()`. */
    Failure operator[](std::size_t position) const;

private:
    /** Failures, or all pairs of them, from a position on. */
    struct Stretch {
        std::size_t begin = 0;
        bool isOfPairs = false;
        std::vector<Failure> singles;
        std::vector<std::size_t> pairsWith; ///< by the first of a pair: how many pairs come before
    };
    void append(std::vector<Failure> singles, bool isOfPairs);

    std::vector<Stretch> stretches;
    std::size_t nbFailures = 0;
};

} // namespace tarnex::planning

#endif
