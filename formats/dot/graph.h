/** A DOT file as a graph with attributes, before anything is made of them. */
#ifndef TARNEX_FORMATS_DOT_GRAPH_H
#define TARNEX_FORMATS_DOT_GRAPH_H

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnex::formats
{

using DotAttributes = std::map<std::string, std::string>;

struct DotNode {
    std::string id;
    std::size_t line = 0;
    DotAttributes attributes{};
};

struct DotEdge {
    std::size_t from = 0; ///< positions of nodes
    std::size_t to = 0;
    std::size_t line = 0;
    DotAttributes attributes{};
};

/** Nodes and edges, with the attributes that are of use, in the order in which they are first
 * mentioned; subgraphs are dissolved. */
struct DotGraph {
    std::string id;
    bool isDirected = false;
    DotAttributes attributes{};
    std::vector<DotNode> nodes{};
    std::vector<DotEdge> edges{};
};

/** Reads one graph; InputError when the text is damaged or has a subgraph as the end of an edge. */
DotGraph readDotGraph(std::string_view text, const std::string &file);

} // namespace tarnex::formats

#endif
