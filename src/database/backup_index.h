/**
 * What the searches of backups read of the network, in tables that they can run through: what every
 * link reserves, by class type, and by failing link which links it concerns.
 *
 * Invariant: while an index is current, the network's index is too and the numbers of both agree;
 * the figures of a link are those of its stored state unless it is listed as stale; and the
 * carriers of a class type, once listed, have exactly the slots of stored tables that are not 0
 * and belong to a link. Positions number the links by source and then destination, so that those
 * out of a node stand together.
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

#include <cstdint>

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

/** Which link holds a slot, at which level, in one number. */
class Carrier
{
public:
    Carrier() = default;
    Carrier(Long position, int level)
        : bits(static_cast<std::uint32_t>(position) << 3 | static_cast<std::uint32_t>(level))
    {
    }
    Long position() const { return static_cast<Long>(bits >> 3); }
    int level() const { return static_cast<int>(bits & 7U); }
    bool operator==(const Carrier &other) const = default;

private:
    std::uint32_t bits;
};
static_assert(MAXPL <= 8);

/** The slots of one failing link in one kind of table that are not 0, in no order. */
struct CarrierList {
    Long size;       ///< capacity
    Long top;        ///< slots in use
    unsigned levels; ///< a bit for each level that has, or had, a slot
    bool hasBelow0;  ///< whether one has, or had, a value that is not 0 or more
    double *values; ///< counted block with `size` values and carriers, owned; null before the first
    Carrier *carriers; ///< in the same block
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
    LevelFigures *levels[MAXOA];   ///< by position, in the same block
    CarrierList *carriers[MAXOA];  ///< two by number of the failing link; null: not listed

    /** The slots of a failing link in class type `oa`, which is listed. */
    CarrierList &carriersOf(int oa, Long number, FailureTable table) const
    {
        return carriers[oa][2 * number + static_cast<Long>(table)];
    }
};

/**
 * Makes the index current, with no stale figures, and with the figures and carriers of class type
 * `oa`. False without memory.
 */
[[nodiscard]] bool bringBackupsUpToDate(DataBase_ &db, int oa);

/** What the figures of all levels together take from those of each level, but for `derived`. */
void flatten(const LevelFigures &levels, BackupFigures &figures);

/** The figures of a position no longer hold. */
void noteStale(BackupIndex &index, Long position);

/** A slot of a stored link's tables has got another value. */
void noteCarrier(DataBase_ &db, const DBLink_ &link, const TableSlot &slot, double value);

/** Releases what the index owns. */
void endBackupIndex(BackupIndex &index);

#endif
