/**
 * Reading the failure tables of a link state.
 *
 * A slot is needy in a class type when, at some level, its backup need is above 0 or its freed
 * bandwidth below 0: only a failure with a needy slot can need anything.
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_FAILURE_TABLES_H
#define TARNEX_DATABASE_RESERVATIONS_FAILURE_TABLES_H

#include "common/class_types.h"
#include "database/books/link_state.h"

#include <limits>

/** No table can have more slots: a larger block does not fit its size word. */
inline constexpr Long maxSlots = std::numeric_limits<Long>::max() / Long{sizeof(double)} - 2;

/** The two failure tables of a link state. */
enum class FailureTable : unsigned char { backup, freed };

/** One slot of them. */
struct TableSlot {
    int oa;             ///< class type
    int level;          ///< preemption level
    FailureTable table; ///< which of the two
    Long slot;          ///< id of the failing link
};

/** The table of a link state for class type `oa` and level `p`. */
template <class State>
auto &tableOf(State &state, FailureTable table, int oa, int p)
{
    return table == FailureTable::backup ? state.bbw[oa][p] : state.fbw[oa][p];
}

/** Slot k of a table indexed by link id; 0 beyond its capacity. */
template <class Vec>
auto slotOf(const Vec &table, Long k)
{
    return k < table.size ? table.cont[k] : 0;
}

/** What failures activate and free, added up. */
struct NeedSum {
    double backup;
    double freed;
};

/** The failure tables of one state; borrows them. */
struct StateTables {
    const DoubleVec (*bbw)[MAXPL];
    const DoubleVec (*fbw)[MAXPL];
    const Levels *used = nullptr; ///< by class type: all slots of other levels are 0; null: unknown

    Levels levels(int oa) const { return used ? used[oa] : Levels::all(); }

    double backup(int oa, int p, Long k) const { return slotOf(bbw[oa][p], k); }
    double freed(int oa, int p, Long k) const { return slotOf(fbw[oa][p], k); }
    void addTo(NeedSum &sum, int oa, int p, Long k) const
    {
        sum.backup += backup(oa, p, k);
        sum.freed += freed(oa, p, k);
    }
};

/** The failure tables of a state. */
inline StateTables tablesOf(const DBLinkState &state) { return {state.bbw, state.fbw}; }

/** Whether slot `k` is needy. */
bool isNeedy(const StateTables &tables, int oa, Long k);

/** The first needy slot from `from` on that lies below `end`; `end` when there is none. */
Long nextNeedySlot(const StateTables &tables, int oa, Long from, Long end);

/** The first slot from `from` on that is not 0 and lies below `end`; `end` when there is none. */
Long nextUsedSlot(const DoubleVec &table, Long from, Long end);

/** One more than the last slot of any table of class type `oa`. */
Long longestTable(const StateTables &tables, int oa);

#endif
