#include "planning/verify.h"

#include "planning/names.h"
#include "planning/reservations.h"
#include "planning/setup.h"
#include "planning/verify_backups.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <variant>

#include <fmt/format.h>

namespace tarnex::planning
{

namespace
{

bool isAmount(double value) { return std::isfinite(value) && value >= 0.0; }
bool isIndex(int value, std::size_t size)
{
    return value >= 0 && static_cast<std::size_t>(value) < size;
}

/** Collects what is wrong with one plan, from its parts up to the reservations. */
class Verifier
{
public:
    explicit Verifier(const Plan &checked) : plan(checked), finder(checked.network) {}

    std::vector<Deviation> run() &&
    {
        checkOptions();
        checkNetwork();
        if (faults.empty())
            checkDemands();
        if (faults.empty())
            checkOutcomes();
        if (faults.empty())
            checkReservations();
        if (faults.empty())
            checkEngine();
        checkFinished();
        return std::move(faults);
    }

private:
    template <class... Arguments>
    void report(Fault fault, fmt::format_string<Arguments...> format, Arguments &&...arguments)
    {
        faults.push_back({fault, fmt::format(format, std::forward<Arguments>(arguments)...)});
    }

    std::string nameOf(std::size_t demand) const
    {
        return planning::nameOf(plan.network, plan.demands,
                                DemandId{static_cast<std::int32_t>(demand)});
    }
    std::string linkName(std::size_t link) const
    {
        return planning::nameOf(plan.network, LinkId{static_cast<std::int32_t>(link)});
    }
    bool isNode(NodeId node) const { return isIndex(node.value, plan.network.nodes.size()); }

    void checkOptions()
    {
        const Options &engine = plan.options.engine;
        const auto &[classes, levels] = std::tie(plan.network.classes, plan.network.levels);
        if (classes.empty() || classes.size() > maxClassTypes || levels.empty() ||
            levels.size() > maxLevels)
            report(Fault::network, "the network has {} classes and {} levels", classes.size(),
                   levels.size());
        if (!std::cmp_equal(engine.classTypes, classes.size()) ||
            !std::cmp_equal(engine.levels, levels.size()))
            report(Fault::options, "the options are for {} classes and {} levels, of {} and {}",
                   engine.classTypes, engine.levels, classes.size(), levels.size());
        const Weights &w = engine.weights;
        for (const double weight : {w.fortz, w.loadBalance, w.load, w.squaredLoad, w.utilization,
                                    w.squaredUtilization, w.delay}) {
            if (!isAmount(weight))
                report(Fault::options, "a weight is {}", weight);
        }
        for (const auto &prices : engine.preemptionPrices) {
            if (!std::ranges::all_of(prices, isAmount))
                report(Fault::options, "a preemption price is below 0 or no number");
        }
        if (plan.options.retryRounds < 0)
            report(Fault::options, "there are {} rounds of placing again",
                   plan.options.retryRounds);
        if (plan.options.protection.size() > levels.size())
            report(Fault::options, "{} levels are to be protected, of {}",
                   plan.options.protection.size(), levels.size());
    }

    void checkNetwork()
    {
        std::unordered_set<std::string_view> names;
        for (const Node &node : plan.network.nodes) {
            if (!names.insert(node.name).second)
                report(Fault::network, "two nodes are called {}", node.name);
        }
        for (std::size_t i = 0; i < plan.network.links.size(); ++i) {
            const Link &link = plan.network.links[i];
            if (!isNode(link.from) || !isNode(link.to) || link.from == link.to)
                report(Fault::network, "link {} joins no two nodes", i);
            else if (!std::cmp_equal(finder.between(link.from, link.to)->value, i))
                report(Fault::network, "there are two links {}", linkName(i));
            if (link.capacity.size() > plan.network.classes.size() ||
                !std::ranges::all_of(link.capacity, isAmount))
                report(Fault::network, "{} has no sound capacities", linkName(i));
        }
    }

    void checkDemands()
    {
        for (std::size_t i = 0; i < plan.demands.size(); ++i) {
            const Demand &demand = plan.demands[i];
            if (!isNode(demand.ingress) || !isNode(demand.egress))
                report(Fault::demand, "{} joins no two nodes", nameOf(i));
            if (!isIndex(demand.classType, plan.network.classes.size()))
                report(Fault::demand, "{} is of class {}", nameOf(i), demand.classType);
            if (!isIndex(demand.level, plan.network.levels.size()))
                report(Fault::demand, "{} is of level {}", nameOf(i), demand.level);
            if (!isAmount(demand.bandwidth))
                report(Fault::demand, "{} asks for {}", nameOf(i), demand.bandwidth);
        }
    }

