/** Requests in the form in which the core takes them. */
#ifndef TARNEX_API_CALL_H
#define TARNEX_API_CALL_H

#include "computation/computation.h"
#include "session.h"

#include <span>

namespace tarnex::inside
{

/** A primary request of the core, made from one of the library; std::bad_alloc. */
class CoreRequest
{
public:
    /** For a path that is sought. */
    CoreRequest(const Request &request, LspId id);
    /** For a given path. */
    CoreRequest(const Request &request, LspId id, std::span<const Long> path);
    ~CoreRequest() { lspRequestEnd(&record); }
    CoreRequest(const CoreRequest &) = delete;
    CoreRequest &operator=(const CoreRequest &) = delete;

    LSPRequest *get() { return &record; }
    LSPRequest *operator->() { return &record; }

private:
    LSPRequest record{};
};

/** A request whose class type, level and bandwidth are in order; its ends need not be. WrongUse. */
Request checked(const Session &session, Request request);

/** The ids of a given path, which has to lead over links without coming back to a node. WrongUse.
 */
std::vector<Long> checkedPath(const Session &session, std::span<const NodeId> path);

} // namespace tarnex::inside

#endif
