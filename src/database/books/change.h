/**
 * Changing a network: nodes and links come and go, states are replaced (unit "database/database").
 * LSPs are another matter, see admission/admission.h.
 *
 * Every operation that succeeds, or fails half way, has everything derived from the books follow
 * (database/followers/followers.h). Operations return 0, or -1 after pushing a message.
 */
#ifndef TARNEX_DATABASE_BOOKS_CHANGE_H
#define TARNEX_DATABASE_BOOKS_CHANGE_H

#include "database/books/network.h"

/** New empty database; null on failure. */
[[nodiscard]] DataBase *DBnew(Long ID);
/** Releases everything the database owns, then the record. */
int DBdestroy(DataBase *dataBase);

/** Adds a node; its id must be free. */
[[nodiscard]] int DBaddNode(DataBase *dataBase, Long id);
/**
 * Removes a node and every link into or out of it; LSPs that used the links stay stored. Completes
 * what it can: after -1 with "Node removal uncomplete" the node is counted as removed.
 */
[[nodiscard]] int DBremoveNode(DataBase *dataBase, Long id);
/**
 * Adds a link with a copy of `initLinkState`. Both end nodes must exist, the id must be free and
 * the ordered pair not linked yet. After -1 with "Link addition uncomplete" the link is there and
 * counted.
 */
[[nodiscard]] int DBaddLink(DataBase *dataBase, Long id, Long src, Long dst,
                            DBLinkState *initLinkState);
/** Removes the link from `src` to `dst`; LSPs that used it stay stored. */
[[nodiscard]] int DBremoveLink(DataBase *dataBase, Long src, Long dst);

/**
 * Stored state of the link from `src` to `dst`; null after a message. It may be written at any
 * later time, so from now on the link's reservations are worked out from its tables at every turn.
 */
DBLinkState *DBgetLinkState(DataBase *dataBase, Long src, Long dst);
/**
 * Copies `newLS` into the state of the link from `src` to `dst`, as a whole or, without memory, not
 * at all. As in DBlinkStateCopy, slots beyond the capacity of `newLS` keep their values.
 */
[[nodiscard]] int DBsetLinkState(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS);

#endif
