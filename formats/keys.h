/** Names of the attributes by which GraphML and DOT files that we write hold what others do not. */
#ifndef TARNEX_FORMATS_KEYS_H
#define TARNEX_FORMATS_KEYS_H

#include <string>

namespace tarnex::formats
{

/** Attributes of the graph and, for `capacity`, of edges; class types and levels by number. */
struct OwnKeys {
    const char *unit = "unit";

    std::string classType(std::size_t number) const { return "class" + std::to_string(number); }
    std::string level(std::size_t number) const { return "level" + std::to_string(number); }
    std::string capacity(std::size_t number) const { return "capacity" + std::to_string(number); }
};

inline constexpr OwnKeys ownKeys;

} // namespace tarnex::formats

#endif
