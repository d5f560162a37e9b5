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

#include <array>
#include <cassert>
#include <optional>
#include <span>

/** What a backup reserves, by class type: at least one. */
struct BackupDemands {
    std::array<BackupDemand, MAXOA> items;
    int size = 0;

    std::span<const BackupDemand> all() const
    {
        return std::span{items}.first(static_cast<std::size_t>(size));
    }
};

/** The prices of one computation; borrows the index and changes it as backups are put in. */
class LinkPricing
{
public:
    /** Prices backups of `protectedLSP`; all must outlive this. */
    LinkPricing(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                const BackupDemands &backupDemands, BackupType backupType);

    /** Lays out the tables that the prices are worked out in. */
    void layOut(Layout &layout);
    /** Begins with tables that are up to date. */
    void begin();
    /** The next prices are for a backup of this stretch of the primary's path. */
    void protect(std::span<const Long> stretch);

    /** What no link costs less than. */
    double leastCost() const { return least; }

    /** The cost of the link at a position for a backup from node `start`; `infeasible` without
     * room. `earlier`: requests whose paths carry reservations already, the latest first.
     */
    double price(Long position, Long start, std::span<const LSPRequest> earlier) const
    {
        if (index.isAsked[position])
            return priceExactly(position, start, earlier);
        const double cost = isOneClassAlone ? costInOneClass(position) : costInClasses(position);
        assert(cost == priceExactly(position, start, earlier));
        return cost;
    }

    /** Has the link at a position carry the backup that was priced there. */
    void setUpOn(Long position);

private:
    double priceExactly(Long position, Long start, std::span<const LSPRequest> earlier) const;
    double costInClasses(Long position) const;

    /** Cost where the class type of the backup is the only one with reservations. */
    double costInOneClass(Long position) const
    {
        const BackupFigures &own = parts[0]->figures[position];
        const double reserved = parts[0]->reservedOn(position);
        const bool isOverfull =
            reserved > own.capacity || !index.overfull[position].without(ownClasses).isEmpty();
        return isOverfull ? infeasible : costOf(own.stored, reserved, 1, bandwidth);
    }

    /** One class type that the backup has bandwidth in. */
    struct Part {
        BackupDemand demand;
        FailureNeeds needs;
        BackupFigures *figures = nullptr; ///< of this class type
        LevelFigures *levels = nullptr;

        /** What the class type would reserve on a link, over all levels. */
        double reservedOn(Long position) const
        {
            const BackupFigures &own = figures[position];
            if (demand.level <= own.flatFrom || needs.isCarriedOn(position))
                return reservedByLevel(position);
            return own.largest < demand.bw ? own.derived + (demand.bw - own.largest) : own.derived;
        }
        double reservedByLevel(Long position) const;
        void setUpOn(Long position);
    };
    std::span<std::optional<Part>> demanded()
    {
        return std::span{parts}.first(static_cast<std::size_t>(demands.size));
    }

    DataBase &db;
    BackupIndex &index;
    const DBLabelSwitchedPath &primary;
    const BackupDemands &demands;
    BackupType type;
    double bandwidth; ///< in all class types
    double least;
    ClassTypes ownClasses{};      ///< the backup's
    bool isOneClassAlone = false; ///< no other class type reserves, and the hop factor is always 1
    std::array<std::optional<Part>, MAXOA> parts; ///< in use as far as there are demands
};

#endif
