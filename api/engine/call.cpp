#include "call.h"

#include "books.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace tarnex::inside
{

CoreRequest::CoreRequest(const Request &request, LspId id)
    : CoreRequest(request, id, std::array{request.ingress.value, Long{-1}, request.egress.value})
{
    for (const LinkId link : request.avoid) {
        if (longVecPushBack(&record.forbidLinks, link.value) != 0) {
            lspRequestEnd(&record);
            throw std::bad_alloc{};
        }
    }
}

CoreRequest::CoreRequest(const Request &request, LspId id, std::span<const Long> path)
{
    if (lspRequestInit(&record) != 0)
        throw std::bad_alloc{};
    record.id = id.value;
    record.precedence = request.level;
    record.type = primaryLSP;
    record.bw[request.classType] = request.bandwidth;
    bool isFilled = true;
    for (const Long node : path)
        isFilled = isFilled && longVecPushBack(&record.path, node) == 0;
    if (isFilled)
        return;
    lspRequestEnd(&record);
    throw std::bad_alloc{};
}

Request checked(const Session &session, Request request)
{
    if (request.classType < 0 || request.classType >= session.options.classTypes)
        wrong("No class type in use: " + std::to_string(request.classType) + ".");
    if (request.level < 0 || request.level >= session.options.levels)
        wrong("No level in use: " + std::to_string(request.level) + ".");
    if (!std::isfinite(request.bandwidth) || request.bandwidth < 0.0)
        wrong("A bandwidth has to be a finite number of 0 or more.");
    request.bandwidth += 0.0; // -0.0 would stay in the tables
    return request;
}

std::vector<Long> checkedPath(const Session &session, std::span<const NodeId> path)
{
    std::vector<Long> ids = idsOf(path);
    if (ids.size() < 2)
        wrong("A path has two nodes or more.");
    for (std::size_t k = 1; k < ids.size(); ++k) {
        if (!linkAt(session.db->linkTab, ids[k - 1], ids[k]))
            wrong("There is no link from node " + std::to_string(ids[k - 1]) + " to node " +
                  std::to_string(ids[k]) + ".");
    }
    std::vector<Long> sorted = ids;
    std::ranges::sort(sorted);
    if (const auto twice = std::ranges::adjacent_find(sorted); twice != sorted.end())
        wrong("The path passes node " + std::to_string(*twice) + " twice.");
    return ids;
}

} // namespace tarnex::inside
