/**
 * One link coming or going in the indices that stand, without making them anew.
 *
 * The links into a node have numbers side by side, some of them vacant, and so have the links out
 * of one places. A link that comes takes a vacant number, one that goes leaves one, and those of
 * the same node move up or down by one to stay in order. Only these are listed as stale.
 */
#ifndef TARNEX_DATABASE_INDICES_LINK_NUMBERS_H
#define TARNEX_DATABASE_INDICES_LINK_NUMBERS_H

#include "common/types.h"

struct DataBase_;
struct DBLink_;

/** Numbers a link that has been stored between two nodes; false, and nothing changed, when there is
 * no current index or no vacant number at one of them. */
[[nodiscard]] bool numberLink(DataBase_ &db, DBLink_ &link, Long src, Long dst);

/** Takes the number of a stored link away; false, and nothing changed, when there is no current
 * index or the vacant numbers would be too many. */
[[nodiscard]] bool unnumberLink(DataBase_ &db, const DBLink_ &link);

#endif
