/**
 * The search of a backup path: Dijkstra's algorithm (1959) over the database, link lengths from
 * computeCost, with links that must not be used.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_SEARCH_H
#define TARNEX_COMPUTATION_BACKUP_SEARCH_H

#include "common/records.h"
#include "computation/backup/backup.h"
#include "computation/backup/working_states.h"

#include <span>

class BackupSearch
{
public:
    /** Searches backups of `primary`; all three must outlive the search. */
    BackupSearch(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                 const WorkingStates &workingStates, BackupType backupType)
        : db(database), primary(protectedLSP), states(workingStates), type(backupType)
    {
    }
    ~BackupSearch();
    BackupSearch(const BackupSearch &) = delete;
    BackupSearch &operator=(const BackupSearch &) = delete;

    /** Makes the list of search nodes, one empty slot per node id; false without memory. */
    [[nodiscard]] bool allocate();
    /** Makes the search nodes and an empty set of forbidden links; 0, or -1 after a message. */
    [[nodiscard]] int prepare();

    /** Allows every link again. */
    void allowAll() { forbiddenLinks.top = 0; }
    /** Forbids the link from `src` to `dst`; 0, or -1 after a message. */
    [[nodiscard]] int forbidLink(Long src, Long dst);
    /** Forbids every link into `node`; 0, or -1 after a message when the node is gone. */
    [[nodiscard]] int forbidLinksInto(Long node);

    /**
     * Searches from `start` until one of `targets` is settled.
     *
     * @param found the settled target, whose chain is the path; null when none can be reached
     * @return 0, or -1 after a message when the search itself failed
     */
    [[nodiscard]] int run(Long start, std::span<const Long> targets, CPDijkNode *&found);

private:
    void reset();
    int relaxLinksOf(CPDijkNode &settled);
    int relax(CPDijkNode &settled, CPDijkNode &neighbour);
    CPDijkNode *nodeOf(Long id) const;

    DataBase &db;
    const DBLabelSwitchedPath &primary;
    const WorkingStates &states;
    BackupType type;
    Long nbIds = 0;
    CPDijkNode **nodeList = nullptr; ///< by node id, null without a node; counted blocks
    CPPrioQueue toBeTreated{};       ///< the frontier, keyed by path cost
    Scoped<LongList, longVecEnd> forbiddenLinks;
};

#endif
