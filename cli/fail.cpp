#include "planning/fail.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/text.h"
#include "planning/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>

namespace tarnex::cli
{

namespace
{

using planning::BrokenLsps;
using planning::Failure;
using planning::FailureEffect;
using planning::FailureSet;
using planning::WorstUse;

/** Failures that were tried, in order, and what they did. */
struct Tried {
    std::vector<Failure> failures;
    std::vector<FailureEffect> effects;
    std::vector<WorstUse> worst; ///< by link
};

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

Table failuresOf(const Tried &tried, std::size_t shown)
{
    Table table{.key = "failures",
                .title = "Failures, the worst first",
                .columns = {{"failure", "failure"},
                            {"kind", "of"},
                            {"hit", "LSPs hit"},
                            {"hitBandwidth", "bandwidth"},
                            {"local", "by local backups"},
                            {"global", "by a global one"},
                            {"lost", "lost"},
                            {"lostBandwidth", "bandwidth"},
                            {"ended", "end there"},
                            {"overloads", "links too full"}},
                .shown = shown};
    const auto harmOf = [](const FailureEffect &effect) {
        return std::tuple{effect.all.lost.bandwidth, effect.overloads.size(),
                          effect.all.hit.bandwidth};
    };
    for (const std::size_t i : largestFirst(tried.effects, harmOf)) {
        const auto &[all, levels, lsps, overloads] = tried.effects[i];
        table.rows.push_back(
            {tried.failures[i].name, std::string{nameOf(tried.failures[i].kind)},
             number(all.hit.number), Bandwidth{all.hit.bandwidth}, number(all.local.number),
             number(all.global.number), countOf(all.lost, Tone::bad), Bandwidth{all.lost.bandwidth},
             number(all.ended.number),
             Cell{number(overloads.size()), overloads.empty() ? Tone::plain : Tone::bad}});
    }
    return table;
}

Facts verdictOn(const Tried &tried)
{
    std::size_t nbLosing = 0;
    std::size_t nbOverloading = 0;
    std::size_t nbBroken = 0;
    for (std::size_t i = 0; i < tried.effects.size(); ++i) {
        const bool overloads = !tried.effects[i].overloads.empty();
        nbLosing += tried.effects[i].all.lost.number > 0 ? 1 : 0;
        nbOverloading += overloads ? 1 : 0;
        nbBroken += overloads && tried.failures[i].isSingle() ? 1 : 0;
    }
    const auto bad = [](std::size_t count) {
        return Cell{number(count), count > 0 ? Tone::bad : Tone::good};
    };
    return {"verdict",
            "",
            {{"failures", "failures tried", number(tried.effects.size())},
             {"losing", "with LSPs lost", bad(nbLosing)},
             {"overloading", "with links too full after the switch", bad(nbOverloading)},
             {"promisesBroken", "those of one link or node among them", bad(nbBroken)}}};
}

Table levelsOf(const Plan &plan, const Tried &tried)
{
    Table table{.key = "levels",
                .title = "LSPs hit, over all failures",
                .columns = {{"level", "level"},
                            {"hit", "hit"},
                            {"local", "by local backups"},
                            {"global", "by a global one"},
                            {"lost", "lost"},
                            {"ended", "end there"},
                            {"survival", "carried on"}}};
    const auto add = [&](const std::string &name, const BrokenLsps &broken) {
        const std::size_t carriable = broken.hit.number - broken.ended.number;
        auto &row = table.rows.emplace_back();
        row = {name,
               number(broken.hit.number),
               number(broken.local.number),
               number(broken.global.number),
               countOf(broken.lost, Tone::bad),
               number(broken.ended.number)};
        if (carriable > 0)
            row.emplace_back(Ratio{1.0 - static_cast<double>(broken.lost.number) /
                                             static_cast<double>(carriable)});
        else
            row.emplace_back();
    };
    BrokenLsps all;
    for (std::size_t level = 0; level < plan.network.levels.size(); ++level) {
        BrokenLsps sum;
        for (const FailureEffect &effect : tried.effects)
            sum += effect.levels[level];
        add(plan.network.levels[level], sum);
        all += sum;
    }
    add("all", all);
    return table;
}

/** How many links are filled up to what, without a failure and in the worst case. */
Table distributionOf(const Tried &tried)
{
    constexpr std::size_t nbSteps = 10;
    std::vector<std::array<std::size_t, 2>> counts(nbSteps + 1);
    const auto stepOf = [](double full) {
        return full > 1.0 + 1e-9 ? nbSteps
                                 : std::min(static_cast<std::size_t>(full * nbSteps), nbSteps - 1);
    };
    for (const WorstUse &use : tried.worst) {
        ++counts[stepOf(use.normal)][0];
        ++counts[stepOf(use.worst)][1];
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

Table linksOf(const Plan &plan, const Tried &tried, std::size_t shown)
{
    Table table{.key = "links",
                .title = "Links that get fullest",
                .columns = {{"link", "link"},
                            {"class", "class"},
                            {"normal", "without failure"},
                            {"worst", "worst"},
                            {"failure", "when this fails"}},
                .shown = shown};
    const auto worstOf = [](const WorstUse &use) { return use.worst; };
    for (const std::size_t i : largestFirst(tried.worst, worstOf)) {
        const WorstUse &use = tried.worst[i];
        auto &row = table.rows.emplace_back();
        row = {planning::nameOf(plan.network, LinkId{static_cast<std::int32_t>(i)}),
               plan.network.classes[static_cast<std::size_t>(use.classType)], Ratio{use.before},
               Cell{Ratio{use.worst}, use.worst > 1.0 + 1e-9 ? Tone::bad : Tone::plain}};
        if (use.failure < tried.failures.size())
            row.emplace_back(tried.failures[use.failure].name);
        else
            row.emplace_back();
    }
    return table;
}

Table overloadsOf(const Plan &plan, const Tried &tried, std::size_t shown)
{
    Table table{.key = "overloads",
                .title = "Links too full after the switch",
                .columns = {{"failure", "failure"},
                            {"link", "link"},
                            {"class", "class"},
                            {"use", "use"},
                            {"capacity", "capacity"}},
                .shown = shown};
    for (std::size_t i = 0; i < tried.effects.size(); ++i)
        for (const planning::Overload &overload : tried.effects[i].overloads)
            table.rows.push_back(
                {tried.failures[i].name, planning::nameOf(plan.network, overload.link),
                 plan.network.classes[static_cast<std::size_t>(overload.classType)],
                 Bandwidth{overload.use}, Bandwidth{overload.capacity}});
    return table;
}

Table lostOf(const Plan &plan, const Tried &tried, std::size_t shown)
{
    Table table{.key = "lost",
                .title = "LSPs lost",
                .columns = {{"failure", "failure"},
                            {"demand", "demand"},
                            {"level", "level"},
                            {"bandwidth", "bandwidth"}},
                .shown = shown};
    for (std::size_t i = 0; i < tried.effects.size(); ++i)
        for (const auto &[id, fate] : tried.effects[i].lsps)
            if (fate == planning::Fate::lost) {
                const Demand &demand = plan.demands[id.index()];
                table.rows.push_back({tried.failures[i].name,
                                      planning::nameOf(plan.network, plan.demands, id),
                                      plan.network.levels[static_cast<std::size_t>(demand.level)],
                                      Bandwidth{demand.bandwidth}});
            }
    return table;
}

class FailCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "A plan, which `tarnex place --save` made", file);
        declaration.option(
            {.name = "--set",
             .argument = "SETS",
             .help = "What fails, one after the other: links in one direction, duplex for links in "
                     "both, nodes, pairs for every two of duplex at once; several with commas "
                     "(default: duplex,nodes)",
             .choices = {"links", "duplex", "nodes", "pairs"},
             .take = [this](const std::string &text) { sets = setsFrom(text); }});
        declaration.count("--top", "NUMBER", "How many rows tables have for people (default: 5)",
                          nbTop);
        declareForms(declaration, form, "the failures");
    }

