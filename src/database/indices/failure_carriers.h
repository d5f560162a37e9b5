/**
 * The failure tables of all links read the other way: for the failure of each link, the slots that
 * are not 0 on any link. A link's tables are indexed by failing link, and a search of backups asks
 * for few failures on all links.
 *
 * Invariant: once a class type is listed, its lists have exactly the slots below maxListedIds of
 * the stored links that are not 0, with their values; but for links whose state somebody outside
 * may write.
 *
 * Listing a class type reads the tables of all links in it, once. From then on a change of a slot
 * costs a search through the list of its failing link, and asking for a failure that list alone.
 *
 * Writers: listCarriers, for the first search of backups in a class type; after that what follows
 * the books (database/followers/followers.h). Without memory to follow a change all lists are
 * dropped, and made anew by the next search; they go with the last link, too.
 */
#ifndef TARNEX_DATABASE_INDICES_FAILURE_CARRIERS_H
#define TARNEX_DATABASE_INDICES_FAILURE_CARRIERS_H

#include "common/types.h"
#include "database/reservations/failure_tables.h"

#include <cstdint>

struct DataBase_;
struct DBLink_;

/** Which link has a slot, at which level, in one number. */
class Carrier
{
public:
    Carrier() = default;
    Carrier(Long linkId, int level)
        : bits(static_cast<std::uint32_t>(linkId) << 3 | static_cast<std::uint32_t>(level))
    {
    }
    Long linkId() const { return static_cast<Long>(bits >> 3); }
    int level() const { return static_cast<int>(bits & 7U); }
    bool operator==(const Carrier &other) const = default;

private:
    std::uint32_t bits;
};
static_assert(MAXPL <= 8);

/** Failing links with this id or a larger one are not listed. */
inline constexpr Long maxListedIds = 1 << 22;

/** The slots of one failing link in one kind of table that are not 0, in no order. */
struct CarrierList {
    Long size;         ///< capacity
    Long top;          ///< slots in use
    unsigned levels;   ///< a bit for each level that has, or had, a slot
    bool hasBelow0;    ///< whether one has, or had, a value that is not 0 or more
    double *values;    ///< counted block with `size` values and carriers, owned; null before the
                       ///< first
    Carrier *carriers; ///< in the same block
};

/** The lists of one database, owned. */
struct FailureCarriers {
    CarrierList *lists[MAXOA]; ///< two by id of the failing link; null: not listed
    Long nbIds[MAXOA];         ///< ids that there are lists for

    /** The slots of failing link `id` in class type `oa`, which is listed. */
    const CarrierList &of(int oa, Long id, FailureTable table) const
    {
        static constexpr CarrierList none{};
        return id < nbIds[oa] ? lists[oa][2 * id + static_cast<Long>(table)] : none;
    }
};

/** Lists a class type unless it is; false without memory. The ids of all links must differ. */
[[nodiscard]] bool listCarriers(DataBase_ &db, int oa);

/** A slot of a stored link's tables has got another value. */
void updateCarrier(FailureCarriers &carriers, const DBLink_ &link, const TableSlot &slot,
                   double value);

/** A link has come, or its state. */
void listCarriersOf(FailureCarriers &carriers, const DBLink_ &link);
/** A link goes, or its state. */
void unlistCarriersOf(FailureCarriers &carriers, const DBLink_ &link);

/** Releases all lists. */
void endCarriers(FailureCarriers &carriers);

#endif
