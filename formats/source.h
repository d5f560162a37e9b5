/**
 * What the parsers of the formats have in common: each turns a text into a Source, which says what
 * the file says and no more; settle() makes a network and demands of it.
 */
#ifndef TARNEX_FORMATS_SOURCE_H
#define TARNEX_FORMATS_SOURCE_H

#include "formats/network.h"
#include "formats/read.h"
#include "formats/remarks.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

/** A node as the file has it. */
struct SourceNode {
    std::string key;  ///< by which the file's edges and demands name it
    std::string name; ///< empty: the key is the name. Names may repeat; settle() tells them apart
    std::optional<Coordinates> at;
    std::vector<std::string> hosts{}; ///< as in Node
    std::size_t line = 0;             ///< where it stands, 0 when not known
};

/** An edge as the file has it. */
struct SourceEdge {
    std::string from;                 ///< key
    std::string to;                   ///< key
    std::vector<double> capacity;     ///< one value, or one per class; empty: the file has none
    std::size_t line = 0;             ///< where it stands, 0 when not known
    std::optional<bool> isDirected{}; ///< where it differs from the file's other edges
};

/** A demand as the file has it. */
struct SourceDemand {
    std::string name;
    std::string from; ///< key, or position from 0
    std::string to;
    std::string className; ///< empty: the file has no classes
    std::string level;     ///< empty: the file has no levels
    double bandwidth = 0.0;
    std::size_t line = 0;
};

/** A file as it is. */
struct Source {
    std::string file; ///< for messages; parsers need not fill it in
    std::string name;
    std::string unit;
    bool isDirected = true;           ///< false: each edge stands for a link in both directions
    bool demandsByPosition = false;   ///< demands name nodes by their position, not by their key
    std::vector<std::string> classes; ///< empty: the file has none
    std::vector<std::string> levels;
    std::vector<SourceNode> nodes;
    std::vector<SourceEdge> edges;
    std::vector<SourceDemand> demands;
    Remarks remarks; ///< what the parser itself had to choose or to leave out
};

/** Makes a network and demands of a source. Oddities are remarked and dealt with, the choices that
 * the source leaves open are made as the options say. InputError for what cannot be dealt with, for
 * shares that do not add up and, in strict reading, for the first oddity. */
Input settle(const Source &source, const ReadOptions &options, Remarks &remarks);

/** The names that a source gives its nodes, fit to be printed, which may repeat. */
std::vector<std::string> namesOfNodes(const Source &source);

/** Makes demands on the network that the same source describes: part of settle(). */
std::vector<Demand> settleOwnDemands(const Source &source, Network &network,
                                     const ReadOptions &options, Remarks &remarks);

/** Makes demands on a network of another file: nodes go by their names, whatever order the source
 * lists them in, unless it has nothing but positions. The network's default class, level and unit
 * give way to those that the demands bring. Errors as in settle(). */
std::vector<Demand> settleDemands(const Source &source, Network &network,
                                  const ReadOptions &options, Remarks &remarks);

} // namespace tarnex::formats

#endif
