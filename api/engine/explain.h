/** Why requests are refused, in words and figures. */
#ifndef TARNEX_API_EXPLAIN_H
#define TARNEX_API_EXPLAIN_H

#include "session.h"

#include <optional>
#include <span>

namespace tarnex::inside
{

/** What is wrong with the ends of a request; nothing when a path between them can be sought. */
std::optional<Refusal> refusedEnds(const Session &session, const Request &request);

/**
 * Why a request got no path, under the configuration for it.
 *
 * @param inFull with the largest bandwidth and the links in the way
 */
Refusal whyNoPath(const Session &session, const Request &request, bool inFull);

/** Where the path of a request comes from. */
enum class Origin { given, found };

/** The same for a request whose path was refused in the end, a given one or, where what can give
 * way does not add up, the one that was found. */
Refusal whyNoRoomOn(const Session &session, const Request &request, std::span<const Long> path,
                    Origin origin, bool inFull);

} // namespace tarnex::inside

#endif
