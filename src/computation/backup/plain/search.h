/**
 * The search of a backup path: Dijkstra's algorithm (1959) over the database, link lengths from
 * computeCost, with links that must not be used.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_PLAIN_SEARCH_H
#define TARNEX_COMPUTATION_BACKUP_PLAIN_SEARCH_H

#include "common/records.h"
#include "computation/backup/backup_type.h"
#include "computation/backup/dijkstra.h"
#include "computation/backup/plain/working_states.h"
#include "computation/computation.h"
#include "database/reservations/effect.h"

#include <span>

/** The searches of one computation, on working states of its own. */
class BackupSearch
{
public:
    /** Searches backups of `protectedLSP`; both must outlive the search. */
    BackupSearch(DataBase &database, DBLabelSwitchedPath &protectedLSP, BackupType backupType)
        : db(database), primary(protectedLSP), type(backupType), states(database)
    {
    }
    ~BackupSearch();
    BackupSearch(const BackupSearch &) = delete;
    BackupSearch &operator=(const BackupSearch &) = delete;

    /** Makes the working states, the search nodes and an empty set of forbidden links; 0, or -1
     * after a message. */
    [[nodiscard]] int prepare();

    /** Names the stretch of the primary that the next backup is for, by its nodes: nothing to
     * prepare here. */
    void protect(std::span<const Long> /*stretch*/) {}
    /** Allows every link again. */
    void allowAll() { forbiddenLinks.top = 0; }
    /** Forbids the link from `src` to `dst`; 0, or -1 after a message. */
    [[nodiscard]] int forbidLink(Long src, Long dst);
    /** Forbids every link into `node`; 0, or -1 after a message when the node is gone. */
    [[nodiscard]] int forbidLinksInto(Long node);

    /**
     * Searches from `start` until one of `targets` is settled.
     *
     * @param found whether one can be reached
     * @return 0, or -1 after a message when the search itself failed
     */
    [[nodiscard]] int run(Long start, std::span<const Long> targets, bool &found);

    /** Appends the path found last, from its end to its start; 0, or -1 after a message. */
    [[nodiscard]] int writePath(LongVec &path) const;
    /** Takes the reservation of a request out of the working states of its hops. */
    void takeOut(LSPRequest &req) { evaluateHops(req, REMOVE); }
    /** Puts the reservation of a request into the working states of its hops. */
    void putIn(LSPRequest &req) { evaluateHops(req, SETUP); }

private:
    void reset();
    int relaxLinksOf(CPDijkNode &settled);
    int relax(CPDijkNode &settled, CPDijkNode &neighbour);
    CPDijkNode *nodeOf(Long id) const;
    void evaluateHops(LSPRequest &req, operation op);

    DataBase &db;
    DBLabelSwitchedPath &primary;
    BackupType type;
    WorkingStates states;
    Long nbIds = 0;
    CPDijkNode **nodeList = nullptr; ///< by node id, null without a node; counted blocks
    CPPrioQueue toBeTreated{};       ///< the frontier, keyed by path cost
    const CPDijkNode *end = nullptr; ///< the target settled last
    Scoped<LongList, longVecEnd> forbiddenLinks;
};

#endif
