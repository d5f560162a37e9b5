/**
 * What the tests of the native methods see of a session from inside the process.
 */
#ifndef TARNEX_TESTS_SUPPORT_SESSION_VIEW_H
#define TARNEX_TESTS_SUPPORT_SESSION_VIEW_H

#include "database/books/dump.h"
#include "database/books/lookup.h"
#include "sessions.h"
#include "support/engine_test.h"
#include "support/native_calls.h"

#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <utility>

/** The ids of everything in a session. */
struct Network {
    std::set<jint> nodes, lsps;
    std::map<std::pair<jint, jint>, jint> links;
    bool operator==(const Network &) const = default;
};

/** What a call prints through the C library, on standard output and error. */
inline std::string printed(const std::function<void()> &call)
{
    char *text = nullptr;
    std::size_t length = 0;
    FILE *const stream = open_memstream(&text, &length);
    FILE *const out = std::exchange(stdout, stream), *const err = std::exchange(stderr, stream);
    call();
    stdout = out;
    stderr = err;
    static_cast<void>(std::fclose(stream));
    const std::string result{text, length};
    std::free(text);
    return result;
}

inline std::string dumpOf(int slot)
{
    return sessions[slot] ? printed([&] { DBprintDB(sessions[slot]->centralDB); }) : "";
}

inline Network networkOf(int slot)
{
    Network network;
    if (!sessions[slot])
        return network;
    DataBase &db = *sessions[slot]->centralDB;
    for (const auto *lsp : slots(db.lspVec)) {
        if (lsp)
            network.lsps.insert(lsp->id);
    }
    for (const auto *node : slots(db.nodeVec)) {
        if (!node)
            continue;
        network.nodes.insert(node->id);
        for (const Long to : inUse(node->outNeighb))
            network.links[{node->id, to}] = DBgetLinkID(&db, node->id, to);
    }
    return network;
}

/** Counted bytes in use, without those of the error stacks. */
inline Long bytesHeld()
{
    Long entries = currentSessId < 0 ? errorManager.size : 0;
    for (const SessionItem *item : sessions)
        entries += item ? item->errorManager.size : 0;
    return allocatedMemory - entries * static_cast<Long>(sizeof(ErrorElem));
}

#endif
