#include "computation/backup/driver.h"

#include "common/records.h"
#include "common/setup.h"
#include "computation/backup/indexed/search.h"
#include "computation/backup/plain/search.h"
#include "database/books/lookup.h"
#include "error/report.h"

#include <algorithm>
#include <cstdio>

namespace
{

constexpr Unit here{"computation/backup/backup"};

/** Prints a remark for whoever watches the program, unless remarks are switched off. */
template <class... Args>
void remark(std::FILE *stream, const char *format, Args... args)
{
    if (printsRemarks)
        std::fprintf(stream, format, args...);
}

/** One call of computeBackup, by either of the searches. */
template <class Search>
class BackupComputation
{
public:
    BackupComputation(const DBLabelSwitchedPath &protectedLSP, LSPRequestList &requests,
                      BackupType backupType, Search &backupSearch)
        : primary(protectedLSP), path(inUse(protectedLSP.path)), reqList(requests),
          type(backupType), search(backupSearch)
    {
    }

    int run()
    {
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
            bool found = false;
            if (searchAround(i, found) != 0)
                return -1;
            if (!found) {
                remark(stderr, "%s", "No local link disjoint protection path found\n");
                return -1;
            }
            LSPRequest &req = reqList.cont[i - 1];
            search.takeOut(req);
            if (write(req) != 0)
                return -1;
            search.putIn(req);
        }
        return 0;
    }

    /** Avoids node i of the primary or, when that cannot be, the link that enters it. */
    int searchAround(std::size_t i, bool &found)
    {
        const auto targets = path.subspan(i);
        search.protect(path.subspan(i - 1, 2));
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
        bool found = false;
        if (searchAroundAll(found) != 0)
            return -1;
        if (!found) {
            remark(stdout, "%s", "Oups ... no path found ...\n");
            remark(stderr, "%s", "No end to end link disjoint protection path found\n");
            return -1;
        }
        search.takeOut(reqList.cont[0]);
        return write(reqList.cont[0]);
    }

    /** Avoids every intermediate node of the primary or, when that cannot be, every link. */
    int searchAroundAll(bool &found)
    {
        const auto egress = path.last(1);
        search.protect(path);
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
        remark(stdout, "Switching from node to link protection for lsp number: %ld\n",
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

    /** Puts the path found into a request. */
    int write(LSPRequest &req)
    {
        req.path.top = 0;
        if (search.writePath(req.path) != 0) {
            req.path.top = 0;
            return -1;
        }
        std::ranges::reverse(inUse(req.path));
        return 0;
    }

    const DBLabelSwitchedPath &primary;
    std::span<const Long> path; ///< the primary's nodes, ingress first
    LSPRequestList &reqList;
    BackupType type;
    Search &search;
};

} // namespace

int computeBackup(DataBase *dataBase, LSPRequestList *reqList, Long lspID, BackupType type)
{
    if (!dataBase || !reqList)
        return here.fail("Wrong argument in %s at line %d");
    DBLabelSwitchedPath *primary = DBgetLSP(dataBase, lspID);
    if (!primary)
        return here.fail("Cannot find lsp ID %ld in %s at line %d", long{lspID});
    return computeBackupOf(*dataBase, *reqList, *primary, type);
}

int computeBackupOf(DataBase &dataBase, LSPRequestList &reqList, DBLabelSwitchedPath &primary,
                    BackupType type)
{
    IndexedBackupSearch indexed{dataBase, primary, reqList, type};
    switch (indexed.offer()) {
    case IndexedBackupSearch::Service::possible:
        return BackupComputation{primary, reqList, type, indexed}.run();
    case IndexedBackupSearch::Service::noMemory:
        return here.fail("Cannot allocate a required structure in %s at line %d");
    case IndexedBackupSearch::Service::impossible:
        break;
    }
    BackupSearch search{dataBase, primary, type};
    return BackupComputation{primary, reqList, type, search}.run();
}
