#include "cli/command.h"
#include "cli/errors.h"
#include "cli/failure_tables.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/part_file.h"
#include "cli/progress.h"
#include "cli/text.h"
#include "formats/digest.h"
#include "formats/text_of_file.h"
#include "planning/sweep.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <optional>

namespace tarnex::cli
{

namespace
{

using planning::FailureSet;
using planning::FailureTally;
using planning::Reroute;
using planning::TriedFailure;

/** "3/8": the third of eight. */
planning::Shard shardFrom(const std::string &text)
{
    const std::vector<std::string> pieces = split(text, '/');
    if (pieces.size() != 2)
        throw UsageError(fmt::format("--shard {}: expected I/N, as 3/8 for the third of 8", text));
    const planning::Shard shard{wholeNumberFrom(pieces[0], "--shard", 1) - 1,
                                wholeNumberFrom(pieces[1], "--shard", 1)};
    if (shard.number >= shard.of)
        throw UsageError(fmt::format("--shard {}: expected I/N with I from 1 to N", text));
    return shard;
}

/** What is to fail, and its name in the header of a part. */
struct Sets {
    planning::FailureList failures;
    std::string name;
};

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
                     "both, nodes, pairs for every two of duplex at once, or a file that names "
                     "sets; several with commas (default: duplex,nodes)",
             .completes = Completes::choices,
             .choices = {"links", "duplex", "nodes", "pairs"},
             .take = [this](const std::string &text) { sets = split(text, ','); }});
        declaration.flag("--reroute", "Places LSPs that are lost anew, around what has failed",
                         reroutes);
        declaration.option({.name = "--preempt",
                            .help = "Less important LSPs may give way to them (default: as in the "
                                    "plan)",
                            .take = [this](const std::string &) { preempts = true; }});
        declaration.option({.name = "--no-preempt",
                            .help = "No LSP gives way",
                            .take = [this](const std::string &) { preempts = false; }});
        declaration.count("--top", "NUMBER", "How many rows tables have for people (default: 5)",
                          show.nbRows);
        declaration.choice("--list", "WHAT", "Adds a list: lost, LSPs that are lost, or none",
                           {{"none", false}, {"lost", true}}, show.listsLost);
        declareForms(declaration, form, "the failures");
        declaration.group("Large sweeps");
        declaration.count("--jobs", "N", "Works in so many processes (default: 1)", jobs, 1);
        declaration.option({.name = "--shard",
                            .argument = "I/N",
                            .help = "Does the I-th of N parts; `tarnex merge` puts them together",
                            .take = [this](const std::string &text) { shard = shardFrom(text); }});
        declaration.text("--save", "FILE",
                         "Keeps a line for each failure in a file, for `tarnex merge`", part,
                         Completes::files);
        declaration.flag("--resume", "Goes on with a file that an earlier run has left", resumes);
    }

    ExitStatus run() override
    {
        if (part.empty() && (resumes || shard.of > 1))
            throw UsageError(fmt::format("{} needs a file: expected --save FILE",
                                         resumes ? "--resume" : "--shard"));
        const auto [plan, digest] = readDigestedPlan(file);
        show.hasRerouted = reroutes;
        show.isForPeople = form == Form::text;
        const Reroute how = !reroutes                                  ? Reroute::no
                            : preempts.value_or(plan.options.preempts) ? Reroute::preempting
                                                                       : Reroute::gently;
        const Sets all = setsOf(plan.network);
        nowDoing("failing");
        planning::FailureStudy study{plan, how};
        FailureTally tally{study.normal(), plan.network.levels.size()};
        planning::SweepOptions options{how, show.listsLost, shard, 0, jobs};
        if (part.empty())
            sweepInto(tally, study, plan, all, options, nullptr);
        else
            sweepToFile(tally, study, plan, digest, all, options);
        const bool isWhole = shard.of == 1;
        print(isWhole ? failureDocument(plan, tally, show)
                      : Document{"failures-part", plan.network.unit, {verdictOn(tally)}},
              form);
        return tally.isHarmless() ? ExitStatus::done : ExitStatus::withFindings;
    }