    ExitStatus run() override
    {
        const Plan plan = readPlan(file);
        nowDoing("failing");
        const Tried tried = tryAll(plan);
        print({"failures",
               plan.network.unit,
               {verdictOn(tried), failuresOf(tried, nbTop), levelsOf(plan, tried),
                distributionOf(tried), linksOf(plan, tried, nbTop), overloadsOf(plan, tried, nbTop),
                lostOf(plan, tried, nbTop)}},
              form);
        const bool isHarmless = std::ranges::all_of(tried.effects, [](const FailureEffect &effect) {
            return effect.all.lost.number == 0 && effect.overloads.empty();
        });
        return isHarmless ? ExitStatus::done : ExitStatus::withFindings;
    }

private:
    static std::vector<FailureSet> setsFrom(const std::string &text)
    {
        using enum FailureSet;
        std::vector<FailureSet> found;
        for (const std::string &name : split(text, ',')) {
            const FailureSet all[] = {links, duplex, nodes, pairs};
            const auto *const known =
                std::ranges::find(all, name, [](FailureSet set) { return nameOf(set); });
            if (known == std::end(all))
                throw UsageError(fmt::format(
                    "--set {}: expected links, duplex, nodes or pairs, several with commas", text));
            if (std::ranges::find(found, *known) == found.end())
                found.push_back(*known);
        }
        return found;
    }

    Tried tryAll(const Plan &plan) const
    {
        Tried tried;
        planning::FailureStudy study{plan};
        for (const FailureSet set : sets)
            for (Failure &failure : planning::failuresOf(plan.network, set)) {
                tried.effects.push_back(study.effectOf(failure));
                tried.failures.push_back(std::move(failure));
            }
        tried.worst = study.worst();
        return tried;
    }

    std::string file;
    std::vector<FailureSet> sets{FailureSet::duplex, FailureSet::nodes};
    std::size_t nbTop = 5;
    Form form = Form::text;
};

const Page &FailCommand::page() const
{
    static const Page page{
        .name = "fail",
        .summary = "lets links and nodes of a plan fail: what is carried on, what is lost",
        .purpose =
            R"(Lets links and nodes fail, one after the other or two at once, and follows every LSP that a failure hits: around failed links on its local backups, else beside them on its global one. A backup that the same failure hits is no help, and an LSP without one that is whole is lost. An LSP that begins or ends at a failed node ends there, whatever its protection.

After the switch it is added up what every link carries; links that are then fuller than they may be are named. A single link or node must not bring that about, since backups that share bandwidth were placed for that; where it does, a promise is broken. Both directions of a link, or two links at once, may.

Everything is worked out from the paths of the plan by plain addition, without the engine.)",
        .examples = {{"A plan whose LSPs have backups:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect local-or-global --save plan.json"},
                     {"Every link in both directions and every node, one after the other:",
                      "tarnex fail plan.json"},
                     {"Every two links at once, a line of JSON for each:",
                      "tarnex fail plan.json --set pairs --jsonl"}},
        .findings = "done, and LSPs were lost or links too full"};
    return page;
}

} // namespace

std::unique_ptr<Command> makeFail() { return std::make_unique<FailCommand>(); }

} // namespace tarnex::cli
