#include "computation/backup/backup.h"

#include "common/records.h"
#include "computation/backup/search.h"
#include "computation/backup/working_states.h"
#include "database/reservation.h"
#include "error/report.h"

#include <algorithm>
#include <cstdio>

namespace
{

constexpr Unit here{"computation/backup/backup"};

/** One call of computeBackup. */
class BackupComputation
{
public:
    BackupComputation(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                      LSPRequestList &requests, BackupType backupType)
        : db(database), primary(protectedLSP), path(inUse(protectedLSP.path)), reqList(requests),
          type(backupType), states(database), search(database, protectedLSP, states, backupType)
    {
    }

    int run()
    {
        if (!states.allocate() || !search.allocate())
            return here.fail("Cannot allocate a required structure in %s at line %d");
        states.share();
        if (search.prepare() != 0)
            return -1;
        switch (type) {
        case LOCAL_BACKUP:
            return protectLocally();
        case GLOBAL_BACKUP:
            return protectGlobally();
        case NO_BACKUP:
            here.push(INFO, "Oups no backup were requested in %s at line %d");
            return 0;
        default:
            here.push(WARNING, "Unknown backup type in %s at line %d");
            return 0;
        }
    }

private:
    /** One backup per link, from the egress backwards, each knowing those placed before it. */
    int protectLocally()
    {
        if (makeRequests(std::max<std::size_t>(path.size(), 1) - 1) != 0)
            return -1;
        for (std::size_t i = path.size(); i-- > 1;) {
            CPDijkNode *found = nullptr;
            if (searchAround(i, found) != 0)
                return -1;
            if (!found) {
                std::fputs("No local link disjoint protection path found\n", stderr);
                return -1;
            }
            if (write(reqList.cont[i - 1], found) != 0)
                return -1;
        }
        return 0;
    }

    /** Avoids node i of the primary or, when that cannot be, the link that enters it. */
    int searchAround(std::size_t i, CPDijkNode *&found)
    {
        const auto targets = path.subspan(i);
        search.allowAll();
        if (search.forbidLinksInto(path[i]) != 0 || search.run(path[i - 1], targets, found) != 0)
            return -1;
        if (found)
            return 0;
        search.allowAll();
        if (search.forbidLink(path[i - 1], path[i]) != 0)
            return -1;
        return search.run(path[i - 1], targets, found);
    }

    /** One backup from ingress to egress. */
    int protectGlobally()
    {
        if (path.size() < 2)
            return here.fail("Cannot protect a path without link in %s at line %d");
        if (makeRequests(1) != 0)
            return -1;
        CPDijkNode *found = nullptr;
        if (searchAroundAll(found) != 0)
            return -1;
        if (!found) {
            std::puts("Oups ... no path found ...");
            std::fputs("No end to end link disjoint protection path found\n", stderr);
            return -1;
        }
        return write(reqList.cont[0], found);
    }

    /** Avoids every intermediate node of the primary or, when that cannot be, every link. */
    int searchAroundAll(CPDijkNode *&found)
    {
        const auto egress = path.last(1);
        search.allowAll();
        for (const Long node : path.subspan(1, path.size() - 2)) {
            if (search.forbidLinksInto(node) != 0)
                return -1;
        }
        if (search.forbidLink(path[path.size() - 2], path.back()) != 0 ||
            search.run(path.front(), egress, found) != 0)
            return -1;
        if (found)
            return 0;
        std::printf("Switching from node to link protection for lsp number: %ld\n",
                    long{primary.id});
        search.allowAll();
        for (std::size_t k = 1; k < path.size(); ++k) {
            if (search.forbidLink(path[k - 1], path[k]) != 0)
                return -1;
        }
        return search.run(path.front(), egress, found);
    }

    int makeRequests(std::size_t count)
    {
        if (lspRequestListResize(&reqList, static_cast<Long>(count)) != 0)
            return -1;
        for (LSPRequest &req : std::span{reqList.cont, count}) {
            req.primID = primary.id;
            req.type = type;
            req.precedence = backupPrecedence(primary);
            std::ranges::copy(primary.bw, req.bw);
        }
        return 0;
    }

    /** Puts the path found into a request and its reservation into the working states. */
    int write(LSPRequest &req, const CPDijkNode *found)
    {
        evaluateHops(req, REMOVE);
        req.path.top = 0;
        for (const CPDijkNode *node = found; node; node = node->from) {
            if (longVecPushBack(&req.path, node->node->id) != 0) {
                req.path.top = 0;
                return -1;
            }
        }
        std::ranges::reverse(inUse(req.path));
        evaluateHops(req, SETUP);
        return 0;
    }

    /** Applies a request to the working states of its hops; a state that fails is left as it is. */
    void evaluateHops(const LSPRequest &req, operation op)
    {
        const auto hops = inUse(req.path);
        for (std::size_t k = 0; k + 1 < hops.size(); ++k) {
            DBLinkState *state = states.writable(DBgetLinkID(&db, hops[k], hops[k + 1]));
            if (state)
                static_cast<void>(evalLS(&db, hops[k], hops[k + 1], state, state, &req, op));
        }
    }

    DataBase &db;
    const DBLabelSwitchedPath &primary;
    std::span<const Long> path; ///< the primary's nodes, ingress first
    LSPRequestList &reqList;
    BackupType type;
    WorkingStates states;
    BackupSearch search;
};

} // namespace

int computeBackup(DataBase *dataBase, LSPRequestList *reqList, Long lspID, BackupType type)
{
    if (!dataBase || !reqList)
        return here.fail("Wrong argument in %s at line %d");
    const DBLabelSwitchedPath *primary = DBgetLSP(dataBase, lspID);
    if (!primary)
        return here.fail("Cannot find lsp ID %ld in %s at line %d", long{lspID});
    return BackupComputation{*dataBase, *primary, *reqList, type}.run();
}
