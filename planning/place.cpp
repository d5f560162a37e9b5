#include "planning/place.h"

#include "planning/admit.h"
#include "planning/refusals.h"
#include "planning/setup.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <variant>

namespace tarnex::planning
{

namespace
{

/** A plan in the making and the engine that carries what is placed of it. */
class Placer
{
public:
    /** Takes over a plan whose LSPs `engine` carries; those of the demands from `first` on are
     * wanted. */
    Placer(Plan started, std::size_t first, Engine carrying, Progress &listener)
        : plan(std::move(started)), firstDemand(first), engine(std::move(carrying)),
          progress(listener), nextBackup(static_cast<std::int32_t>(plan.demands.size())),
          setUpAt(plan.demands.size(), notSetUp)
    {
        plan.outcomes.resize(plan.demands.size());
        for (const DemandId id : plan.setUp) {
            nextBackup.value += static_cast<std::int32_t>(lspOf(id).backups.size());
            setUpAt[id.index()] = nbSetUps++;
        }
        firstUnprotected = nbSetUps;
    }

    Plan run() &&
    {
        placeAll();
        placeVictims();
        protectNew();
        finish();
        return std::move(plan);
    }

private:
    static constexpr std::size_t notSetUp = SIZE_MAX;

    PlannedLsp &lspOf(DemandId id) { return std::get<PlannedLsp>(plan.outcomes[id.index()]); }
    bool isPlaced(DemandId id) const
    {
        return std::holds_alternative<PlannedLsp>(plan.outcomes[id.index()]);
    }

    bool goesOn(Phase phase, std::size_t done, std::size_t all)
    {
        progress.at(phase, done, all);
        return !progress.mustStop();
    }

    void inOrder(std::vector<DemandId> &ids) const
    {
        const auto &demands = plan.demands;
        std::ranges::sort(ids);
        const auto sortBy = [&](auto key) {
            std::ranges::stable_sort(ids, {},
                                     [&](DemandId id) { return key(demands[id.index()]); });
        };
        switch (plan.options.order) {
        case Order::given:
            break;
        case Order::level:
            sortBy([](const Demand &demand) { return demand.level; });
            break;
        case Order::largest:
            sortBy([](const Demand &demand) { return -demand.bandwidth; });
            break;
        case Order::smallest:
            sortBy([](const Demand &demand) { return demand.bandwidth; });
            break;
        }
    }

    /** A refusal as the plan keeps it: its sentence tells names. */
    Refusal named(DemandId id, Refusal refusal) const
    {
        refusal.sentence = sentenceOf(plan.network, plan.demands[id.index()], refusal);
        return refusal;
    }

    void lose(LspId primary)
    {
        const DemandId id = demandOf(primary);
        plan.outcomes[id.index()] = named(id, Refusal{});
    }

    void giveWay(const std::vector<Lsp> &victims, DemandId to)
    {
        for (const Lsp &victim : victims) {
            if (victim.isBackup())
                continue;
            const DemandId id = demandOf(victim.id);
            plan.outcomes[id.index()] = PreemptedLsp{to, {}};
            waiting.push_back(id);
            hasHistory = true;
        }
    }

    /** Places a demand; the refusal when that fails. */
    std::optional<Refusal> placeOne(DemandId id)
    {
        const Request request = requestOf(plan.demands[id.index()], id, plan.options.preempts);
        auto [placement, isTakenBack, lost] = admit(engine, request);
        hasHistory = hasHistory || isTakenBack;
        for (const LspId lsp : lost)
            lose(lsp);
        if (!placement)
            return named(id, placement.refusal());
        giveWay(placement->victims, id);
        Placement placed = std::move(placement).value();
        plan.outcomes[id.index()] = PlannedLsp{.path = std::move(placed.path.nodes),
                                               .score = placed.score,
                                               .backups = {},
                                               .unprotected = {}};
        setUpAt[id.index()] = nbSetUps++;
        // In the plan's order backups come after all primaries.
        hasHistory = hasHistory || !std::cmp_equal(nextBackup.value, plan.demands.size());
        return std::nullopt;
    }

