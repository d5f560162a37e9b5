/**
 * The network in one piece, for searches: nodes and links under consecutive numbers, and of every
 * link the figures that decide, in nearly every case, whether a primary fits.
 *
 * Numbers: nodes ascend by id; links ascend by destination and then source, so the links into a
 * node stand together. Numbers that links have left are vacant, and so are the places in
 * `outLinks`; they stand before the others of their node and lead from it to itself, over a link
 * that fits nothing, so that searches need not know them. The last number is always vacant.
 *
 * - `fits`: a primary of up to this bandwidth surely fits.
 * - `exceeds`: one of this bandwidth or more surely does not. Between the two, which are the link's
 *   room less and more a margin for rounding, the predicate is asked.
 * - `maybeOverfull`: a class type in which the newcomer asks for nothing refuses it only when it is
 *   overfull already; these are the ones where that is possible.
 *
 * All three count the reservations of the levels up to one: the newcomer's own if it may preempt,
 * else the last.
 *
 * Building costs a pass over all nodes and links; the figures of a link cost the rows of its needy
 * slots (reservations/failure_rows.h). A search brings up to date the links listed as stale and
 * pays for them only. Asking is one array access.
 *
 * Invariant: while an index is current, its numbers are those of the database's nodes and links,
 * and the figures of a link follow from its stored state unless the link is listed as stale.
 * Writers: what follows the books (database/followers/followers.h), which releases an index or
 * lists links as stale; numberNetwork and bringUpToDate, before a search.
 */
#ifndef TARNEX_DATABASE_INDICES_NETWORK_INDEX_H
#define TARNEX_DATABASE_INDICES_NETWORK_INDEX_H

#include "common/class_types.h"

#include <cstddef>
#include <cstdint>
#include <span>

struct DataBase_;
struct DBLink_;

/** One class type of one link as scores read it; bandwidths. */
struct LinkFigures {
    double capacity;
    double load; ///< reserved by primaries, over all levels
};

/** A link seen from its source. */
struct OutLink {
    Long node; ///< number of its destination
    Long link;
};

/** How a search has come to a node; of the search if it has its stamp. */
struct Visit {
    std::uint32_t stamp;
    Long place; ///< whatever the search keeps
};

/** What is known of the nodes that a node reaches, if not all reach each other. */
enum class Reach : unsigned char {
    unknown,
    usual,
    odd ///< a link into one of them comes from a node outside, with a larger id than all of them
};

/** The index of one database; owns its block, borrows the links. */
struct NetworkIndex {
    bool isCurrent;
    bool isExplored;  ///< whether `isConnected` and `reach` hold
    bool isConnected; ///< whether every node that has links reaches every other one
    bool isOrderedByColor;
    bool hasUntabledLinks; ///< whether an id is too large for any table: asking about such a link
                           ///< reports something
    ClassTypes needy;      ///< where some link that was not stale has, or had, needy slots
    Long spare;            ///< vacant numbers that each node gets when the index is made
    Long nbNodes;
    Long nbLinks;                 ///< link numbers, the vacant ones among them
    Long *nodeIds;                ///< node ids by node number
    Long *firstIn;                ///< by node: its first link; the next node's is one past its last
    Long *ids;                    ///< by link: its id; -1 where it is vacant
    Long *source;                 ///< by link: node number of its source
    Long *destination;            ///< by link: node number of its destination
    Long *firstOut;               ///< by node: position of its first out-link in `outLinks`
    OutLink *outLinks;            ///< links by source, then destination
    Reach *reach;                 ///< by node
    Visit *visits;                ///< by node
    std::uint32_t lastStamp;      ///< none of the visits has a larger one
    Long *colors;                 ///< by link
    Long *byColor;                ///< links by colour, if `isOrderedByColor`
    DBLink_ **links;              ///< by link number; null where it is vacant
    LinkFigures *figures[MAXOA];  ///< by link number
    unsigned char *pieces[MAXOA]; ///< by link: the piece of the link cost that its load lies on
    int lowestLevel;            ///< the next three tables are there for the levels from this one on
    double *fits[MAXOA][MAXPL]; ///< by link: a primary of up to so much fits, as far as the
                                ///< reservations of the levels up to this one decide
    double *exceeds[MAXOA][MAXPL];    ///< by link: one of so much or more does not; no number where
                                      ///< only the link's tables decide
    ClassTypes *maybeOverfull[MAXPL]; ///< by link: where it may be overfull
    ClassTypes *staleClasses;         ///< by link
    Long *stale;                      ///< the stale links
    Long nbStale;
    void *block;     ///< counted block that holds all the tables; null before the first search
    void *workspace; ///< counted block that searches use in turn
    std::size_t workspaceBytes;

    /** The number that no link ever has. */
    Long noLink() const { return nbLinks - 1; }
};

/** The figures of a stored link no longer hold in some class types. */
void markStale(NetworkIndex &index, const DBLink_ &link, ClassTypes classes);

/** Numbers nodes and links unless the numbers hold; false without memory. */
[[nodiscard]] bool numberNetwork(DataBase_ &db);

/** Makes the index of a database current, with no stale figures and with those of the levels from
 * `level` on; false without memory. */
[[nodiscard]] bool bringUpToDate(DataBase_ &db, int level = MAXPL - 1);

/** Lists a link number as stale in some class types. */
void markStale(NetworkIndex &index, Long number, ClassTypes classes);

/** Whether there are links into or out of a node. */
bool hasLinks(const NetworkIndex &index, Long node);

/** Whether the numbers, and what leads from one to the other, are those of the books; for debug
 * builds. */
[[nodiscard]] bool followsNetwork(const DataBase_ &db);

/** Finds out what the nodes are like that a node reaches; unknown without memory. Costs a pass over
 * all links after a change of topology, and over theirs the first time unless the network is
 * connected; takes the workspace for it. */
[[nodiscard]] Reach reachOf(NetworkIndex &index, Long node);

/** The links of a colour. After colours have changed the first question costs a sort. */
[[nodiscard]] std::span<const Long> linksOfColor(NetworkIndex &index, Long color);

/** Room of at least so many bytes, with any content, until the next call; null without memory. */
[[nodiscard]] void *workspaceOf(NetworkIndex &index, std::size_t bytes);

/** The first of `count` successive stamps that no visit has. */
[[nodiscard]] std::uint32_t takeStamps(NetworkIndex &index, std::uint32_t count);

/** Releases what the index owns. */
void endIndex(NetworkIndex &index);

#endif
