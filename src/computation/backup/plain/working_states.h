/**
 * The link states that a backup computation works on, by link id: the database's own until one is
 * to be written, then a private copy.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_PLAIN_WORKING_STATES_H
#define TARNEX_COMPUTATION_BACKUP_PLAIN_WORKING_STATES_H

#include "database/books/network.h"

/** The list of states; shares or owns each. */
class WorkingStates
{
public:
    explicit WorkingStates(DataBase &database) : db(database) {}
    /** Destroys the private copies. */
    ~WorkingStates();
    WorkingStates(const WorkingStates &) = delete;
    WorkingStates &operator=(const WorkingStates &) = delete;

    /** Makes the list, one empty slot per link id; false without memory. */
    [[nodiscard]] bool allocate();
    /** Fills the list with the database's states; what is missing is reported and stays empty. */
    void share();

    /** The states by link id, null where there is none; as computeCost wants them. */
    DBLinkState **list() { return lsList; }
    /**
     * A state that may be written, copied from the database's on first use. Null when there is none
     * or, after a message, when it cannot be copied; the link is then out of the computation.
     */
    DBLinkState *writable(Long link);

private:
    bool isShared(Long link) const;

    DataBase &db;
    Long size = 0;
    DBLinkState **lsList = nullptr; ///< counted block
};

#endif
