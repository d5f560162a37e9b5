/** An effect applied to the tables of a state. */
#ifndef TARNEX_DATABASE_RESERVATIONS_APPLY_EFFECT_H
#define TARNEX_DATABASE_RESERVATIONS_APPLY_EFFECT_H

#include "common/class_types.h"
#include "database/reservations/effect.h"

/**
 * Applies an effect to tables that have the room for it; `rbw` is left as it is.
 *
 * @param settled class types that need not be touched where the effect changes nothing in them:
 *        adding its 0 leaves their values as they are
 * @param visit called as `visit(oa, change, value)` for each slot that has got another value
 */
template <class Visit>
void applyEffect(const Effect &effect, DBLinkState &ls, ClassTypes settled, Visit visit)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!effect.changes(oa) && settled.has(oa))
            continue;
        ls.pbw[oa][effect.level] += effect.primary[oa];
        for (const SlotChange &change : effect.slots.all()) {
            const double amount = effect.amount(change, oa);
            if (amount == 0.0)
                continue;
            double &slot = tableOf(ls, change.table, oa, effect.level).cont[change.slot];
            slot += amount;
            visit(oa, change, slot);
        }
    }
}

#endif