    void placeAll()
    {
        std::vector<DemandId> ids;
        for (std::size_t i = firstDemand; i < plan.demands.size(); ++i) {
            if (plan.demands[i].bandwidth != 0.0)
                ids.emplace_back(static_cast<std::int32_t>(i));
        }
        inOrder(ids);
        for (std::size_t i = 0; i < ids.size() && goesOn(Phase::placing, i, ids.size()); ++i) {
            if (i > 0 && beginsLevel(ids[i - 1], ids[i]))
                protectNew();
            if (auto refusal = placeOne(ids[i]))
                plan.outcomes[ids[i].index()] = std::move(*refusal);
        }
    }

    /** Whether what is placed so far is to be protected before a demand of the next level. */
    bool beginsLevel(DemandId before, DemandId next) const
    {
        return plan.options.order == Order::level &&
               plan.demands[before.index()].level != plan.demands[next.index()].level;
    }

    /** Goes once through the LSPs that wait; whether one of them was placed. */
    bool placeWaiting()
    {
        std::vector<DemandId> ids = std::exchange(waiting, {});
        inOrder(ids);
        bool isChanged = false;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            if (!goesOn(Phase::placingAgain, i, ids.size()))
                return false;
            const DemandId by = std::get<PreemptedLsp>(plan.outcomes[ids[i].index()]).by;
            auto refusal = placeOne(ids[i]);
            isChanged = isChanged || !refusal;
            if (refusal) {
                plan.outcomes[ids[i].index()] = PreemptedLsp{by, std::move(refusal)};
                waiting.push_back(ids[i]);
            }
        }
        return isChanged;
    }

    void placeVictims()
    {
        for (int round = 0; round < plan.options.retryRounds; ++round) {
            if (waiting.empty() || !placeWaiting())
                return;
        }
    }

    LevelScheme schemeOf(DemandId id) const
    {
        const auto level = static_cast<std::size_t>(plan.demands[id.index()].level);
        const auto &schemes = plan.options.protection;
        return level < schemes.size() ? schemes[level] : std::nullopt;
    }

    void protectOne(DemandId id, Scheme scheme)
    {
        PlannedLsp &lsp = lspOf(id);
        const auto protection = engine.protect(planning::lspOf(id), scheme, nextBackup);
        if (!protection) {
            lsp.unprotected = named(id, protection.refusal());
            return;
        }
        for (const Lsp &backup : protection->backups)
            lsp.backups.push_back(plannedBackup(backup));
        nextBackup.value += static_cast<std::int32_t>(lsp.backups.size());
    }

    /** Protects the LSPs set up since it was last done: by level, then as they were set up. */
    void protectNew()
    {
        std::vector<DemandId> ids;
        for (const DemandId id : inOrderOfSetUp()) {
            if (setUpAt[id.index()] >= firstUnprotected && schemeOf(id))
                ids.push_back(id);
        }
        firstUnprotected = nbSetUps;
        std::ranges::stable_sort(ids, {},
                                 [&](DemandId id) { return plan.demands[id.index()].level; });
        hasHistory = hasHistory || !std::ranges::is_sorted(
                                       ids, {}, [&](DemandId id) { return setUpAt[id.index()]; });
        for (std::size_t i = 0; i < ids.size() && goesOn(Phase::protecting, i, ids.size()); ++i)
            protectOne(ids[i], *schemeOf(ids[i]));
    }

    std::vector<DemandId> inOrderOfSetUp() const
    {
        std::vector<DemandId> ids;
        for (std::size_t i = 0; i < plan.demands.size(); ++i) {
            const DemandId id{static_cast<std::int32_t>(i)};
            if (isPlaced(id))
                ids.push_back(id);
        }
        std::ranges::sort(ids, {}, [&](DemandId id) { return setUpAt[id.index()]; });
        return ids;
    }