private:
    Sets setsOf(const Network &network) const
    {
        Sets all;
        std::vector<std::string> known;
        std::vector<std::string> ids;
        for (const std::string &name : sets) {
            if (std::ranges::find(known, name) != known.end())
                continue;
            known.push_back(name);
            ids.push_back(add(all.failures, network, name));
        }
        all.name = joined(ids, ",");
        return all;
    }

    /** Adds a set; what it is called. */
    std::string add(planning::FailureList &failures, const Network &network,
                    const std::string &name) const
    {
        using enum FailureSet;
        for (const FailureSet set : {links, duplex, nodes, pairs}) {
            if (nameOf(set) == name) {
                failures.add(network, set);
                return name;
            }
        }
        if (!std::filesystem::exists(name))
            throw UsageError(fmt::format("--set {}: expected links, duplex, nodes, pairs or a file "
                                         "that names sets, several with commas",
                                         joined(sets, ",")));
        const std::string text = formats::textOfFile(name);
        failures.add(network, formats::parseFailureSets(text, name, network));
        return formats::digestOf(text);
    }

    /** Tries failures; whether all were. */
    static bool sweepInto(FailureTally &tally, planning::FailureStudy &study, const Plan &plan,
                          const Sets &all, const planning::SweepOptions &options,
                          PartWriter *writer)
    {
        std::size_t done = options.done;
        std::optional<TerminalProgress> stoppable;
        planning::Progress unstoppable;
        if (writer)
            stoppable.emplace();
        planning::sweep(
            study, plan, all.failures, options,
            [&](TriedFailure tried) {
                ++done;
                tally.dropLowPeaks(tried.effect); // those of one process among several
                if (writer)
                    writer->write(tried);
                tally.add(std::move(tried.name), tried.effect);
            },
            writer ? *stoppable : unstoppable);
        return done == options.shard.size(all.failures.size());
    }

    void sweepToFile(FailureTally &tally, planning::FailureStudy &study, const Plan &plan,
                     const std::string &digest, const Sets &all,
                     planning::SweepOptions options) const
    {
        PartWriter writer{part,
                          {TARNEX_VERSION, digest, all.name, options.reroute, options.listsLost,
                           all.failures.size(), shard}};
        if (resumes)
            options.done = writer.resume(
                plan, [&](TriedFailure tried) { tally.add(std::move(tried.name), tried.effect); });
        writer.begin();
        if (!sweepInto(tally, study, plan, all, options, &writer))
            throw Interrupted(fmt::format(
                "stopped after {} of {} failures; --resume goes on from {}", tally.failures.size(),
                shard.size(all.failures.size()), writer.partial().string()));
        writer.finish();
    }

    std::string file;
    std::vector<std::string> sets{"duplex", "nodes"};
    bool reroutes = false;
    std::optional<bool> preempts;
    std::size_t jobs = 1;
    planning::Shard shard{};
    std::string part;
    bool resumes = false;
    FailureShow show;
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

Everything is worked out from the paths of the plan by plain addition, without the engine.

With --reroute the engine places what is lost anew, by level, around what has failed. Lost LSPs release what they had reserved; what all others have reserved, for themselves and for their backups, stays reserved. Nothing is protected anew. --list lost tells why an LSP stays lost.

A file for --set has a line for each set of what fails at once, such as the fibres of a duct: `failure NAME (link FROM TO | duplex FROM TO | node NAME)...`; names with blanks stand between quotation marks, and what follows a # is a comment.

Large sweeps can use several processes (--jobs), and several machines: --shard has each of them do its part and keep it in a file, and `tarnex merge` puts the parts together. While a part is worked on, its file is called FILE.partial; after a stop, --resume goes on with it. The result is the same, to the byte, whatever the number of jobs and parts.)",
        .examples = {{"A plan whose LSPs have backups:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect local-or-global --save plan.json"},
                     {"Every link in both directions and every node, one after the other:",
                      "tarnex fail plan.json"},
                     {"What shares a duct, with lost LSPs placed anew:",
                      "tarnex fail plan.json --set abilene/abilene.ducts --reroute --list lost"},
                     {"Every two links at once, a line of JSON for each, in two processes:",
                      "tarnex fail plan.json --set pairs --jobs 2 --jsonl"},
                     {"The second of three parts, kept in a file:",
                      "tarnex fail plan.json --set pairs --shard 2/3 --save part2.jsonl"}},
        .findings = failureFindings};
    return page;
}

} // namespace

std::unique_ptr<Command> makeFail() { return std::make_unique<FailCommand>(); }

} // namespace tarnex::cli
