/**
 * What each link costs the backup that is sought, from the tables of database/backup_index.h: to
 * the bit what computeCost gives on working states that carry the backups placed before.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_PRICING_H
#define TARNEX_COMPUTATION_BACKUP_PRICING_H

#include "computation/backup/backup.h"
#include "computation/backup/failure_needs.h"

#include <span>

class LinkPricing
{
public:
    /** Prices backups of `protectedLSP`; all must outlive this. */
    LinkPricing(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                const BackupDemand &backupDemand, BackupType backupType);

    /** What the failures in question need on each link. */
    FailureNeeds &failureNeeds() { return needs; }

    /** The cost of the link at a position for a backup from node `start`; `infeasible` without
     * room. `placed`: requests whose paths carry reservations already, the one placed last first.
     */
    double price(Long position, Long start, std::span<const LSPRequest> placed) const;

    /** Has the link at a position carry the backup that was priced there. */
    void placeOn(Long position);

private:
    double priceExactly(Long position, Long start, std::span<const LSPRequest> placed) const;
    double reservedWith(const BackupFigures &figures, const double *atFailure) const;

    DataBase &db;
    const DBLabelSwitchedPath &primary;
    const BackupDemand &demand;
    BackupType type;
    double bandwidth; ///< in all class types
    FailureNeeds needs;
};

#endif
