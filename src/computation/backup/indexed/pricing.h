/**
 * What each link costs the backup that is sought, from the tables of
 * database/indices/backup_index.h: to the bit what computeCost gives on working states that carry
 * the backups placed before.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_INDEXED_PRICING_H
#define TARNEX_COMPUTATION_BACKUP_INDEXED_PRICING_H

#include "computation/backup/backup_type.h"
#include "computation/backup/cost.h"
#include "computation/backup/indexed/failure_needs.h"
#include "computation/computation.h"

#include <cassert>
#include <span>

/** The prices of one computation; borrows the index and changes it as backups are put in. */
class LinkPricing
{
public:
    /** Prices backups of `protectedLSP`; all must outlive this. */
    LinkPricing(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                const BackupDemand &backupDemand, BackupType backupType);

    /** What the failures in question need on each link. */
    FailureNeeds &failureNeeds() { return needs; }

    /** Begins with tables that are up to date. */
    void begin();

    /** What no link costs less than. */
    double leastCost() const { return least; }

    /** The cost of the link at a position for a backup from node `start`; `infeasible` without
     * room. `earlier`: requests whose paths carry reservations already, the latest first.
     */
    double price(Long position, Long start, std::span<const LSPRequest> earlier) const
    {
        if (index.isAsked[position])
            return priceExactly(position, start, earlier);
        const BackupFigures &own = figures[position];
        const double reserved = reservedOn(position);
        const bool isOverfull =
            reserved > own.capacity || !index.overfull[position].without(ownClass).isEmpty();
        const double cost = isOverfull        ? infeasible
                            : isOwnClassAlone ? costOf(own.stored, reserved, 1, bandwidth)
                                              : costInClasses(position, reserved);
        assert(cost == priceExactly(position, start, earlier));
        return cost;
    }

    /** Has the link at a position carry the backup that was priced there. */
    void setUpOn(Long position);

private:
    double priceExactly(Long position, Long start, std::span<const LSPRequest> earlier) const;
    double costInClasses(Long position, double reserved) const;
    double reservedByLevel(Long position) const;

    /** What the backup's class type would reserve on a link, over all levels. */
    double reservedOn(Long position) const
    {
        const BackupFigures &own = figures[position];
        if (demand.level <= own.flatFrom || needs.isCarriedOn(position))
            return reservedByLevel(position);
        return own.largest < demand.bw ? own.derived + (demand.bw - own.largest) : own.derived;
    }

    DataBase &db;
    BackupIndex &index;
    const DBLabelSwitchedPath &primary;
    const BackupDemand &demand;
    BackupType type;
    double bandwidth; ///< in all class types
    double least;
    ClassTypes ownClass;              ///< the backup's
    BackupFigures *figures = nullptr; ///< of the backup's class type
    bool isOwnClassAlone = false; ///< no other class type reserves, and the hop factor is always 1
    FailureNeeds needs;
};

#endif
