/**
 * Networks and demands as the files that people have describe them. Ids are dense from 0 in the
 * order of the file: a NodeId is an index into `nodes`, a LinkId into `links`.
 */
#ifndef TARNEX_FORMATS_NETWORK_H
#define TARNEX_FORMATS_NETWORK_H

#include <tarnex/ids.h>

#include <optional>
#include <string>
#include <vector>

namespace tarnex
{

/** Where a node is, in degrees. */
struct Coordinates {
    double longitude = 0.0;
    double latitude = 0.0;

    friend bool operator==(const Coordinates &, const Coordinates &) = default;
};

/** A node; its name is its own in the network. */
struct Node {
    std::string name;
    std::optional<Coordinates> at;
    std::vector<std::string> hosts{}; ///< what hangs on it; demands may name these instead

    friend bool operator==(const Node &, const Node &) = default;
};

/** A directed link; at most one leads from a node to another, and none to itself. */
struct Link {
    NodeId from;
    NodeId to;
    std::vector<double> capacity; ///< by class type, in the network's unit

    friend bool operator==(const Link &, const Link &) = default;
};

/** Names of the one class type and the one level of a source that has none of its own. */
inline constexpr const char *defaultClass = "class0";
inline constexpr const char *defaultLevel = "level0";

/** A network. */
struct Network {
    std::string name;                 ///< empty when the source has none
    std::string unit;                 ///< of every bandwidth, "Mbit/s"; empty when nobody said
    std::vector<std::string> classes; ///< names of the class types, at least one
    std::vector<std::string> levels;  ///< names of the preemption levels, most important first, at
                                      ///< least one
    std::vector<Node> nodes;
    std::vector<Link> links;

    const std::string &nameOf(NodeId node) const { return nodes[node.index()].name; }

    friend bool operator==(const Network &, const Network &) = default;
};

/** A demand on a network; known by its index among the demands. */
struct Demand {
    std::string name; ///< what the source calls it; empty when it has no name
    NodeId ingress;
    NodeId egress;
    int classType = 0; ///< index into the network's classes
    int level = 0;     ///< index into the network's levels
    double bandwidth = 0.0;

    friend bool operator==(const Demand &, const Demand &) = default;
};

} // namespace tarnex

#endif
