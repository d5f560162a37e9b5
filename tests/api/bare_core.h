/** The calls of the core that an engine of the C++ library stands for, made one by one. */
#ifndef TARNEX_TESTS_API_BARE_CORE_H
#define TARNEX_TESTS_API_BARE_CORE_H

#include "admission/admission.h"
#include "admission/placement.h"
#include "api/networks.h"
#include "common/engine_lock.h"
#include "common/setup.h"
#include "computation/backup/driver.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "error/error.h"

#include <cmath>
#include <map>
#include <optional>

namespace tarnex::test
{

/** A database with the same contents as an engine. Every call takes the lock and the globals;
 * messages go nowhere. */
class BareCore
{
public:
    struct Placed {
        std::vector<Long> path;
        double score;
        std::vector<Long> victims; ///< primaries
    };

    BareCore(const Options &wanted, const NetworkPlan &plan) : options(wanted)
    {
        const EngineLock lock = load();
        EXPECT_EQ(property::addNetwork(db, plan), 0);
    }
    ~BareCore()
    {
        const EngineLock lock = load();
        DBdestroy(db);
        printsRemarks = true;
    }
    BareCore(const BareCore &) = delete;
    BareCore &operator=(const BareCore &) = delete;

    std::optional<Placed> place(const Request &request, LspId id)
    {
        const EngineLock lock = load();
        setWeights(request);
        const auto wanted = property::requestOf({.id = id.value, .precedence = request.level});
        wanted->bw[request.classType] = request.bandwidth;
        for (const Long node : {request.ingress.value, -1, request.egress.value})
            static_cast<void>(longVecPushBack(&wanted->path, node));
        struct Report final : PlacementReport {
            explicit Report(BareCore &owner) : core(owner) {}
            bool takePreempted(std::span<const Long> ids) override
            {
                victims.assign(ids.begin(), ids.end());
                for (std::size_t k = ids.size(); k-- > 0;)
                    core.removeBackups(ids[k]);
                return true;
            }
            BareCore &core;
            std::vector<Long> victims;
        } report{*this};
        if (placePrimary(db, wanted.get(), PlacementGoal::lsp, report) != ::Placement::done)
            return std::nullopt;
        return Placed{property::idsIn(wanted->path), COST, report.victims};
    }

    /** The paths of a primary's backups, added under ids from `firstId` on. */
    std::optional<std::vector<std::vector<Long>>> protect(LspId id, bool isLocal, LspId firstId)
    {
        const EngineLock lock = load();
        LSPRequestList list{};
        EXPECT_EQ(lspRequestListInit(&list, -1), 0);
        const Guard<LSPRequestList, lspRequestListEnd> guard{&list};
        if (computeBackup(db, &list, id.value, isLocal ? LOCAL_BACKUP : GLOBAL_BACKUP) != 0)
            return std::nullopt;
        BackupPlacement placement{*db, *DBgetLSP(db, id.value),
                                  isLocal ? localBackupLSP : globalBackupLSP};
        std::vector<std::vector<Long>> paths;
        for (LSPRequest &request : std::span{list.cont, static_cast<std::size_t>(list.size)}) {
            const Long backup = firstId.value + static_cast<Long>(paths.size());
            EXPECT_EQ(placement.admit(request, backup, PlacementGoal::lsp), ::Placement::done);
            backups[id.value].push_back(backup);
            paths.push_back(property::idsIn(request.path));
        }
        return paths;
    }

    void remove(LspId id)
    {
        const EngineLock lock = load();
        removeBackups(id.value);
        EXPECT_EQ(DBremoveLSP(db, id.value), 0);
    }

    /** Whether every link reserves and lists, to the bit, what it does in an engine. */
    bool isLike(const Engine &engine, const NetworkPlan &plan) const
    {
        for (const property::PlannedLink &planned : plan.links) {
            const DBLink &link = *linkAt(db->linkTab, planned.src, planned.dst);
            const LinkUse use = engine.use(LinkId{planned.id});
            for (std::size_t oa = 0; oa < maxClassTypes; ++oa) {
                if (!std::ranges::equal(link.state.pbw[oa], use.primary[oa]) ||
                    !std::ranges::equal(link.state.rbw[oa], use.total[oa]) || !addsUp(use, oa))
                    return false;
            }
            const auto isSame = [](const DBLabelSwitchedPath *lsp, LspId id) {
                return lsp->id == id.value;
            };
            if (!std::ranges::equal(inUse(link.lspList), engine.lspsOn(use.id), isSame))
                return false;
        }
        return true;
    }

private:
    /** Whether primaries and shared needs make the total, but for rounding. */
    static bool addsUp(const LinkUse &use, std::size_t oa)
    {
        for (std::size_t p = 0; p < maxLevels; ++p) {
            const double sum = use.primary[oa][p] + use.shared[oa][p];
            if (std::abs(sum - use.total[oa][p]) > 1e-12 * (1.0 + use.capacity[oa]))
                return false;
        }
        return true;
    }

    EngineLock load()
    {
        EngineLock lock = lockEngine();
        centralDB = db;
        tarnexConfig = {};
        tarnexConfig.predicateConfig.capacityClause = options.testsCapacity;
        COST = 0.0;
        printsRemarks = false;
        return lock;
    }

    void setWeights(const Request &request) const
    {
        PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
        weights.Fortz = options.weights.fortz;
        for (int oa = 0; oa < options.classTypes; ++oa) {
            weights.loadBal[oa] = options.weights.loadBalance;
            weights.load[oa] = options.weights.load;
            weights.sqLoad[oa] = options.weights.squaredLoad;
            weights.relLoad[oa] = options.weights.utilization;
            weights.sqRelLoad[oa] = options.weights.squaredUtilization;
        }
        weights.delay[request.classType] = options.weights.delay;
        const auto oa = static_cast<std::size_t>(request.classType);
        std::ranges::copy(options.preemptionPrices[oa], tarnexConfig.reroutingConfig.scoreCoef[oa]);
        if (options.preemptionPrices[oa] != std::array<double, maxLevels>{})
            weights.rerouting[oa] = 1.0;
        tarnexConfig.predicateConfig.allowReroute = request.mayPreempt;
    }

    void removeBackups(Long id)
    {
        auto &known = backups[id];
        for (std::size_t k = known.size(); k-- > 0;)
            EXPECT_EQ(DBremoveLSP(db, known[k]), 0);
        known.clear();
    }

    const Options options;
    DataBase *db = DBnew(1);
    std::map<Long, std::vector<Long>> backups;
};

} // namespace tarnex::test

#endif
