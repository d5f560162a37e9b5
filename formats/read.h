/** Reading networks, demands and plans, in whatever format they are. */
#ifndef TARNEX_FORMATS_READ_H
#define TARNEX_FORMATS_READ_H

#include "formats/network.h"
#include "formats/plan.h"
#include "formats/remarks.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnex::formats
{

/** The formats that are read; `dotMatrix` is a matrix of demands between the hosts of a DOT file.
 */
enum class Format {
    sndlibNative,
    sndlibXml,
    graphml,
    gml,
    repetita, ///< `.graph` or `.demands`
    nodeLink, ///< JSON with "nodes" and "links"
    dot,
    matrix, ///< a line of numbers per matrix, row by row; with a file of host names beside it
    json,   ///< our own: network, demands or plan
    text    ///< our own, a statement per line
};

/** The names that `--format` takes: "sndlib", "sndlib-xml", "graphml", "gml", "repetita",
 * "node-link", "dot", "matrix", "json", "text". */
std::string_view nameOf(Format format);
std::optional<Format> formatNamed(std::string_view name);

/** What becomes of several links from one node to another. */
enum class ParallelLinks { sum, first, error };

/** A share of a whole, 0 to 1, with the name of what gets it. */
struct Share {
    std::string name;
    double share = 0.0;
};

/** Choices that formats leave open. */
struct ReadOptions {
    std::optional<Format> format; ///< else found out from content and suffix
    ParallelLinks parallel = ParallelLinks::sum;
    std::string capacity; ///< of a link that has none in the file, in its unit or "2G"; else 1,
                          ///< and remarked
    double scale = 1.0;   ///< times which every demand is taken
    std::vector<Share> classes; ///< divides the single capacity of a file without classes
    std::string className;      ///< class of the demands of a file without classes
    std::string level;          ///< level of the demands of a file without levels
    std::vector<Share>
        mix; ///< or levels given to such demands in turn, so that each gets its share
    std::optional<std::filesystem::path> hosts; ///< names of a matrix's rows and columns
    std::size_t matrixLine = 1;                 ///< which matrix of a file with several
    bool isStrict = false;                      ///< oddities are errors
};

/** What a file holds. */
struct Input {
    Format format = Format::json;
    Network network; ///< without nodes for a file of demands alone
    std::vector<Demand> demands;
    std::optional<Plan> plan; ///< with the network and demands as above moved into it
    std::string digest;       ///< of the bytes of a document of ours, as digestOf()
    Remarks remarks;
};

/** Reads a network with whatever demands are in the file, or a plan; InputError when it cannot. */
Input read(const std::filesystem::path &file, const ReadOptions &options);

/** Reads demands on a network that is there; only the `demands` and `remarks` are filled in. Class
 * and level names that the network does not know are an InputError, unless it has none of its own:
 * then they become the network's. */
Input readDemands(const std::filesystem::path &file, Network &network, const ReadOptions &options);

} // namespace tarnex::formats

#endif
