#include "planning/diff.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/plan_tables.h"

#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using planning::Change;

Tone toneOf(Change change)
{
    if (change == Change::lost)
        return Tone::bad;
    return change == Change::gained ? Tone::good : Tone::plain;
}

/** Adds a demand's bandwidth and path in one of the plans. */
void addState(std::vector<Cell> &row, const Plan &plan, std::optional<DemandId> id)
{
    row.insert(row.end(), 2, Cell{});
    if (!id)
        return;
    row[row.size() - 2] = Bandwidth{plan.demands[id->index()].bandwidth};
    if (const auto *const lsp = std::get_if<PlannedLsp>(&plan.outcomes[id->index()]))
        row.back() = namesOf(plan.network, lsp->path);
}

Table demandsOf(const planning::PlanDiff &found, const Plan &before, const Plan &after)
{
    Table table{.key = "demands",
                .title = "LSPs",
                .columns = {{"change", "change"},
                            {"demand", "demand"},
                            {"bandwidthBefore", "before"},
                            {"pathBefore", "path before"},
                            {"bandwidthAfter", "after"},
                            {"pathAfter", "path after"}}};
    for (const planning::DemandChange &change : found.demands) {
        auto &row = table.rows.emplace_back();
        row.emplace_back(std::string{wordsFor(change.change)}, toneOf(change.change));
        row.emplace_back(change.name);
        addState(row, before, change.before);
        addState(row, after, change.after);
    }
    return table;
}

Table linksOf(const planning::PlanDiff &found)
{
    Table table{.key = "links",
                .title = "Links",
                .columns = {{"link", "link"},
                            {"class", "class"},
                            {"capacity", "capacity"},
                            {"reservedBefore", "reserved before"},
                            {"reservedAfter", "after"},
                            {"gain", "change"}}};
    for (const planning::LinkChange &change : found.links)
        table.rows.push_back({change.name, change.className, Bandwidth{change.capacity},
                              Bandwidth{change.reservedBefore}, Bandwidth{change.reservedAfter},
                              Ratio{change.gain()}});
    return table;
}

Table nodesOf(const planning::PlanDiff &found)
{
    Table table{
        .key = "nodes", .title = "Nodes", .columns = {{"change", "change"}, {"node", "node"}}};
    for (const std::string &name : found.nodesGained)
        table.rows.push_back({"gained", name});
    for (const std::string &name : found.nodesLost)
        table.rows.push_back({"lost", name});
    return table;
}

Facts countsOf(const planning::PlanDiff &found)
{
    Facts facts{"differences", "", {}};
    const std::pair<Change, const char *> kinds[] = {
        {Change::moved, "moved"},     {Change::gained, "gained"},
        {Change::lost, "lost"},       {Change::reprotected, "reprotected"},
        {Change::resized, "resized"}, {Change::added, "added"},
        {Change::removed, "removed"}};
    for (const auto &[kind, key] : kinds) {
        std::size_t count = 0;
        for (const planning::DemandChange &change : found.demands)
            count += change.change == kind ? 1 : 0;
        facts.facts.push_back({key, std::string{"LSPs "} + wordsFor(kind), number(count)});
    }
    facts.facts.push_back({"links", "links that differ", number(found.links.size())});
    return facts;
}

class DiffCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("BEFORE", "A plan, which `tarnex place --save` made", before);
        declaration.file("AFTER", "Another one, to compare it with", after);
        declaration.option({.name = "--threshold",
                            .argument = "SHARE",
                            .help = "Shows links whose reservation changed by more than this share "
                                    "of their capacity, as 5% (default: 0)",
                            .take = [this](const std::string &text) {
                                threshold = shareFrom(text, "--threshold");
                            }});
        declareForms(declaration, form, "the LSPs");
    }

    ExitStatus run() override
    {
        const auto [first, second] = readPlans(before, after);
        nowDoing("comparing");
        const planning::PlanDiff found = planning::diff(first, second, threshold);
        print({"difference",
               second.network.unit,
               {countsOf(found), demandsOf(found, first, second), linksOf(found), nodesOf(found)}},
              form);
        return found.isEmpty() ? ExitStatus::done : ExitStatus::withFindings;
    }

private:
    std::string before;
    std::string after;
    double threshold = 0.0;
    Form form = Form::text;
};

const Page &DiffCommand::page() const
{
    static const Page page{
        .name = "diff",
        .summary = "compares two plans: LSPs moved, gained and lost, links fuller or emptier",
        .purpose =
            R"(Tells which LSPs take another path, were gained or lost, or have other backups, and which links reserve more or less than before, by more than --threshold of their capacity. Nodes, links and demands are the same when their names are.)",
        .examples = {{"Two plans:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--save one.json"},
                     {"", "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                          "--objective hops --save other.json"},
                     {"What differs, with the links that changed by more than a tenth:",
                      "tarnex diff one.json other.json --threshold 10%"}},
        .findings = "done, and there are differences"};
    return page;
}

} // namespace

std::unique_ptr<Command> makeDiff() { return std::make_unique<DiffCommand>(); }

} // namespace tarnex::cli
