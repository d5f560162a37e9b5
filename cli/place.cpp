#include "planning/place.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/place_options.h"
#include "cli/plan_tables.h"
#include "cli/progress.h"
#include "formats/write.h"

#include <algorithm>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

enum class List { none, lsps, backups, links, refusals, all };

const std::vector<std::pair<std::string, List>> &listNames()
{
    static const std::vector<std::pair<std::string, List>> all{{"lsps", List::lsps},
                                                               {"backups", List::backups},
                                                               {"links", List::links},
                                                               {"refusals", List::refusals},
                                                               {"all", List::all}};
    return all;
}

bool hasFindings(const planning::Summary &summary)
{
    if (summary.all.refused.number + summary.all.preempted.number > 0)
        return true;
    for (const planning::Amount &amount : summary.unprotected)
        if (amount.number > 0)
            return true;
    return false;
}

bool asksForProtection(const PlanOptions &options)
{
    return std::ranges::any_of(options.protection,
                               [](const LevelScheme &scheme) { return scheme.has_value(); });
}

class PlaceCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("FILE", "A network, with or without demands, or a plan to go on from",
                         file);
        input.declareDemands(declaration);
        declaration.text("--save", "FILE", "Writes the plan to a file, as JSON", save,
                         Completes::files);
        terms.declare(declaration);
        input.declareReading(declaration);
        declareForms(declaration, form, "the list, or the demands per level");
        declaration.choice("--list", "WHAT",
                           "Prints all lsps, backups, links, refusals, or all of these, too",
                           listNames(), list);
        declaration.count("--top", "N", "How many of the most used links to show (default: 5)",
                          nbTop);
    }

    ExitStatus run() override
    {
        if (form == Form::csv && list == List::all)
            throw UsageError("--csv holds one list: expected --list lsps, backups, links or "
                             "refusals");
        const Plan plan = makePlan(readInput(file, input));
        if (isInterrupted())
            throw Interrupted(whatWasFinished(plan));
        if (!save.empty())
            replaceFiles({{save, [&plan](std::ostream &out) { formats::writePlan(out, plan); }}});
        const std::size_t nbLinks = plan.network.links.size() * plan.network.classes.size();
        const planning::Summary summary = planning::summaryOf(plan, nbLinks);
        print(documentOf(plan, summary), form);
        return hasFindings(summary) ? ExitStatus::withFindings : ExitStatus::done;
    }

private:
    Plan makePlan(NetworkInput read) const
    {
        nowDoing("placing");
        TerminalProgress progress;
        if (read.plan) {
            if (input.demands.empty())
                throw UsageError(fmt::format(
                    "{} is a plan: expected --demands FILE, with what to place on it", file));
            terms.applyTo(read.plan->options, read.plan->network);
            return planning::placeMore(std::move(*read.plan), std::move(read.demands), progress);
        }
        if (read.demands.empty())
            throw UsageError(fmt::format("{} has no demands: expected --demands FILE", file));
        PlanOptions options;
        terms.applyTo(options, read.network);
        return planning::place(std::move(read.network), std::move(read.demands), std::move(options),
                               progress);
    }

    std::string whatWasFinished(const Plan &plan) const
    {
        const planning::Fates fates = planning::summaryOf(plan, 0).all;
        std::string sentence =
            fmt::format("stopped: of {} demands {} were placed, {} refused and {} had given way",
                        fates.demanded.number, fates.placed.number, fates.refused.number,
                        fates.preempted.number);
        return save.empty() ? sentence : fmt::format("{}; {} was not touched", sentence, save);
    }

    Document documentOf(const Plan &plan, const planning::Summary &summary) const
    {
        Document document{"placement", plan.network.unit, {}};
        if (form != Form::csv || list == List::none)
            addSummary(document, plan, summary);
        const auto wants = [this](List which) { return list == which || list == List::all; };
        if (wants(List::lsps))
            document.sections.emplace_back(lspsOf(plan));
        if (wants(List::backups))
            document.sections.emplace_back(backupsOf(plan));
        if (wants(List::links))
            document.sections.emplace_back(loadsOf(plan, summary.fullest, "links", "Links"));
        if (wants(List::refusals))
            document.sections.emplace_back(refusalsOf(plan));
        return document;
    }

    void addSummary(Document &document, const Plan &plan, const planning::Summary &summary) const
    {
        std::vector<planning::LinkLoad> top = summary.fullest;
        top.resize(std::min(top.size(), nbTop));
        document.sections.emplace_back(levelsOf(plan, summary));
        document.sections.emplace_back(reasonsOf(summary));
        if (form != Form::text || asksForProtection(plan.options)) {
            document.sections.emplace_back(coverageOf(plan, summary));
            document.sections.emplace_back(protectionCost(summary));
        }
        document.sections.emplace_back(loadsOf(plan, top, "mostUsed", "Most used links"));
    }

    std::string file;
    std::string save;
    InputOptions input;
    PlaceOptions terms;
    List list = List::none;
    std::size_t nbTop = 5;
    Form form = Form::text;
};

const Page &PlaceCommand::page() const
{
    static const Page page{
        .name = "place",
        .summary = "places demands on a network, and protects them",
        .purpose =
            R"(Finds a path with enough room for every demand, one after the other. Where there is none, less important LSPs give way, unless --no-preempt; those are placed again if --retry says so. The LSPs of the levels named by --protect get backups, which share their bandwidth where no single failure needs two of them at once. Placed by level, as is the default, the LSPs of a level are protected before the next level is placed; in any other order at the end, most important level first.

The summary tells what became of the demands of each level, why some were refused, how well LSPs are protected and what that costs, and which links are used most. --list adds every LSP, backup, link or refusal. --save keeps all of it in a plan, for `tarnex explain`, `verify` and `diff`, and for `tarnex place PLAN --demands MORE`, which goes on from it: on the plan's terms, but for the options given.

Ctrl-C stops at once and says what was placed until then; nothing is saved.)",
        .examples =
            {{"Placing, with a summary:",
              "tarnex place abilene/abilene.network --demands abilene/abilene.demands"},
             {"Backups for two levels, and LSPs that gave way placed again; the plan is kept:",
              "tarnex place abilene/abilene.network --demands abilene/abilene.demands --retry 2 "
              "--protect gold=local --protect silver=local-or-global --save plan.json"},
             {"Short paths, the largest demands first, and every refusal with its reason:",
              "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
              "--objective hops --order largest --list refusals"},
             {"All LSPs for a spreadsheet:",
              "tarnex place abilene/abilene.network --demands abilene/abilene.demands --list lsps "
              "--csv"}},
        .findings = "done, but demands were refused or had to give way, or LSPs could not be "
                    "protected"};
    return page;
}

} // namespace

std::unique_ptr<Command> makePlace() { return std::make_unique<PlaceCommand>(); }

} // namespace tarnex::cli
