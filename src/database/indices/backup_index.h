/**
 * What every link reserves, by class type, in tables that searches of backups can run through.
 *
 * Invariant: while an index is current, its numbers are those of the present topology, the figures
 * of a link are those of its stored state unless the link is listed as stale, and a link's number
 * (DBLink) leads to it, as in the network's index, with which it is dropped. Positions are those in
 * that index's list of links by source and then destination, so that those out of a node stand
 * together; where they are vacant there, they are here.
 *
 * Building costs a pass over all links and their ids, and what every link needs is worked out once;
 * after that a computation pays for the links listed as stale. Asking is one array access.
 *
 * Writers: what follows the books (database/followers/followers.h), which releases an index or
 * lists links as stale; bringBackupsUpToDate, before a search; a search that puts backups in, which
 * works on the figures themselves and lists what it has changed as stale.
 */
#ifndef TARNEX_DATABASE_INDICES_BACKUP_INDEX_H
#define TARNEX_DATABASE_INDICES_BACKUP_INDEX_H

#include "common/class_types.h"
#include "common/types.h"

struct DataBase_;
struct DBLink_;

/** One class type of one link, all levels together; bandwidths. */
struct BackupFigures {
    double capacity;
    double derived; ///< what the tables make it reserve: the levels added up in their order
    double stored;  ///< the same of the reservation that its state holds
    double largest; ///< largest need over all single failures at level `flatFrom` and those above
    int flatFrom;   ///< level above which no primary reserves and the largest need stays the same
};

/** One class type of one link, level by level; bandwidths. */
struct LevelFigures {
    double largest[MAXPL]; ///< largest need over all single failures
    double pbw[MAXPL];     ///< reserved by primaries
};

/** The index of one database; owns its tables, borrows the links. */
struct BackupIndex {
    bool isCurrent;
    bool idsLeadToLinks;           ///< whether each link is the one of its id, as it should be
    Long nbLinks;                  ///< positions and link numbers, the vacant ones among them
    Long nbIds;                    ///< ids with a position
    Long *positionOfId;            ///< position by link id, -1 without a link
    Long *positionOf;              ///< position by link number
    Long *destination;             ///< by position: node number
    DBLink_ **links;               ///< by position; null where it is vacant
    bool *isVacant;                ///< by position
    ClassTypes *overfull;          ///< by position: where it is overfull
    bool *isAsked;                 ///< by position: its figures cannot be relied on, or, during a
                                   ///< computation, the link is the primary's own
    bool *isStale;                 ///< by position
    Long *stale;                   ///< the stale positions
    Long nbStale;                  ///< how many
    void *block;                   ///< counted block that holds these tables
    BackupFigures *figures[MAXOA]; ///< by position; null: nothing reserved in the class type
    LevelFigures *levels[MAXOA];   ///< by position, in the same block
};

/**
 * Makes the index current, with no stale figures, and with the figures of class type `oa`; if its
 * ids lead to the links, with the marks of the carriers of failures
 * (database/indices/failure_carriers.h). False without memory.
 */
[[nodiscard]] bool bringBackupsUpToDate(DataBase_ &db, int oa);

/**
 * Takes the positions out of one node and into another over from the network's index, in which a
 * link between the two has just come or gone; `id` is the link's. Dropped if it has no room for it.
 */
void followLink(DataBase_ &db, Long source, Long destination, Long id);

/** Bandwidths up to this one can be added up, many times over, without leaving the numbers. */
inline constexpr double largestBandwidth = 1e280;

/** Whether the figures of a position, over all class types, add up to no more than that. */
bool addUp(const BackupIndex &index, Long position);

/** Whether a price can be worked out from the figures of a position alone. */
bool hasReliableFigures(const BackupIndex &index, Long position);

/** What the figures of all levels together take from those of each level, but for `derived`. */
void flatten(const LevelFigures &levels, BackupFigures &figures);

/** The figures of a position no longer hold. */
void markStale(BackupIndex &index, Long position);
/** The figures of a stored link no longer hold. */
void markStale(BackupIndex &index, const DBLink_ &link);

/** Releases what the index owns. */
void endBackupIndex(BackupIndex &index);

#endif
