/**
 * What the searches of backups read of the network, in tables that they can run through: what every
 * link reserves, by class type, and by failing link which links it concerns.
 *
 * Invariant: while an index is current, the network's index is too and the numbers of both agree;
 * the figures of a link are those of its stored state unless it is listed as stale; and the
 * carriers of a class type, once listed, are exactly the slots of stored tables that are not 0 and
 * belong to a link. Positions number the links by source and then destination, so that those out of
 * a node stand together.
 *
 * Writers: bringBackupsUpToDate, before a search; noteStateChange, through noteStale, and
 * noteCarrier, when an LSP comes or goes; a search that places backups works on the figures
 * themselves and lists what it has changed as stale; and forgetNumbers. Without memory to follow a
 * change the index is dropped and made anew by the next search.
 */
#ifndef TARNEX_DATABASE_BACKUP_INDEX_H
#define TARNEX_DATABASE_BACKUP_INDEX_H

#include "common/types.h"
#include "database/failure_tables.h"

struct DataBase_;
struct DBLink_;

/** One class type of one link; bandwidths. */
struct BackupFigures {
    double largest[MAXPL]; ///< largest need over all single failures, at each level
    double pbw[MAXPL];     ///< reserved by primaries, at each level
    double capacity;
    double derived; ///< what the tables make it reserve: the levels added up in their order
    double stored;  ///< the same of the reservation that its state holds
};

/** A slot of a link's failure tables that is not 0. */
struct Carrier {
    Long position;      ///< of the link that has the tables
    signed char level;  ///< which
    FailureTable table; ///< of them
};

/** The links that the failure of one link concerns, in no order. */
struct CarrierList {
    Long size;     ///< capacity
    Long top;      ///< carriers in use
    Carrier *cont; ///< counted block, owned; null before the first carrier
};

/** The index of one database; owns its tables, borrows the links. */
struct BackupIndex {
    bool isCurrent;
    bool isUsual;                  ///< whether each link is the one of its id, as it should be
    Long nbLinks;                  ///< number of links
    Long nbIds;                    ///< one more than the largest link id
    Long *numberOf;                ///< link number by link id, -1 without a link
    Long *positionOf;              ///< position by link number
    Long *destination;             ///< by position: node number
    DBLink_ **links;               ///< by position
    unsigned char *overfull;       ///< by position: a bit per class type that exceeds its capacity
    bool *isAsked;                 ///< by position: its figures cannot be relied on
    bool *isStale;                 ///< by position
    Long *stale;                   ///< the stale positions
    Long nbStale;                  ///< how many
    void *block;                   ///< counted block that holds these tables
    BackupFigures *figures[MAXOA]; ///< by position; null: nothing reserved in the class type
    CarrierList *carriers[MAXOA];  ///< by number of the failing link; null: not listed
};

/**
 * Makes the index current, with no stale figures, and with the figures and carriers of class type
 * `oa`. False without memory.
 */
[[nodiscard]] bool bringBackupsUpToDate(DataBase_ &db, int oa);

/** The figures of a position no longer hold. */
void noteStale(BackupIndex &index, Long position);

/** A slot of a stored link's tables has become 0 or is no longer 0. */
void noteCarrier(DataBase_ &db, const DBLink_ &link, const TableSlot &slot, bool carries);

/** Releases what the index owns. */
void endBackupIndex(BackupIndex &index);

#endif
