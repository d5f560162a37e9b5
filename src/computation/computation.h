/**
 * LSP requests: the question that a path computation answers (unit "computation/computation").
 *
 * A request says which LSP is wanted, what it needs and what it must avoid; its `path` holds the
 * route as far as it is known and, after the computation, in full. A request owns its two lists. A
 * list of requests owns them by value; pointers into it are good until it is resized or ended.
 */
#ifndef TARNEX_COMPUTATION_COMPUTATION_H
#define TARNEX_COMPUTATION_COMPUTATION_H

#include "common/common.h"

/** What a request that replaces an LSP must leave alone. */
struct LSPrerouteInfo_ {
    Long id;  ///< id of the LSP that is replaced; -1: no rerouting information
    Long src; ///< source node of the directed link that must not be used while id >= 0
    Long dst; ///< destination node of that link
};
using LSPrerouteInfo = LSPrerouteInfo_;

/** A request for one LSP. */
struct LSPRequest_ {
    Long id;     ///< id of the LSP that the request is for
    Long primID; ///< for a backup: id of the protected primary; 0 in a primary request
    LSPrerouteInfo rerouteInfo; ///< see above
    int precedence;             ///< preemption level, 0 the most important
    double bw[MAXOA];           ///< requested bandwidth per class type
    LongList forbidLinks;       ///< link colours that the path must not use
    LongList path;  ///< node ids, ingress first; an entry below 0 is a stretch not known yet
    DBLSPType type; ///< kind of LSP requested
};
using LSPRequest = LSPRequest_;

/** An array of requests; `size` is both their number and the number of initialised slots. */
struct LSPRequestList_ {
    LSPRequest *cont; ///< counted block, owned
    Long size;
};
using LSPRequestList = LSPRequestList_;

/** New request: every field 0, `rerouteInfo.id` -1, two empty lists; null on failure. */
[[nodiscard]] LSPRequest *lspRequestNew();
/** Initialises a record in place, as lspRequestNew; nothing stays allocated on failure. */
[[nodiscard]] int lspRequestInit(LSPRequest *req);
/** Releases the two lists. */
int lspRequestEnd(LSPRequest *req);
/** Releases the two lists and the record made by lspRequestNew. */
int lspRequestDestroy(LSPRequest *req);
/** Makes the initialised `dst` a copy of `src`; the scalars are copied even when a list fails. */
[[nodiscard]] int lspRequestCopy(LSPRequest *dst, LSPRequest *src);

/** Makes a list of `size` initialised requests, at least one. */
[[nodiscard]] int lspRequestListInit(LSPRequestList *reqList, Long size);
/** Releases every request and the array. */
int lspRequestListEnd(LSPRequestList *reqList);
/** Grows or shrinks to `size` requests; shrinking keeps the storage. */
[[nodiscard]] int lspRequestListResize(LSPRequestList *reqList, Long size);
/** Number of requests; -1 for a null list. */
Long lspRequestListSize(LSPRequestList *reqList);
/** Request `index` inside the list; null when out of bounds. */
LSPRequest *lspRequestListGet(LSPRequestList *reqList, Long index);
/** Stores nothing and says so on the error stack; write through lspRequestListGet. Returns 0. */
int lspRequestListSet(LSPRequestList *reqList, LSPRequest *req, Long index);

/** First entry of the request's path; -1 after a message when the path is not well formed. */
int getRequestSrc(LSPRequest *req);
/** Last entry of the request's path; -1 after a message when the path is not well formed. */
int getRequestDst(LSPRequest *req);

#endif
