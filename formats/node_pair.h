/** Two nodes as one number. */
#ifndef TARNEX_FORMATS_NODE_PAIR_H
#define TARNEX_FORMATS_NODE_PAIR_H

#include <tarnex/ids.h>

#include <cstdint>

namespace tarnex::formats
{

/** A number of its own for every pair of valid nodes, in this order. */
inline std::uint64_t numberOf(NodeId from, NodeId to)
{
    return std::uint64_t{static_cast<std::uint32_t>(from.value)} << 32U |
           static_cast<std::uint32_t>(to.value);
}

} // namespace tarnex::formats

#endif
