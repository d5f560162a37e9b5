/**
 * What follows the books: four kinds of tables are derived from the nodes, the links and their
 * states, and whoever changes those calls one function here, which sees to all four. (A summary is
 * released with its link's record.)
 *
 * - The summary of a link (reservations/summary.h): which failures need anything on it, and how
 *   much at most.
 * - The index of the network (indices/network_index.h): nodes and links under consecutive numbers,
 *   and of each link what decides whether a primary fits.
 * - The index for backups (indices/backup_index.h): what each link reserves.
 * - The carriers of failures (indices/failure_carriers.h): the failure tables of all links, by
 *   failing link.
 *
 * Who is dropped, who is marked to be looked at before the next search, who follows at once:
 *
 *   event                 summary of the link   network index  backup index  carriers
 *   --------------------  --------------------  -------------  ------------  --------------------
 *   a node comes or goes  needs, on next use    dropped        dropped       stay
 *   a link comes          made; the others:     follows        follows       follow: its slots in;
 *                         needs of carriers of                               lost if its id does
 *                         its failure                                        not lead to it
 *   a link goes           goes with it; the     follows        follows       follow: its slots out;
 *                         others: needs of                                   lists dropped if its
 *                         carriers of its                                    state was handed out;
 *                         failure                                            all with the last link
 *   a state is replaced   made anew unless it   marked         marked        follow: slots out, in;
 *                         was handed out                                     lists dropped if it
 *                                                                            was handed out
 *   a state is handed     distrusted for good   marked, before marked,       stay, though this link
 *   out for writing                             every search   likewise      may leave them
 *   an effect is applied  follows               marked, in its marked        follow, slot by slot
 *                                               class types
 *
 * A link that comes or goes changes the rows of its own failure and of that of the node it enters,
 * and so only what is needed on links that have a slot for its failure, its carriers. The indices
 * follow one link without being made anew (indices/link_numbers.h) and have those marked. Where
 * that cannot be, because the marks of the carriers are lost, no number is vacant, or the id does
 * not lead to the link, it is as with a node.
 *
 * A summary forgets the needs it knows when it is next used and finds that the topology has
 * changed as a whole (bringToTopology). Whatever finds no memory to follow is dropped or
 * distrusted, which costs time but changes no result.
 *
 * Reading goes the other way: a search asks an index to bring itself up to date, and what a
 * question works out a summary remembers. Neither changes the books, so neither comes by here.
 */
#ifndef TARNEX_DATABASE_FOLLOWERS_FOLLOWERS_H
#define TARNEX_DATABASE_FOLLOWERS_FOLLOWERS_H

#include "database/books/network.h"
#include "database/reservations/effect.h"

/** A node has come, or is about to go. */
void followNode(DataBase &db);

/**
 * A link from `src` to `dst` has been stored, with its state.
 *
 * @param isWhole false when its id does not lead to it: the addition has remained incomplete
 */
void followNewLink(DataBase &db, DBLink &link, Long src, Long dst, bool isWhole);

/** A stored link is about to go. */
void followLeavingLink(DataBase &db, const DBLink &link);

/** Exchanges the stored state of a link with another one. */
void exchangeState(DataBase &db, DBLink &link, DBLinkState &other);

/** The stored state of a link, for somebody outside to read and, at any later time, to write. */
DBLinkState &handOutState(DataBase &db, DBLink &link);

/** Applies an effect to the tables of a stored link, which have the room for it; its `rbw` is left
 * to the caller. */
void applyToStored(DataBase &db, DBLink &link, const Effect &effect);

/** Releases everything that follows the books, but for the links' summaries. */
void endFollowers(DataBase &db);

#endif
