/**
 * The search of backups in the tables of database/indices/backup_index.h, for nearly all primaries:
 * the same paths as BackupSearch finds, at a small part of its cost.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_INDEXED_SEARCH_H
#define TARNEX_COMPUTATION_BACKUP_INDEXED_SEARCH_H

#include "computation/backup/indexed/pricing.h"
#include "computation/computation.h"

/** The searches of one computation, in the workspace of the network's index. */
class IndexedBackupSearch
{
public:
    /** Searches backups of `protectedLSP`; all must outlive the search. */
    IndexedBackupSearch(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                        const LSPRequestList &requests, BackupType backupType);
    ~IndexedBackupSearch();
    IndexedBackupSearch(const IndexedBackupSearch &) = delete;
    IndexedBackupSearch &operator=(const IndexedBackupSearch &) = delete;

    /** Whether it can serve this primary; `noMemory` when it cannot for lack of memory alone. */
    enum class Service : unsigned char { possible, impossible, noMemory };
    /** Makes ready to search if that is possible. */
    Service offer();

    /** @name What a computation asks of its search (see BackupSearch). */
    ///@{
    int prepare();
    void protect(std::span<const Long> stretch);
    void allowAll();
    int forbidLink(Long src, Long dst);
    int forbidLinksInto(Long node);
    int run(Long from, std::span<const Long> targets, bool &found);
    int writePath(LongVec &found) const;
    void takeOut(const LSPRequest & /*req*/) {} ///< only requests without a path are served
    void putIn(const LSPRequest &req);
    ///@}

private:
    /** One network node during a search. */
    struct Label {
        double val; ///< best path cost so far; `unreached` when there is none
        Long entry; ///< position of the link that reaches it
        bool isMarked;
        bool isTarget;
    };
    /** A node to settle; of equal keys the one inserted last comes out first. */
    struct Entry {
        double key;
        Long order; ///< entries inserted before
        Long node;

        bool isBefore(const Entry &other) const
        {
            return bool((key < other.key) | ((key == other.key) & (order > other.order)));
        }
    };

    bool isServed() const;
    std::size_t layOut(void *block);
    Long positionBetween(Long src, Long dst) const;
    Long nodeBefore(Long node) const;
    void askOnOwnHops(bool isAsked);
    bool areShutOff(std::span<const Long> targets) const;
    bool mayMatter(const Label &label, double val) const;
    void relaxLinksOf(Long node);
    void push(double key, Long node);
    Entry pop();

    DataBase &db;
    std::span<const Long> path; ///< the primary's nodes, ingress first
    const LSPRequestList &reqList;
    BackupType type;
    bool isLooped; ///< whether the primary passes a node twice
    BackupDemands demands;
    LinkPricing pricing;
    std::span<const LSPRequest> earlier; ///< requests that have been put in, the last one first
    bool isServing = false;
    Long start = 0; ///< node number of the search's start
    Long end = 0;   ///< node number of the target settled last

    Label *labels = nullptr;     ///< by node
    bool *isForbidden = nullptr; ///< by position
    Entry *frontier = nullptr;   ///< heap, the next entry first
    Long frontierSize = 0;
    double bound = 0.0; ///< least cost at which a target is reached; no number before
    Long nbInserted = 0;
};

#endif
