/**
 * Admission and removal of LSPs (unit "database/database"): the only operations that store or drop
 * LSP records and so change the reservations of the stored links.
 *
 * The links that an LSP concerns are the hops of its path and, for a backup, those of the protected
 * primary's path, each taken once. Every concerned link is put to the admission predicate before
 * any is changed, so a refused LSP leaves the database as it was. Preemption itself is the caller's
 * business: the ids of the LSPs that would have to give way are only listed. An LSP of h hops costs
 * about 2h evaluations of a link's reservation.
 */
#ifndef TARNEX_ADMISSION_ADMISSION_H
#define TARNEX_ADMISSION_ADMISSION_H

#include "database/books/network.h"

/**
 * Merges into `preemptList`, which stays sorted, the ids of the LSPs to preempt for `lsp`; nothing
 * is changed. A refusal is no failure: the walk stops after the link that refuses.
 *
 * @return 0, or -1 on failure; `preemptList` keeps what was merged so far
 */
[[nodiscard]] int getpreemptList(DataBase *dataBase, DBLabelSwitchedPath *lsp,
                                 LongList *preemptList);

/**
 * As DBaddLSP, with the same messages, up to the point where something would change.
 *
 * @return 0 when `lsp` would be added, lack of memory apart; -1 when refused or on failure
 */
[[nodiscard]] int proposeLSP(DataBase *dataBase, DBLabelSwitchedPath *lsp, LongList *preemptList);

/**
 * Admits `lsp`: stores a copy, lists it on the links of its path and updates every concerned link.
 * Merges into `preemptList` the ids of the LSPs to preempt; they are not removed.
 *
 * @return 0; -1 when refused or on failure, with the database unchanged, or, after "LSP addition
 *         uncomplete", with the LSP stored and the links updated as far as possible
 */
[[nodiscard]] int DBaddLSP(DataBase *dataBase, DBLabelSwitchedPath *lsp, LongList *preemptList);

/**
 * Removes stored LSP `id`: takes it off its links, updates every concerned link and releases it.
 *
 * @return 0; -1 when there is no such LSP or, after "LSP removal uncomplete", when a link was
 * missing (the LSP is gone all the same) or memory was (nothing has changed)
 */
[[nodiscard]] int DBremoveLSP(DataBase *dataBase, Long id);

#endif
