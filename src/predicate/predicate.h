/**
 * The admission predicate: may this directed link carry one more LSP, and how much bandwidth must
 * preemption free for it (unit "predicate/predicate").
 *
 * The predicate asks the database what the link would reserve with the request set up on it and
 * tests the answer; the switches of the session's PredicateConfig select the tests. It changes
 * neither the link state, nor the request, nor the database, and allocates nothing for an LSP of up
 * to 64 hops, but to report a failure. Refusal and failure both give false; a failure has pushed
 * its message.
 */
#ifndef TARNEX_PREDICATE_PREDICATE_H
#define TARNEX_PREDICATE_PREDICATE_H

#include "computation/computation.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"

/**
 * Tells whether the link from `src` to `dst`, now in state `ls`, may carry `req`. A path that is
 * not complete (an entry below 0) is read as the one hop `src`, `dst`.
 *
 * @param gain MAXOA bandwidths that preemption must free; zeroed in advance by the caller, because
 * a capacity test that is off, or refuses, does not write all of it
 */
bool isValidRequestLink(DataBase *dataBase, Long src, Long dst, DBLinkState *ls, LSPRequest *req,
                        double *gain);

/**
 * Tells whether the link from `src` to `dst` in state `ls` can carry `lsp`, possibly by preempting.
 *
 * @param gain MAXOA bandwidths that preemption must free, per class type; written by the capacity
 *             test as far as it gets, so zeroed in advance by the caller
 * @return true when admitted; false when refused or, after a message, when the question failed
 */
bool isValidLSPLink(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                    DBLabelSwitchedPath *lsp, double *gain);

/** As isValidLSPLink for a stored link, with the LSP's effect on it already worked out. */
bool isValidWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                       const DBLabelSwitchedPath &lsp, double *gain);

/**
 * Capacity test on an evaluated state, in which the request is already reserved: what the request
 * cannot preempt must fit the capacity (everything, when rerouting is not allowed). Fills `gain`
 * with what the reservations exceed the capacity by.
 */
bool capacityClause(DBLinkState *ls, LSPRequest *req, double *gain);

/** Colour test: false when the link's colour is among the request's forbidden ones. */
bool colorClause(DBLinkState *ls, LSPRequest *req);

#endif