    /**
     * Sets up in the plan's order what came about in another, so that the plan and whoever sets it
     * up agree to the bit. On a link that is full to the last bit, other roundings may keep an LSP
     * out, which is then refused.
     */
    void setUpAnew()
    {
        engine = engineOf(plan.network, engine.options());
        const std::size_t nbPlaced = plan.setUp.size();
        for (const DemandId id : std::exchange(plan.setUp, {})) {
            progress.at(Phase::settingUp, plan.setUp.size(), nbPlaced);
            if (auto refusal = setUpPrimary(engine, plan.demands[id.index()], id, lspOf(id)))
                plan.outcomes[id.index()] = named(id, std::move(*refusal));
            else
                plan.setUp.push_back(id);
        }
        LspId backup{static_cast<std::int32_t>(plan.demands.size())};
        for (const DemandId id : plan.setUp) {
            PlannedLsp &lsp = lspOf(id);
            if (auto refusal = setUpBackups(engine, id, lsp, backup)) {
                lsp.unprotected = named(id, std::move(*refusal));
                lsp.backups.clear();
            }
            backup.value += static_cast<std::int32_t>(lsp.backups.size());
        }
    }

    /** Who gave way to an LSP that rounding has kept out since is refused as well. */
    void settleVictims()
    {
        for (std::size_t i = 0; i < plan.outcomes.size(); ++i) {
            const auto *preempted = std::get_if<PreemptedLsp>(&plan.outcomes[i]);
            if (preempted && std::holds_alternative<Refusal>(plan.outcomes[preempted->by.index()]))
                plan.outcomes[i] = named(DemandId{static_cast<std::int32_t>(i)}, Refusal{});
        }
    }

    void finish()
    {
        plan.setUp = inOrderOfSetUp();
        if (hasHistory) {
            setUpAnew();
            settleVictims();
        }
        plan.use.clear();
        for (std::size_t i = 0; i < plan.network.links.size(); ++i)
            plan.use.push_back(plannedUse(engine, LinkId{static_cast<std::int32_t>(i)}));
    }

    Plan plan;
    std::size_t firstDemand;
    Engine engine;
    Progress &progress;
    LspId nextBackup;
    std::vector<std::size_t> setUpAt; ///< by demand: which set-up its last one was
    std::size_t nbSetUps = 0;
    std::size_t firstUnprotected = 0; ///< set-ups from this one on have not come to protection yet
    std::vector<DemandId> waiting;    ///< to be placed again
    bool hasHistory = false; ///< the engine did not come about by set-ups in the plan's order alone
};

/** Whether LSPs are protected, or are to be. */
bool hasBackups(const Plan &plan)
{
    const auto isProtected = [](const Outcome &outcome) {
        const auto *const lsp = std::get_if<PlannedLsp>(&outcome);
        return lsp && !lsp->backups.empty();
    };
    const auto isWanted = [](const LevelScheme &scheme) { return scheme.has_value(); };
    return std::ranges::any_of(plan.options.protection, isWanted) ||
           std::ranges::any_of(plan.outcomes, isProtected);
}

Options forPrimaries(const Plan &plan)
{
    Options options = plan.options.engine;
    options.allowsBackups = false;
    return options;
}

void require(bool isSound, const char *what)
{
    if (!isSound)
        throw WrongUse(what);
}

void check(const Network &network, const Demand &demand)
{
    const auto isBelow = [](std::int32_t index, std::size_t size) {
        return index >= 0 && static_cast<std::size_t>(index) < size;
    };
    require(isBelow(demand.ingress.value, network.nodes.size()) &&
                isBelow(demand.egress.value, network.nodes.size()),
            "a demand joins nodes that the network does not have");
    require(isBelow(demand.classType, network.classes.size()) &&
                isBelow(demand.level, network.levels.size()),
            "a demand is of a class or level that the network does not have");
    require(std::isfinite(demand.bandwidth) && demand.bandwidth >= 0.0,
            "a demand's bandwidth is no number or below 0");
}

} // namespace

Plan place(Network network, std::vector<Demand> demands, PlanOptions options, Progress &progress)
{
    Plan plan;
    plan.network = std::move(network);
    plan.options = std::move(options);
    return placeMore(std::move(plan), std::move(demands), progress);
}

Plan placeMore(Plan plan, std::vector<Demand> more, Progress &progress)
{
    const std::size_t first = plan.demands.size();
    for (const Demand &demand : more)
        check(plan.network, demand);
    std::ranges::move(more, std::back_inserter(plan.demands));
    plan.options.engine = optionsFor(plan.network, plan.options.engine);
    Engine engine = hasBackups(plan) ? setUp(plan) : setUpPrimaries(plan, forPrimaries(plan));
    return Placer{std::move(plan), first, std::move(engine), progress}.run();
}

} // namespace tarnex::planning
