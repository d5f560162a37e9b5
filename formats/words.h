/** What formats have for the names and capacities of a network that they cannot hold as they are.
 */
#ifndef TARNEX_FORMATS_WORDS_H
#define TARNEX_FORMATS_WORDS_H

#include "formats/network.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

/** The names of nodes as single words without the given marks, told apart. */
std::vector<std::string> nodeWords(const Network &network, std::string_view marks);

/** The same of demands; one without a name gets `prefix` and its number. */
std::vector<std::string> demandWords(std::span<const Demand> demands, std::string_view prefix,
                                     std::string_view marks);

/** The capacity of a link in all class types together. */
double totalCapacity(const Link &link);

/** Whether a network has class types, or levels, beyond the one that every network has. */
bool hasClasses(const Network &network);
bool hasLevels(const Network &network);

} // namespace tarnex::formats

#endif
