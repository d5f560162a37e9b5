/** What a backup protects, worked out from its path and its primary's. */
#ifndef TARNEX_PLANNING_VERIFY_BACKUPS_H
#define TARNEX_PLANNING_VERIFY_BACKUPS_H

#include "planning/link_finder.h"
#include "planning/verify.h"

#include <optional>
#include <string>
#include <vector>

namespace tarnex::planning
{

/** What is wrong with a path in itself, ends left aside. */
std::optional<Deviation> pathFault(const Network &network, const LinkFinder &finder,
                                   const std::vector<NodeId> &path);

/** What is wrong with the backups of an LSP whose own path is sound; the text says it of "backup
 * 2", and leaves the LSP's name to the caller. */
std::vector<Deviation> backupFaults(const Network &network, const LinkFinder &finder,
                                    const PlannedLsp &lsp);

} // namespace tarnex::planning

#endif
