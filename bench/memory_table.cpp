/**
 * Prints what networks cost in memory: counted and resident bytes without LSPs and with two LSPs
 * per node on eight preemption levels, ids dense and sparse, each network in a process of its own.
 */
#include "admission/admission.h"
#include "common/setup.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "error/error.h"
#include "measure.h"
#include "support/random_network.h"

#include <cstdio>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace property;

/** Resident memory of this process, in bytes. */
long residentBytes()
{
    std::ifstream status{"/proc/self/statm"};
    long total = 0;
    long resident = 0;
    status >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

struct Cost {
    double counted;
    long resident;
};

/** What has been taken since `before`. */
Cost since(Cost before)
{
    return {static_cast<std::uint32_t>(allocatedMemory) - before.counted,
            residentBytes() - before.resident};
}

/** Primaries of random bandwidths, two per node, every other one with a local backup. */
void placeLsps(DataBase *db, const NetworkPlan &plan, Rng &rng)
{
    const Owned<LongList, longVecDestroy> preempted{longVecNew(-1)};
    Long id = 0;
    for (std::size_t i = 0; i < 2 * plan.nodes.size(); ++i) {
        PlannedLsp lsp{id++, primaryLSP, static_cast<int>(i % MAXPL)};
        lsp.bw[0] = 1 + randomInt(rng, 9);
        lsp.path = hopPath(plan, anyOf(rng, plan.nodes), anyOf(rng, plan.nodes), rng);
        require(DBaddLSP(db, recordOf(lsp).get(), preempted.get()) == 0, "an LSP was refused");
        if (i % 2 == 0 || lsp.path.size() < 2)
            continue;
        PlannedLsp backup = backupOf(plan, lsp, localBackupLSP, rng);
        backup.id = id++;
        require(backup.path.empty() || DBaddLSP(db, recordOf(backup).get(), preempted.get()) == 0,
                "a backup was refused");
    }
}

void printRow(int nodes, int idStep)
{
    errorInit();
    tarnexConfig = {};
    Rng rng{7};
    NetworkPlan plan = randomNetwork(rng, nodes, 5, idStep);
    for (PlannedLink &link : plan.links)
        link.capacity = 1e6;
    const Cost start = since({0, 0});
    DataBase *db = DBnew(1);
    require(addNetwork(db, plan) == 0, "no network");
    const Cost network = since(start);
    placeLsps(db, plan, rng);
    const Cost loaded = since(start);
    const double links = static_cast<double>(plan.links.size());
    std::printf("%7.0f %9d %9d %12.1f %12.1f %12.1f %12.1f %14.1f\n", links, DBgetMaxNodeID(db),
                db->linkSrcVec.top - 1, network.counted / 1e6,
                static_cast<double>(network.resident) / 1e6, loaded.counted / 1e6,
                static_cast<double>(loaded.resident) / 1e6,
                static_cast<double>(network.resident) / links / 1024);
}

} // namespace

int main()
{
    std::printf("A message of the error stack costs %zu bytes.\n\n", sizeof(ErrorElem));
    std::printf("%7s %9s %9s %25s %25s %14s\n", "", "largest", "largest", "network, MB",
                "with LSPs, MB", "KiB per link");
    std::printf("%7s %9s %9s %12s %12s %12s %12s %14s\n", "links", "node id", "link id", "counted",
                "resident", "counted", "resident", "without LSPs");
    struct Size {
        int nodes, idStep;
    };
    for (const auto &[nodes, idStep] : {Size{20, 1},
                                        {20, 1000},
                                        {200, 1},
                                        {200, 100},
                                        {500, 1},
                                        {1000, 1},
                                        {2000, 1},
                                        {2000, 10},
                                        {4000, 1}}) {
        std::fflush(stdout);
        if (fork() == 0) {
            printRow(nodes, idStep);
            return 0;
        }
        int status = 0;
        wait(&status);
        if (status != 0)
            return 1;
    }
}
