/**
 * A path by way of the working topology, whatever the request, for comparison with the driver's.
 */
#ifndef TARNEX_TESTS_SUPPORT_TOPOLOGY_ROUTE_H
#define TARNEX_TESTS_SUPPORT_TOPOLOGY_ROUTE_H

#include "common/records.h"
#include "computation/primary/driver.h"
#include "computation/primary/plain/search.h"

namespace property
{

/** What a request can see, empty at first. */
struct Topology : BKTopology {
    Topology() : BKTopology{} { static_cast<void>(initTopo(this, -1)); }
    ~Topology() { endTopo(this); }
    Topology(const Topology &) = delete;
    Topology &operator=(const Topology &) = delete;
};

/** Writes the path into the request and its score into `cost`; -1 after the driver's messages. */
inline int routeByTopology(DataBase *db, LSPRequest &req, double &cost)
{
    Topology topo;
    const char *failed = nullptr;
    if (fillTopo(db, &req, &topo) != 0)
        failed = "Unable to build topology";
    else if (bellmanKalaba(&topo, &req) != 0)
        failed = "Bellman-Kalaba failure";
    else if (updateRequest(&topo, &req) != 0)
        failed = "Unable to update requested path";
    if (failed)
        addError(CRITICAL, "%s in computation/primary/primaryPath at line 0", failed);
    const Long end = failed ? -1 : getRequestDst(&req);
    if (end < 0)
        return -1;
    cost = placedNode(topo, end).info.cost;
    return 0;
}

} // namespace property

#endif