    void checkOutcomes()
    {
        if (plan.outcomes.size() != plan.demands.size()) {
            report(Fault::outcome, "there are {} outcomes of {} demands", plan.outcomes.size(),
                   plan.demands.size());
            return;
        }
        for (std::size_t i = 0; i < plan.outcomes.size(); ++i) {
            if (const auto *lsp = std::get_if<PlannedLsp>(&plan.outcomes[i]))
                checkLsp(i, *lsp);
            else if (const auto *preempted = std::get_if<PreemptedLsp>(&plan.outcomes[i]))
                checkPreempted(i, *preempted);
            else if (const auto *refusal = std::get_if<Refusal>(&plan.outcomes[i]))
                checkRefusal(i, *refusal);
        }
        checkSetUp();
    }

    void checkFinished()
    {
        for (std::size_t i = 0; i < std::min(plan.outcomes.size(), plan.demands.size()); ++i) {
            const bool isOpen = std::holds_alternative<std::monostate>(plan.outcomes[i]);
            if (isOpen && plan.demands[i].bandwidth > 0.0)
                report(Fault::unfinished, "the plan does not say what became of {}", nameOf(i));
        }
    }

    void checkLsp(std::size_t demand, const PlannedLsp &lsp)
    {
        const Demand &wanted = plan.demands[demand];
        if (const auto fault = pathFault(plan.network, finder, lsp.path)) {
            report(fault->fault, "{} {}", nameOf(demand), fault->sentence);
            return;
        }
        if (lsp.path.front() != wanted.ingress || lsp.path.back() != wanted.egress)
            report(Fault::path, "{} is led over {}, not from {} to {}", nameOf(demand),
                   planning::nameOf(plan.network, lsp.path), plan.network.nameOf(wanted.ingress),
                   plan.network.nameOf(wanted.egress));
        if (wanted.bandwidth == 0.0)
            report(Fault::outcome, "{} is placed without bandwidth", nameOf(demand));
        for (const Deviation &fault : backupFaults(plan.network, finder, lsp))
            report(fault.fault, "{}: {}", nameOf(demand), fault.sentence);
        if (lsp.unprotected && !lsp.backups.empty())
            report(Fault::outcome, "{} says why it has no backups, but has them", nameOf(demand));
    }

    void checkPreempted(std::size_t demand, const PreemptedLsp &preempted)
    {
        const DemandId by = preempted.by;
        if (!isIndex(by.value, plan.demands.size())) {
            report(Fault::outcome, "{} gave way to demand {}", nameOf(demand), by.value);
            return;
        }
        const Outcome &winner = plan.outcomes[by.index()];
        if (!plan.options.preempts)
            report(Fault::outcome, "{} gave way where nothing has to", nameOf(demand));
        if (plan.demands[by.index()].level >= plan.demands[demand].level)
            report(Fault::outcome, "{} gave way to {}, which is no more important", nameOf(demand),
                   nameOf(by.index()));
        if (!std::holds_alternative<PlannedLsp>(winner) &&
            !std::holds_alternative<PreemptedLsp>(winner))
            report(Fault::outcome, "{} gave way to {}, which was never placed", nameOf(demand),
                   nameOf(by.index()));
    }

    void checkRefusal(std::size_t demand, const Refusal &refusal)
    {
        const Demand &wanted = plan.demands[demand];
        if ((wanted.ingress == wanted.egress) != (refusal.reason == Reason::sameEnds))
            report(Fault::outcome, "{} was refused: {}", nameOf(demand), textOf(refusal.reason));
        if (!(refusal.largestBandwidth >= 0.0) ||
            (refusal.largestBandwidth > 0.0 && refusal.largestBandwidth >= wanted.bandwidth))
            report(Fault::outcome, "{} was refused although {} would fit", nameOf(demand),
                   refusal.largestBandwidth);
        for (const LinkInTheWay &inTheWay : refusal.inTheWay) {
            if (!isIndex(inTheWay.link.value, plan.network.links.size()))
                report(Fault::outcome, "{} has link {} in its way", nameOf(demand),
                       inTheWay.link.value);
        }
    }

    void checkSetUp()
    {
        std::vector<std::size_t> listed(plan.demands.size());
        for (const DemandId id : plan.setUp) {
            if (!isIndex(id.value, plan.demands.size()))
                report(Fault::setUpOrder, "demand {} is to be set up", id.value);
            else
                ++listed[id.index()];
        }
        for (std::size_t i = 0; i < listed.size(); ++i) {
            const std::size_t wanted = std::holds_alternative<PlannedLsp>(plan.outcomes[i]) ? 1 : 0;
            if (listed[i] != wanted)
                report(Fault::setUpOrder, "{} is {}placed, and set up {} times", nameOf(i),
                       wanted == 0 ? "not " : "", listed[i]);
        }
    }

