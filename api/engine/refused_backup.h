/** Why backups are refused: which of them, and the links in its way. */
#ifndef TARNEX_API_REFUSED_BACKUP_H
#define TARNEX_API_REFUSED_BACKUP_H

#include "session.h"

#include <cstddef>
#include <span>

namespace tarnex::inside
{

/** A backup that was not found, or found no room. */
struct RefusedBackup {
    const DBLabelSwitchedPath *primary; ///< its bandwidths are those that the backup was to have
    LspKind kind = LspKind::localBackup;
    std::size_t hop = 0; ///< of a local one: it was to protect the link that leaves this node

    /** What it was to protect: the nodes of one link, or the whole path. */
    std::span<const Long> stretch() const;
    /** The nodes, one of which it was to lead to. */
    std::span<const Long> targets() const;
};

/** Why, in a sentence without its end: there is no disjoint path, or none with room. */
Refusal whyNoBackup(const Session &session, const RefusedBackup &backup);

/**
 * The links from the nodes that a path with room for the backup reaches to those that it does not,
 * by id, each with the largest bandwidth that it would take; those that the backup must not use are
 * left out.
 */
std::vector<LinkInTheWay> linksInTheWay(const Session &session, const RefusedBackup &backup);

} // namespace tarnex::inside

#endif
