#include "report/data.h"

#include "planning/diff.h"
#include "planning/failure_tally.h"
#include "planning/link_finder.h"
#include "planning/names.h"
#include "planning/reservations.h"
#include "planning/summary.h"
#include "report/layout.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace tarnex::report
{

namespace
{

using nlohmann::json;
using planning::Amount;

/** A character for a number, one of those that JSON and HTML take as they are. */
std::string letterFor(std::size_t number)
{
    auto code = static_cast<unsigned>('0' + number);
    code += code >= '<' ? 1U : 0U;
    code += code >= '\\' ? 1U : 0U;
    code += code >= 0x7f ? 0x80U : 0U;
    if (code < 0x80)
        return {static_cast<char>(code)};
    if (code < 0x800)
        return {static_cast<char>(0xc0U | code >> 6U), static_cast<char>(0x80U | (code & 0x3fU))};
    return {static_cast<char>(0xe0U | code >> 12U), static_cast<char>(0x80U | (code >> 6U & 0x3fU)),
            static_cast<char>(0x80U | (code & 0x3fU))};
}

/** Paths told hop by hop: which of the links out of a node, in the order of their ids. */
class PathWriter
{
public:
    explicit PathWriter(const Network &network) : finder(network), place(network.links.size())
    {
        std::vector<std::size_t> count(network.nodes.size());
        for (std::size_t i = 0; i < place.size(); ++i)
            place[i] = count[network.links[i].from.index()]++;
    }

    std::string operator()(const std::vector<NodeId> &path) const
    {
        std::string letters;
        const std::vector<LinkId> links = finder.along(path).value();
        for (const LinkId link : links)
            letters += letterFor(place[link.index()]);
        return letters;
    }

private:
    planning::LinkFinder finder;
    std::vector<std::size_t> place; ///< by link
};

json pairOf(const Amount &amount) { return {amount.number, amount.bandwidth}; }

json finite(double value) { return std::isfinite(value) ? json(value) : json(nullptr); }

json lspOf(const PlannedLsp &lsp, const PathWriter &written)
{
    json backups = json::array();
    for (const PlannedBackup &backup : lsp.backups) {
        const auto from = std::ranges::find(lsp.path, backup.path.front()) - lsp.path.begin();
        backups.push_back(std::to_string(from) + (backup.kind == LspKind::localBackup ? 'l' : 'g') +
                          written(backup.path));
    }
    json all{{"path", written(lsp.path)}};
    if (lsp.score)
        all["score"] = *lsp.score;
    if (!backups.empty())
        all["backups"] = std::move(backups);
    if (lsp.unprotected)
        all["unprotected"] = textOf(lsp.unprotected->reason);
    return all;
}

json refusalOf(const Refusal &refusal)
{
    json inTheWay = json::array();
    for (const LinkInTheWay &one : refusal.inTheWay)
        inTheWay.push_back({one.link.value, one.room});
    return {{"reason", textOf(refusal.reason)},
            {"sentence", refusal.sentence},
            {"largest", refusal.largestBandwidth},
            {"inTheWay", std::move(inTheWay)}};
}

json outcomeOf(const Outcome &outcome, const PathWriter &written)
{
    if (const auto *lsp = std::get_if<PlannedLsp>(&outcome))
        return lspOf(*lsp, written);
    if (const auto *refusal = std::get_if<Refusal>(&outcome))
        return refusalOf(*refusal);
    if (const auto *preempted = std::get_if<PreemptedLsp>(&outcome))
        return {{"reason", "preempted"}, {"by", preempted->by.value}};
    return {{"reason", "left out"}};
}

json demandsOf(const Plan &plan)
{
    const PathWriter written{plan.network};
    json demands = json::array();
    for (std::size_t i = 0; i < plan.demands.size(); ++i) {
        const Demand &demand = plan.demands[i];
        const DemandId id{static_cast<std::int32_t>(i)};
        demands.push_back({planning::nameOf(plan.network, plan.demands, id), demand.ingress.value,
                           demand.egress.value, demand.classType, demand.level, demand.bandwidth,
                           outcomeOf(plan.outcomes[i], written)});
    }
    return demands;
}

json mapOf(const Network &network)
{
    const Layout layout = layoutOf(network);
    json nodes = json::array();
    for (std::size_t i = 0; i < network.nodes.size(); ++i)
        nodes.push_back({network.nodes[i].name, layout.nodes[i].x, layout.nodes[i].y});
    json land = json::array();
    for (const MapLine &line : layout.land) {
        json points = json::array();
        for (const Point &point : line.points) {
            points.push_back(std::round(point.x * 10.0) / 10.0);
            points.push_back(std::round(point.y * 10.0) / 10.0);
        }
        land.push_back({line.kind, std::move(points)});
    }
    return {{"width", Layout::width},
            {"height", layout.height},
            {"nodes", std::move(nodes)},
            {"land", std::move(land)}};
}

json linksOf(const Plan &plan)
{
    const std::vector<PlannedUse> uses = planning::usesOf(plan);
    json links = json::array();
    for (std::size_t i = 0; i < plan.network.links.size(); ++i) {
        const Link &link = plan.network.links[i];
        links.push_back(
            {link.from.value, link.to.value, link.capacity, uses[i].primary, uses[i].total});
    }
    return links;
}

/** The failures, and how full links get in them. */
void addFailures(const Plan &plan, json &data)
{
    planning::FailureList list;
    list.add(plan.network, planning::FailureSet::duplex);
    list.add(plan.network, planning::FailureSet::nodes);
    planning::FailureStudy study{plan};
    planning::FailureTally tally{study.normal(), plan.network.levels.size()};
    json failures = json::array();
    for (std::size_t i = 0; i < list.size(); ++i) {
        const planning::Failure failure = list[i];
        const planning::FailureEffect effect = study.effectOf(failure);
        tally.add(planning::FailureName{failure}, effect);
        json links = json::array();
        for (const LinkId link : failure.links)
            links.push_back(link.value);
        json nodes = json::array();
        for (const NodeId node : failure.nodes)
            nodes.push_back(node.value);
        failures.push_back({failure.name, planning::nameOf(failure.kind), std::move(links),
                            std::move(nodes), pairOf(effect.all.hit), effect.all.local.number,
                            effect.all.global.number, pairOf(effect.all.lost),
                            effect.all.ended.number, effect.overloads.size()});
    }
    json peaks = json::array();
    for (std::size_t link = 0; link < tally.worst.size(); ++link)
        peaks.push_back(
            {finite(tally.normal[link].share), finite(tally.worst[link].share),
             tally.worst[link].classType,
             tally.worstFailure[link] ? json(*tally.worstFailure[link]) : json(nullptr)});
    data["failures"] = std::move(failures);
    data["peaks"] = std::move(peaks);
}

json figuresOf(const Plan &plan)
{
    const planning::Summary summary = planning::summaryOf(plan, 0);
    json levels = json::array();
    for (const planning::Fates &level : summary.levels)
        levels.push_back({{"demanded", pairOf(level.demanded)},
                          {"placed", pairOf(level.placed)},
                          {"refused", pairOf(level.refused)},
                          {"preempted", pairOf(level.preempted)},
                          {"coverage",
                           {level.coverage.nodes.number, level.coverage.links.number,
                            level.coverage.some.number, level.coverage.none.number}}});
    return {{"levels", std::move(levels)},
            {"backups", summary.nbBackups},
            {"primary", summary.cost.primary},
            {"dedicated", summary.cost.dedicated},
            {"shared", summary.cost.shared}};
}

/** JSON in which nothing ends a script or begins a comment. */
std::string forScript(const json &value)
{
    std::string text = value.dump(-1, ' ', false, json::error_handler_t::replace);
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
        text.replace(at, 1, "\\u003c");
    return text;
}

json placeOf(const std::optional<DemandId> &demand)
{
    return demand ? json(demand->value) : json(nullptr);
}

} // namespace

std::string textFor(const std::vector<std::string> &names) { return forScript(names); }

std::string dataOf(const Plan &plan)
{
    json data{{"unit", plan.network.unit},     {"classes", plan.network.classes},
              {"levels", plan.network.levels}, {"map", mapOf(plan.network)},
              {"links", linksOf(plan)},        {"demands", demandsOf(plan)},
              {"figures", figuresOf(plan)}};
    addFailures(plan, data);
    return forScript(data);
}

std::string changesOf(const Plan &before, const Plan &after)
{
    json changes = json::array();
    for (const planning::DemandChange &change : planning::diff(before, after, 1.0).demands)
        changes.push_back({planning::wordsFor(change.change), change.name, placeOf(change.before),
                           placeOf(change.after)});
    return forScript(changes);
}

} // namespace tarnex::report
