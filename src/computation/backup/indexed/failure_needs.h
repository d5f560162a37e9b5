/**
 * What the failures that a backup is for would need on each link, with the backup on it.
 *
 * On most links that is the backup's own bandwidth: their tables hold nothing for these failures,
 * or only what the other links into a failing node free, which cannot outweigh the failure of the
 * protected link alone. The others are found from the failing links
 * (database/indices/failure_carriers.h), and their rows added up, level by level and inside a level
 * in the order of the links, before a search begins.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_INDEXED_FAILURE_NEEDS_H
#define TARNEX_COMPUTATION_BACKUP_INDEXED_FAILURE_NEEDS_H

#include "common/layout.h"
#include "database/books/network.h"

#include <span>

/** What a backup reserves in one class type, at its level. */
struct BackupDemand {
    int oa;
    int level;
    double bw;
};

/** The needs on all links in one class type, for one stretch after the other; works in tables that
 * it is given. */
class FailureNeeds
{
public:
    FailureNeeds(const DataBase &database, const BackupDemand &backupDemand);

    /** Lays out the tables that it works with. */
    void layOut(Layout &layout);
    /** Makes the tables ready for use; they may hold anything before. */
    void begin();
    /**
     * Adds up the failures that a backup of a stretch of a path is for: those of its links and of
     * the nodes these enter.
     *
     * @param stretch node ids, none twice
     */
    void addUp(std::span<const Long> stretch);

    /** Whether the link at a position may need anything but the backup's bandwidth. */
    bool isCarriedOn(Long position) const { return carriedAt[position] >= 0; }
    /** MAXPL needs, the largest at each level, on the link at a position. */
    const double *on(Long position) const
    {
        const Long at = carriedAt[position];
        return at < 0 ? ownAlone : carried[at].largest;
    }

private:
    /** A link that needs more or less than the backup's bandwidth, perhaps. */
    struct Carried {
        double largest[MAXPL]; ///< over the rows so far
        double backup;         ///< bandwidth activated, in the row that is being added up
        double freed;          ///< bandwidth freed, in that row
        Long position;
        Long row;    ///< number of that row
        Long nbRows; ///< rows in which the link has something
        bool hasOwn; ///< whether the backup is in the sum
    };

    void clear();
    void addRow(Long first, Long end, Long failing);
    const CarrierList &carriersOf(Long link, FailureTable table) const;
    unsigned levelsIn(Long first, Long end) const;
    void addCarriers(Long link, int p, bool isOwn);
    template <class Add>
    void forEachCarried(const CarrierList &list, int p, Add add);
    void addOwn();
    void raise(int from, int end);
    void carryAlong(Long first, Long end, Long failing);
    void carryAlong(const CarrierList &list);
    void enterRow(Carried &on, int p);

    const DataBase &db;
    BackupDemand demand;
    double ownAlone[MAXPL];    ///< needs on a link with nothing in the tables
    Long *carriedAt = nullptr; ///< by position: index in `carried`, -1 when the tables hold nothing
    Carried *carried = nullptr;
    Carried **inRow = nullptr; ///< those with something in the row that is being added up
    Long nbCarried = 0;
    Long nbInRow = 0;
    Long nbRows = 0;
    double ownBefore = 0.0; ///< what the backup adds to a sum that starts now
};

#endif
