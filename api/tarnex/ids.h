/**
 * Ids of nodes, links and LSPs: integers of 0 or more, each kind a type of its own.
 *
 * The engine's tables are as long as the largest id of a kind, so ids are best dense from 0.
 */
#ifndef TARNEX_IDS_H
#define TARNEX_IDS_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace tarnex
{

/** An id; two of different kinds do not mix. The default names nothing. */
template <class Tag>
struct Id {
    std::int32_t value = -1;

    constexpr Id() = default;
    constexpr explicit Id(std::int32_t number) : value(number) {}

    /** Whether it names something, as far as the id alone tells. */
    constexpr bool isValid() const { return value >= 0; }
    /** A valid id as an index. */
    constexpr std::size_t index() const { return static_cast<std::size_t>(value); }

    // NOLINTNEXTLINE(modernize-use-nullptr): there is no pointer
    friend constexpr auto operator<=>(Id, Id) = default;
};

using NodeId = Id<struct NodeTag>;
using LinkId = Id<struct LinkTag>;
using LspId = Id<struct LspTag>;

} // namespace tarnex

template <class Tag>
struct std::hash<tarnex::Id<Tag>> {
    std::size_t operator()(tarnex::Id<Tag> id) const noexcept
    {
        return std::hash<std::int32_t>{}(id.value);
    }
};

#endif
