#include "computation/computation.h"

#include "common/records.h"
#include "error/report.h"

#include <algorithm>

namespace
{

constexpr Unit here{"computation/computation"};
/** A path without known ends is reported by the computation that it was meant for. */
constexpr Unit primaryPath{"computation/primary/primaryPath"};

/** Fills a zeroed record; nothing stays allocated on failure. */
int makeRequest(LSPRequest &req)
{
    if (longVecInit(&req.forbidLinks, -1) != 0)
        return here.fail("Unable to create label switched path request in %s at line %d");
    Guard<LongList, longVecEnd> forbidLinks{&req.forbidLinks};
    if (longVecInit(&req.path, -1) != 0)
        return here.fail("Unable to create label switched path request in %s at line %d");
    handOver(forbidLinks);
    req.rerouteInfo.id = -1;
    return 0;
}

/** Initialises requests `from` to `to` - 1; after a failure none of them is. */
int initRange(LSPRequest *requests, Long from, Long to)
{
    for (Long i = from; i < to; ++i) {
        if (lspRequestInit(&requests[i]) == 0)
            continue;
        here.push(CRITICAL, "Error while initialisation of LSPRequest in %s at line %d");
        while (i-- > from)
            lspRequestEnd(&requests[i]);
        return -1;
    }
    return 0;
}

std::size_t bytesFor(Long requests)
{
    return static_cast<std::size_t>(requests) * sizeof(LSPRequest);
}

/** Whether both ends of a request's path are known; pushes a message otherwise. */
bool isWellFormed(const LSPRequest *req)
{
    if (!req) {
        primaryPath.push(CRITICAL, "Bad argument (NULL) in %s at line %d");
        return false;
    }
    const auto path = inUse(req->path);
    const bool wellFormed = path.size() > 1 && path.front() >= 0 && path.back() >= 0;
    if (!wellFormed)
        primaryPath.push(CRITICAL, "Bad requested path format in %s at line %d");
    return wellFormed;
}

} // namespace

LSPRequest *lspRequestNew()
{
    auto *req = static_cast<LSPRequest *>(mycalloc(1, sizeof(LSPRequest)));
    if (!req)
        return here.null("Critical lack of memory in %s at line %d");
    if (makeRequest(*req) != 0) {
        myfree(req);
        return nullptr;
    }
    return req;
}

int lspRequestInit(LSPRequest *req)
{
    if (!req)
        return here.fail("Bad argument (NULL) in %s at line %d");
    *req = {};
    return makeRequest(*req);
}

int lspRequestEnd(LSPRequest *req)
{
    if (!req)
        return here.fail("Bad argument (NULL) in %s at line %d");
    longVecEnd(&req->forbidLinks);
    longVecEnd(&req->path);
    return 0;
}

int lspRequestDestroy(LSPRequest *req) { return destroyRecord<lspRequestEnd>(req); }

int lspRequestCopy(LSPRequest *dst, LSPRequest *src)
{
    if (!dst || !src)
        return here.fail("Bad argument (NULL) in %s at line %d");
    dst->id = src->id;
    dst->primID = src->primID;
    dst->rerouteInfo = src->rerouteInfo;
    dst->precedence = src->precedence;
    std::ranges::copy(src->bw, dst->bw);
    dst->type = src->type;
    int result = longVecCopy(&dst->forbidLinks, &src->forbidLinks);
    result |= longVecCopy(&dst->path, &src->path);
    if (result != 0)
        return here.fail("Label switched path request copy uncomplete in %s at line %d");
    return 0;
}

int lspRequestListInit(LSPRequestList *reqList, Long size)
{
    if (!reqList)
        return here.fail("LSPRequestList == NULL in %s at line %d");
    *reqList = {};
    const Long count = std::max(size, 1);
    auto *cont = static_cast<LSPRequest *>(mycalloc(1, bytesFor(count)));
    if (!cont)
        return here.fail("Impossible to allocate memory for LSPRequestList in %s at line %d");
    if (initRange(cont, 0, count) != 0) {
        myfree(cont);
        return -1;
    }
    *reqList = {cont, count};
    return 0;
}

int lspRequestListEnd(LSPRequestList *reqList)
{
    if (!reqList)
        return here.fail("LSPRequestList == NULL in %s at line %d");
    for (Long i = 0; i < reqList->size; ++i)
        lspRequestEnd(&reqList->cont[i]);
    if (reqList->cont)
        myfree(reqList->cont);
    *reqList = {};
    return 0;
}

int lspRequestListResize(LSPRequestList *reqList, Long size)
{
    if (!reqList)
        return here.fail("LSPRequestList == NULL in %s at line %d");
    if (size <= reqList->size) {
        const Long kept = std::max(size, 0);
        for (Long i = reqList->size; i-- > kept;)
            lspRequestEnd(&reqList->cont[i]);
        reqList->size = kept;
        return 0;
    }
    auto *cont = static_cast<LSPRequest *>(reqList->cont ? myrealloc(reqList->cont, bytesFor(size))
                                                         : mymalloc(bytesFor(size)));
    if (!cont)
        return here.fail("Impossible to allocate memory for LSPRequestList in %s at line %d");
    reqList->cont = cont;
    if (initRange(cont, reqList->size, size) != 0)
        return -1;
    reqList->size = size;
    return 0;
}

Long lspRequestListSize(LSPRequestList *reqList)
{
    return reqList ? reqList->size : here.fail("LSPRequestList == NULL in %s at line %d");
}

LSPRequest *lspRequestListGet(LSPRequestList *reqList, Long index)
{
    if (!reqList)
        return here.null("LSPRequestList == NULL in %s at line %d");
    if (index < 0 || index >= reqList->size)
        return here.null("Out of bound index in %s at line %d");
    return &reqList->cont[index];
}

int lspRequestListSet(LSPRequestList * /*reqList*/, LSPRequest * /*req*/, Long /*index*/)
{
    here.push(CRITICAL, "Trying to call an undefined function in %s at line %d");
    return 0;
}

int getRequestSrc(LSPRequest *req) { return isWellFormed(req) ? req->path.cont[0] : -1; }

int getRequestDst(LSPRequest *req)
{
    return isWellFormed(req) ? req->path.cont[req->path.top - 1] : -1;
}
