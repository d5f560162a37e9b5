#include "cli/failure_tables.h"

#include "planning/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <span>
#include <tuple>

namespace tarnex::cli
{

namespace
{

using planning::BrokenLsps;
using planning::FailureTally;
using planning::LinkPeak;

Cell countOf(const planning::Amount &amount, Tone tone = Tone::plain)
{
    return {number(amount.number), amount.number > 0 ? tone : Tone::plain};
}

/** The positions of records, those with the largest keys first; equal ones in their order. */
template <class Record, class Key>
std::vector<std::size_t> largestFirst(const std::vector<Record> &records, Key keyOf)
{
    std::vector<std::size_t> order(records.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, std::ranges::greater{},
                             [&](std::size_t i) { return keyOf(records[i]); });
    return order;
}

/** How many rows out of so many a table gets; the others are noted as left out. */
std::size_t keptOf(Table &table, std::size_t nbRows, const FailureShow &show)
{
    const std::size_t kept = show.isForPeople ? std::min(nbRows, show.nbRows) : nbRows;
    table.nbLeftOut = nbRows - kept;
    return kept;
}

Table failuresOf(const FailureTally &tally, const FailureShow &show)
{
    const auto whenRerouted = [&](const char *heading) { return show.hasRerouted ? heading : ""; };
    Table table{.key = "failures",
                .title = "Failures, the worst first",
                .columns = {{"failure", "failure"},
                            {"kind", "of"},
                            {"hit", "LSPs hit"},
                            {"hitBandwidth", "bandwidth"},
                            {"local", "by local backups"},
                            {"global", "by a global one"},
                            {"rerouted", whenRerouted("rerouted")},
                            {"lost", "lost"},
                            {"lostBandwidth", "bandwidth"},
                            {"ended", "end there"},
                            {"displaced", whenRerouted("others displaced")},
                            {"overloads", "links too full"}},
                .shown = show.nbRows};
    const auto harmOf = [](const FailureTally::Figures &failure) {
        return std::tuple{failure.all.lost.bandwidth, failure.all.displaced.bandwidth,
                          failure.nbOverloads, failure.all.hit.bandwidth};
    };
    const std::vector<std::size_t> order = largestFirst(tally.failures, harmOf);
    for (const std::size_t i : std::span{order}.first(keptOf(table, order.size(), show))) {
        const auto &[name, all, nbOverloads] = tally.failures[i];
        table.rows.push_back(
            {name.name, std::string{nameOf(name.kind)}, number(all.hit.number),
             Bandwidth{all.hit.bandwidth}, number(all.local.number), number(all.global.number),
             number(all.rerouted.number), countOf(all.lost, Tone::bad),
             Bandwidth{all.lost.bandwidth}, number(all.ended.number),
             countOf(all.displaced, Tone::bad),
             Cell{number(nbOverloads), nbOverloads == 0 ? Tone::plain : Tone::bad}});
    }
    return table;
}

Table levelsOf(const Plan &plan, const FailureTally &tally, const FailureShow &show)
{
    const auto whenRerouted = [&](const char *heading) { return show.hasRerouted ? heading : ""; };
    Table table{.key = "levels",
                .title = "LSPs hit, over all failures",
                .columns = {{"level", "level"},
                            {"hit", "hit"},
                            {"local", "by local backups"},
                            {"global", "by a global one"},
                            {"rerouted", whenRerouted("rerouted")},
                            {"lost", "lost"},
                            {"ended", "end there"},
                            {"displaced", whenRerouted("others displaced")},
                            {"survival", "carried on"}}};
    const auto add = [&](const std::string &name, const BrokenLsps &broken) {
        const std::size_t carriable = broken.hit.number - broken.ended.number;
        auto &row = table.rows.emplace_back();
        row = {name,
               number(broken.hit.number),
               number(broken.local.number),
               number(broken.global.number),
               number(broken.rerouted.number),
               countOf(broken.lost, Tone::bad),
               number(broken.ended.number),
               countOf(broken.displaced, Tone::bad)};
        if (carriable > 0)
            row.emplace_back(Ratio{1.0 - static_cast<double>(broken.lost.number) /
                                             static_cast<double>(carriable)});
        else
            row.emplace_back();
    };
    BrokenLsps all;
    for (std::size_t level = 0; level < plan.network.levels.size(); ++level) {
        add(plan.network.levels[level], tally.levels[level]);
        all += tally.levels[level];
    }
    add("all", all);
    return table;
}

/** How many links are filled up to what, without a failure and in the worst case. */
Table distributionOf(const FailureTally &tally)
{
    constexpr std::size_t nbSteps = 10;
    std::vector<std::array<std::size_t, 2>> counts(nbSteps + 1);
    const auto stepOf = [](double full) {
        return full > 1.0 + 1e-9 ? nbSteps
                                 : std::min(static_cast<std::size_t>(full * nbSteps), nbSteps - 1);
    };
    for (std::size_t link = 0; link < tally.worst.size(); ++link) {
        ++counts[stepOf(tally.normal[link].share)][0];
        ++counts[stepOf(tally.worst[link].share)][1];
    }
    Table table{.key = "distribution",
                .title = "Links by use, in their fullest class",
                .columns = {{"use", "use"}, {"normal", "without failure"}, {"worst", "worst"}}};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const std::string range =
            i == nbSteps ? "over 100 %" : fmt::format("{} to {} %", 10 * i, 10 * (i + 1));
        table.rows.push_back({range, number(counts[i][0]), number(counts[i][1])});
    }
    return table;
}

Table linksOf(const Plan &plan, const FailureTally &tally, const FailureShow &show)
{
    Table table{.key = "links",
                .title = "Links that get fullest",
                .columns = {{"link", "link"},
                            {"class", "class"},
                            {"normal", "without failure"},
                            {"worst", "worst"},
                            {"failure", "when this fails"}},
                .shown = show.nbRows};
    const auto shareOf = [](const LinkPeak &peak) { return peak.share; };
    for (const std::size_t i : largestFirst(tally.worst, shareOf)) {
        const LinkPeak &peak = tally.worst[i];
        auto &row = table.rows.emplace_back();
        row = {planning::nameOf(plan.network, peak.link),
               plan.network.classes[static_cast<std::size_t>(peak.classType)], Ratio{peak.before},
               Cell{Ratio{peak.share}, peak.share > 1.0 + 1e-9 ? Tone::bad : Tone::plain}};
        if (const auto failure = tally.worstFailure[i])
            row.emplace_back(tally.failures[*failure].name.name);
        else
            row.emplace_back();
    }
    return table;
}

Table overloadsOf(const Plan &plan, const FailureTally &tally, const FailureShow &show)
{
    Table table{.key = "overloads",
                .title = "Links too full after the switch",
                .columns = {{"failure", "failure"},
                            {"link", "link"},
                            {"class", "class"},
                            {"use", "use"},
                            {"capacity", "capacity"}},
                .shown = show.nbRows};
    const std::span overloads{tally.overloads};
    for (const auto &[failure, overload] : overloads.first(keptOf(table, overloads.size(), show)))
        table.rows.push_back({tally.failures[failure].name.name,
                              planning::nameOf(plan.network, overload.link),
                              plan.network.classes[static_cast<std::size_t>(overload.classType)],
                              Bandwidth{overload.use}, Bandwidth{overload.capacity}});
    return table;
}

Table lostOf(const Plan &plan, const FailureTally &tally, const FailureShow &show)
{
    Table table{.key = "lost",
                .title = "LSPs lost",
                .columns = {{"failure", "failure"},
                            {"demand", "demand"},
                            {"level", "level"},
                            {"bandwidth", "bandwidth"},
                            {"fate", show.hasRerouted ? "fate" : ""},
                            {"reason", show.hasRerouted ? "reason" : ""}}};
    for (const auto &[failure, lsp] : tally.lost) {
        const Demand &demand = plan.demands[lsp.id.index()];
        table.rows.push_back({tally.failures[failure].name.name,
                              planning::nameOf(plan.network, plan.demands, lsp.id),
                              plan.network.levels[static_cast<std::size_t>(demand.level)],
                              Bandwidth{demand.bandwidth}, std::string{nameOf(lsp.fate)},
                              lsp.reason ? Cell{std::string{textOf(*lsp.reason)}} : Cell{}});
    }
    return table;
}

} // namespace