    void checkReservations()
    {
        if (plan.use.size() != plan.network.links.size()) {
            report(Fault::totalUse, "there is a use of {} links, of {}", plan.use.size(),
                   plan.network.links.size());
            return;
        }
        const std::vector<Reservation> reservations = reservationsOf(plan);
        for (std::size_t i = 0; i < reservations.size(); ++i) {
            for (std::size_t c = 0; c < plan.network.classes.size(); ++c) {
                const auto &[use, handled] = reservations[i];
                checkCapacity(i, c, use.total[c]);
                checkUse(Fault::primaryUse, i, c, plan.use[i].primary, use.primary[c], handled[c]);
                checkUse(Fault::totalUse, i, c, plan.use[i].total, use.total[c], handled[c]);
            }
        }
    }

    /** An LSP is let in when everything up to its level fits, and what does not fit above gives
     * way: so all levels from 0 on fit, however many are counted. */
    void checkCapacity(std::size_t link, std::size_t classType, const std::vector<double> &total)
    {
        const auto &capacities = plan.network.links[link].capacity;
        const double capacity = classType < capacities.size() ? capacities[classType] : 0.0;
        double reserved = 0.0;
        for (std::size_t p = 0; p < total.size() && plan.options.engine.testsCapacity; ++p) {
            reserved += total[p];
            if (reserved > capacity * (1.0 + sameSum)) {
                report(Fault::capacity, "{} reserves {} up to level {} in class {}, of {}",
                       linkName(link), reserved, plan.network.levels[p],
                       plan.network.classes[classType], capacity);
                return;
            }
        }
    }

    void checkUse(Fault fault, std::size_t link, std::size_t classType,
                  const std::vector<std::vector<double>> &stated,
                  const std::vector<double> &computed, double handled)
    {
        if (stated.size() != plan.network.classes.size() ||
            stated[classType].size() != computed.size()) {
            report(fault, "{} does not state its use by class and level", linkName(link));
            return;
        }
        for (std::size_t p = 0; p < computed.size(); ++p) {
            const double difference = std::abs(stated[classType][p] - computed[p]);
            if (!(difference <= sameSum * handled))
                report(fault, "{} states {} {} at level {} in class {}, where it is {}",
                       linkName(link), stated[classType][p],
                       fault == Fault::primaryUse ? "for primaries" : "altogether",
                       plan.network.levels[p], plan.network.classes[classType], computed[p]);
        }
    }

    /** The LSPs once more in an engine, whose tables the plan has to the bit. */
    void checkEngine()
    try {
        const Engine engine = setUp(plan);
        for (std::size_t i = 0; i < plan.use.size(); ++i) {
            const auto [primary, total] = plannedUse(engine, LinkId{static_cast<std::int32_t>(i)});
            if (primary != plan.use[i].primary || total != plan.use[i].total)
                report(Fault::engine, "an engine does not reserve on {} what the plan states",
                       linkName(i));
        }
    } catch (const SetUpError &error) {
        report(Fault::engine, "{}", error.what());
    } catch (const WrongUse &error) {
        report(Fault::engine, "an engine does not take the plan: {}", error.what());
    }

    const Plan &plan;
    LinkFinder finder;
    std::vector<Deviation> faults;
};

} // namespace

std::string_view nameOf(Fault fault)
{
    switch (fault) {
    case Fault::options:
        return "options";
    case Fault::network:
        return "network";
    case Fault::demand:
        return "demand";
    case Fault::outcome:
        return "outcome";
    case Fault::path:
        return "path";
    case Fault::loop:
        return "loop";
    case Fault::backupKind:
        return "backup kind";
    case Fault::backupEnds:
        return "backup ends";
    case Fault::backupOverlap:
        return "backup overlap";
    case Fault::claim:
        return "claim";
    case Fault::setUpOrder:
        return "set-up order";
    case Fault::capacity:
        return "capacity";
    case Fault::primaryUse:
        return "primary use";
    case Fault::totalUse:
        return "total use";
    case Fault::engine:
        return "engine";
    case Fault::unfinished:
        return "unfinished";
    }
    return {};
}

std::vector<Deviation> verify(const Plan &plan) { return Verifier{plan}.run(); }

} // namespace tarnex::planning
