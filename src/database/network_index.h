/**
 * The network in one piece, for searches: nodes and links under consecutive numbers, and of every
 * link the figures that decide, in nearly every case, whether a primary fits.
 *
 * Numbers: nodes ascend by id; links ascend by destination and then source, so the links into a
 * node stand together.
 *
 * Invariant: while an index is current, its numbers are those of the database's nodes and links,
 * and the figures of a link follow from its stored state unless the link is listed as stale.
 * Writers: forgetNumbers, when a node or link comes or goes; noteStateChange, when a stored state
 * may have changed; bringUpToDate, before a search.
 */
#ifndef TARNEX_DATABASE_NETWORK_INDEX_H
#define TARNEX_DATABASE_NETWORK_INDEX_H

#include "common/common.h"

#include <cstddef>

struct DataBase_;
struct DBLink_;

/** One class type of one link; bandwidths. */
struct LinkFigures {
    double capacity;
    double reserved; ///< what the tables make the link reserve, over all levels
    double
        magnitude; ///< sum of the sizes of what `reserved` was added up from: bounds its rounding
    double load;   ///< reserved by primaries, over all levels
};

/** Whether so much more fits into a capacity; `unknown` when rounding may decide. */
enum class Fit { yes, no, unknown };

/** Compares with a margin far above what the order of the additions can change. */
inline Fit fitOf(const LinkFigures &figures, double bandwidth)
{
    const double after = figures.reserved + bandwidth;
    const double margin = 1e-11 * (figures.magnitude + bandwidth);
    if (after + margin <= figures.capacity)
        return Fit::yes;
    return after - margin > figures.capacity ? Fit::no : Fit::unknown;
}

/** The index of one database; owns its block, borrows the links. */
struct NetworkIndex {
    bool isCurrent;
    bool isConnected; ///< whether every node that has links reaches every other one
    Long nbNodes;
    Long nbLinks;
    Long *nodeIds;               ///< node ids by node number
    Long *firstIn;               ///< by node: its first link; the next node's is one past its last
    Long *source;                ///< by link: node number of its source
    Long *destination;           ///< by link: node number of its destination
    Long *firstOut;              ///< by node: position of its first out-link in `outLinks`
    Long *outLinks;              ///< link numbers by source, then destination
    DBLink_ **links;             ///< by link number
    LinkFigures *figures[MAXOA]; ///< by link number
    unsigned char *overfull;     ///< by link: a bit per class type that may exceed its capacity
    unsigned char
        *ownFailureNeeds;   ///< by link: a bit per class type in which the failure of the
                            ///< link itself, or of the node it enters, needs bandwidth on it
    unsigned char *isStale; ///< by link
    Long *stale;            ///< the stale links
    Long nbStale;
    void *block;     ///< counted block that holds all the tables; null before the first search
    void *workspace; ///< counted block that searches use in turn
    std::size_t workspaceBytes;
};

/** The numbers no longer hold: releases the index. */
void forgetNumbers(DataBase_ &db);

/** The stored state of a link has changed, or may change from now on without notice. */
void noteStateChange(DataBase_ &db, DBLink_ &link);

/** Numbers nodes and links unless the numbers hold; false without memory. */
[[nodiscard]] bool numberNetwork(DataBase_ &db);

/** Makes the index of a database current, with no stale figures; false without memory. */
[[nodiscard]] bool bringUpToDate(DataBase_ &db);

/** Room of at least so many bytes, with any content, until the next call; null without memory. */
[[nodiscard]] void *workspaceOf(NetworkIndex &index, std::size_t bytes);

/** Releases what the index owns. */
void endIndex(NetworkIndex &index);

#endif
