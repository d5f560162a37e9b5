/**
 * What the failures that a backup is for would need on each link, with the backup on it.
 *
 * Most links have nothing in the tables of these failures: there the need is the backup's own
 * bandwidth. The others are found from the failing links (database/backup_index.h), and their rows
 * added up, level by level and inside a level in the order of the links, before a search begins.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_FAILURE_NEEDS_H
#define TARNEX_COMPUTATION_BACKUP_FAILURE_NEEDS_H

#include "common/layout.h"
#include "database/database.h"

/** What a backup reserves: bandwidth in one class type at one level. */
struct BackupDemand {
    int oa;
    int level;
    double bw;
};

class FailureNeeds
{
public:
    FailureNeeds(const DataBase &database, const BackupDemand &backupDemand);

    /** Places the tables that it works with. */
    void layOut(Layout &layout);
    /** Makes the tables ready for use; they may hold anything before. */
    void begin();
    /** Forgets all failures. */
    void clear();
    /** Adds the failure of link number `link`, for which the backup is, and of the node it enters;
     * such links enter different nodes. */
    void addFailuresOf(Long link);

    /** MAXPL needs, the largest at each level, on the link at a position. */
    const double *on(Long position) const
    {
        const Long place = placeOf[position];
        return place < 0 ? plain : carried[place].largest;
    }

private:
    /** A link whose tables hold something for one of the failures. */
    struct Carried {
        double largest[MAXPL]; ///< over the rows so far
        Long position;
        Long nbRows; ///< rows in which the link has something
    };
    /** The row that is being added up, on one link. */
    struct RowSum {
        Long place; ///< in `carried`
        double backup;
        double freed;
        bool hasOwn; ///< whether the backup is in the sum
    };

    void addRow(Long first, Long end, Long failing);
    unsigned levelsIn(Long first, Long end) const;
    void addCarriers(Long link, int p, bool isOwn);
    void addOwn();
    void raise(int p);
    RowSum &sumOn(Long position, int p);

    const DataBase &db;
    const BackupDemand &demand;
    double plain[MAXPL]; ///< needs on a link with nothing in the tables
    Long *placeOf = nullptr; ///< by position: place in `carried`, -1 when the tables hold nothing
    Long *sumAt = nullptr;   ///< by place in `carried`: place in `row`, if it is there
    Carried *carried = nullptr;
    RowSum *row = nullptr;
    Long nbCarried = 0;
    Long nbInRow = 0;
    Long nbRows = 0;
    double ownBefore = 0.0; ///< what the backup adds to a sum that starts now
};

#endif
