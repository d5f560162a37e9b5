/** Networks, demands and plans in JSON. */
#ifndef TARNEX_FORMATS_JSON_JSON_H
#define TARNEX_FORMATS_JSON_JSON_H

#include "formats/read.h"
#include "formats/source.h"

#include <filesystem>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** Parses node-link JSON as graph libraries write it: nodes with "id", links (or "edges") with
 * "source", "target" and maybe "capacity". InputError when that is not what it is. */
Source parseNodeLink(std::string_view text, const std::string &file);

/**
 * Reads a document of ours: a network, demands or a plan. Of a plan, network and demands are in
 * `plan` alone. The network of a file of demands has the nodes that they name and no links, and no
 * classes or levels if the file names none. InputError when the document is damaged; whether the
 * paths of a plan follow links and fit is not looked at.
 *
 * Of the options, the scale and strict reading count for networks and demands, which leave nothing
 * else open, and none for plans. Options that decide nothing are remarked.
 */
Input readJson(const std::filesystem::path &file, const ReadOptions &options);
/** The same for a text; `file` is its name in errors. */
Input readJson(std::string_view text, const std::string &file, const ReadOptions &options);

/** The demands of a document of ours of any kind, to settle on another network. Errors as in
 * readJson(). */
Source readJsonDemands(const std::filesystem::path &file);
Source readJsonDemands(std::string_view text, const std::string &file);

/** Writes a network with demands. Throws std::invalid_argument at a number that is not finite;
 * std::out_of_range at ids that the network does not have. */
void writeNetwork(std::ostream &stream, const Network &network, std::span<const Demand> demands);

/** Writes demands by the names of their nodes, classes and levels. Errors as in writeNetwork(). */
void writeDemands(std::ostream &stream, const Network &network, std::span<const Demand> demands);

} // namespace tarnex::formats

#endif
