/**
 * From a computed path to the books: what becomes of a primary request, and of the backups found
 * for a primary, when their caller wants more than paths.
 *
 * These functions push no message of their own after those of the operations that fail: their
 * result says how far a placement came, and the caller words it.
 */
#ifndef TARNEX_ADMISSION_PLACEMENT_H
#define TARNEX_ADMISSION_PLACEMENT_H

#include "common/records.h"
#include "computation/computation.h"
#include "database/books/network.h"

/** What is wanted of a request beside its path. */
enum class PlacementGoal {
    pathOnly, ///< nothing: the network stays as it is
    proposal, ///< that it is found out whether the LSP would be added, and which would be removed;
              ///< nothing changes
    room,     ///< that the LSPs in the way are worked out; those in a primary's way are removed
    lsp       ///< that the LSP is added, and the LSPs in a primary's way are removed
};

/** How a placement ended. */
enum class Placement {
    done,
    noPath,      ///< no path was computed; nothing has changed
    notListed,   ///< the LSPs in the way could not be listed; nothing has changed
    notAdded,    ///< the LSP was not admitted; nothing has changed, or the addition is uncomplete
    notReported, ///< the caller could not take the results; what was added is taken back
    notRemoved   ///< an LSP in the way could not be removed; those after it stay, and so does the
                 ///< added one
};

/** Who takes the results of a placement before they become final; this one takes all. */
class PlacementReport
{
public:
    /** Takes the node ids of the path found; false: it cannot, and nothing is done. */
    virtual bool takePath(std::span<const Long> /*nodes*/) { return true; }
    /**
     * Takes the ids of the LSPs that are about to be removed, or with a proposal would be, one or
     * more, ascending, each once; false: it cannot, none is removed, and an LSP added for them goes
     * again.
     */
    virtual bool takePreempted(std::span<const Long> /*ids*/) { return true; }

protected:
    ~PlacementReport() = default;
};

/**
 * Computes the path of primary request `req` (computePrimaryPath) and does with it what `goal`
 * says; whether LSPs may be in the way is the predicate's configuration.
 */
[[nodiscard]] Placement placePrimary(DataBase *dataBase, LSPRequest *req, PlacementGoal goal,
                                     PlacementReport &report);

/** The second half of placePrimary, for a request whose path is known in full: what it does once
 * the path is found. */
[[nodiscard]] Placement admitPrimary(DataBase *dataBase, LSPRequest *req, PlacementGoal goal,
                                     PlacementReport &report);

/** The computed backups of one primary on their way into the network, one after the other. */
class BackupPlacement
{
public:
    /** Borrows the database and copies the primary's path. */
    BackupPlacement(DataBase &database, DBLabelSwitchedPath &primary, DBLSPType type);

    /** False, after a message, when memory was short: no backup can be placed. */
    explicit operator bool() const { return lsp != nullptr; }

    /**
     * Adds the backup of a computed request at level 0, under `id`, or works out what is in its
     * way, as `goal` says; nothing is removed, and the id matters to the former only.
     *
     * @return done, notListed or notAdded
     */
    [[nodiscard]] Placement admit(LSPRequest &found, Long id, PlacementGoal goal);

private:
    bool describe(LSPRequest &found, Long id);

    DataBase &db;
    Owned<DBLabelSwitchedPath, DBlspDestroy> lsp; ///< the record that every backup is added from
};

#endif
