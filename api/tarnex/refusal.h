/** Results that are either a value or the reason why there is none. */
#ifndef TARNEX_REFUSAL_H
#define TARNEX_REFUSAL_H

#include <tarnex/ids.h>

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarnex
{

/** Why something was refused. */
enum class Reason {
    noSuchNode,
    sameEnds,
    notConnected,         ///< no path, whatever the bandwidth
    noRoom,               ///< paths, but none with room
    noDisjointPath,       ///< for a backup: every path shares a link with what it is to protect
    noRoomForDisjointPath ///< for a backup: disjoint paths, but none with room
};

/** "no such node", "same ends", "not connected", "no room", "no disjoint path", "no room for a
 * disjoint path". */
[[gnu::visibility("default")]] std::string_view textOf(Reason reason);

/** A link that leads from the nodes that can still be reached to those that cannot. */
struct LinkInTheWay {
    LinkId link;
    double room = 0.0; ///< the largest bandwidth that it would take on the same terms
};

/** Why a request got no path. */
struct Refusal {
    Reason reason = Reason::noRoom;
    std::string sentence; ///< for people; names ids, and what would fit in at most 12 digits
    /**
     * The largest double that would have been placed on the same terms; with the next larger one
     * the request is refused as well. For backups what of the LSP's own they could have carried.
     * 0 also when not even 0 would be placed and when no bandwidth would help. Of backups only
     * Engine::explainProtection tells it, and the links in the way.
     */
    double largestBandwidth = 0.0;
    /** By link id; for a given path its links without room. Empty where no bandwidth would help. */
    std::vector<LinkInTheWay> inTheWay;
};

/** A value, or the refusal in its place. */
template <class T>
class Result
{
public:
    Result(T value) : content(std::move(value)) {}
    Result(Refusal refusal) : content(std::move(refusal)) {}

    explicit operator bool() const { return std::holds_alternative<T>(content); }
    /** The value; std::bad_variant_access when it was refused. */
    const T &value() const & { return std::get<T>(content); }
    T &&value() && { return std::get<T>(std::move(content)); }
    const T &operator*() const { return value(); }
    const T *operator->() const { return &value(); }
    /** The refusal; std::bad_variant_access when there is a value. */
    const Refusal &refusal() const { return std::get<Refusal>(content); }

private:
    std::variant<T, Refusal> content;
};

} // namespace tarnex

#endif