Facts verdictOn(const FailureTally &tally)
{
    std::size_t nbLosing = 0;
    std::size_t nbOverloading = 0;
    std::size_t nbBroken = 0;
    for (const auto &[name, all, nbOverloads] : tally.failures) {
        nbLosing += all.lost.number > 0 ? 1 : 0;
        nbOverloading += nbOverloads > 0 ? 1 : 0;
        nbBroken += nbOverloads > 0 && name.isSingle ? 1 : 0;
    }
    const auto bad = [](std::size_t count) {
        return Cell{number(count), count > 0 ? Tone::bad : Tone::good};
    };
    return {"verdict",
            "",
            {{"failures", "failures tried", number(tally.failures.size())},
             {"losing", "with LSPs lost", bad(nbLosing)},
             {"overloading", "with links too full after the switch", bad(nbOverloading)},
             {"promisesBroken", "those of one link or node among them", bad(nbBroken)}}};
}

Document failureDocument(const Plan &plan, const FailureTally &tally, const FailureShow &show)
{
    Document document{"failures",
                      plan.network.unit,
                      {verdictOn(tally), failuresOf(tally, show), levelsOf(plan, tally, show),
                       distributionOf(tally), linksOf(plan, tally, show),
                       overloadsOf(plan, tally, show)}};
    if (show.listsLost)
        document.sections.emplace_back(lostOf(plan, tally, show));
    return document;
}

} // namespace tarnex::cli
