/** Taking LSPs out, all or none. */
#ifndef TARNEX_API_REMOVAL_H
#define TARNEX_API_REMOVAL_H

#include "session.h"

#include <span>
#include <vector>

namespace tarnex::inside
{

/**
 * The LSPs of so many ids, ascending and each once, in full: every primary is followed by its
 * backups; backups of primaries that are not among them stand alone.
 */
std::vector<Lsp> withBackups(const Session &session, std::span<const Long> ids);

/** Removes LSPs that come as withBackups lists them; std::bad_alloc, and none is gone, without
 * memory. */
void removeAll(Session &session, std::span<const Lsp> lsps);

/** Puts LSPs back that were there before, as far as they are missing, whatever the room. */
void restore(Session &session, std::span<const Lsp> lsps);

} // namespace tarnex::inside

#endif
