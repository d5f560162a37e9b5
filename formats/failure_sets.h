/** Files that say what can fail at once, such as the fibres of a duct. */
#ifndef TARNEX_FORMATS_FAILURE_SETS_H
#define TARNEX_FORMATS_FAILURE_SETS_H

#include "formats/network.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

/** Links and nodes that fail at once, as a file names them. */
struct NamedFailure {
    std::string name;
    std::vector<LinkId> links;
    std::vector<NodeId> nodes;
};

/**
 * Reads statements `failure NAME (link FROM TO | duplex FROM TO | node NAME)...`, one per line,
 * with the words and comments of the text format; `duplex` stands for both directions or the one
 * there is. InputError, also when the network has no such node or link or two failures have one
 * name.
 *
 * @param file its name, for errors
 */
std::vector<NamedFailure> parseFailureSets(std::string_view text, const std::string &file,
                                           const Network &network);

} // namespace tarnex::formats

#endif
