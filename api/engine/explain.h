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

/** Why the link of a primary's path that leaves node `hop` of it got no local backup. */
Refusal whyNoLocalBackup(const Session &session, const DBLabelSwitchedPath &primary,
                         std::size_t hop);

/** Why a primary got no global backup. */
Refusal whyNoGlobalBackup(const Session &session, const DBLabelSwitchedPath &primary);

/** Why a given backup was refused. */
Refusal whyNoRoomForBackup(const Lsp &backup);

/** A number with as few digits as lead back to it. */
std::string textOf(double number);

} // namespace tarnex::inside

#endif
