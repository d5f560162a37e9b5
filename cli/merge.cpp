#include "cli/command.h"
#include "cli/errors.h"
#include "cli/failure_tables.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/part_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace tarnex::cli
{

namespace
{

using planning::PartHeader;

class MergeCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "The plan that the parts are about", file);
        declaration.operand({.name = "PART",
                             .help = "A file that `tarnex fail --shard --save` wrote",
                             .isRequired = true,
                             .repeats = true,
                             .completes = Completes::files,
                             .take = [this](const std::string &name) { names.push_back(name); }});
        declaration.count("--top", "NUMBER", "How many rows tables have for people (default: 5)",
                          show.nbRows);
        declareForms(declaration, form, "the failures");
    }

    ExitStatus run() override
    {
        const auto [plan, digest] = readDigestedPlan(file);
        nowDoing("merging");
        openAll(plan, digest);
        const PartHeader &header = parts.front()->header();
        show.hasRerouted = header.reroute != planning::Reroute::no;
        show.listsLost = header.listsLost;
        show.isForPeople = form == Form::text;
        const planning::FailureStudy study{plan};
        planning::FailureTally tally{study.normal(), plan.network.levels.size()};
        planning::TriedFailure tried;
        for (std::size_t position = 0; position < header.nbFailures; ++position) {
            PartReader &part = *parts[position % parts.size()];
            if (!part.next(tried))
                throw InputError(
                    nameOf(part), 0, 0,
                    fmt::format("the part is not complete: expected failure {}", position));
            tally.add(std::move(tried.name), tried.effect);
        }
        for (const auto &part : parts)
            if (part->next(tried))
                throw InputError(nameOf(*part), 0, 0, "the part has more failures than it says");
        print(failureDocument(plan, tally, show), form);
        return tally.isHarmless() ? ExitStatus::done : ExitStatus::withFindings;
    }

private:
    /** Opens the parts, in the order of their numbers; InputError when they do not belong together.
     */
    void openAll(const Plan &plan, const std::string &digest)
    {
        std::optional<PartHeader> first;
        for (const std::string &name : names) {
            auto part = std::make_unique<PartReader>(name, plan);
            PartHeader header = part->header();
            const std::size_t number = std::exchange(header.shard.number, 0);
            if (header.plan != digest)
                throw InputError(name, 1, 0, "the part is about another plan");
            if (!first) {
                first = header;
                parts.resize(std::min(header.shard.of, names.size() + 1));
            }
            if (header != *first)
                throw InputError(name, 1, 0,
                                 fmt::format("the part is of another sweep than {}: expected the "
                                             "same version, sets and options",
                                             names.front()));
            if (number >= parts.size())
                throw InputError(name, 1, 0, missing(header.shard.of));
            if (parts[number])
                throw InputError(name, 1, 0, fmt::format("part {} is given twice", number + 1));
            parts[number] = std::move(part);
        }
        if (parts.size() != first->shard.of || names.size() != parts.size())
            throw InputError(names.front(), 1, 0, missing(first->shard.of));
    }

    std::string missing(std::size_t expected) const
    {
        return fmt::format("the sweep has {} parts: expected all of them, not {}", expected,
                           names.size());
    }

    std::string nameOf(const PartReader &part) const { return part.file().string(); }

    std::string file;
    std::vector<std::string> names;
    std::vector<std::unique_ptr<PartReader>> parts; ///< by number
    FailureShow show;
    Form form = Form::text;
};

const Page &MergeCommand::page() const
{
    static const Page page{
        .name = "merge",
        .summary = "puts the parts of a large sweep of failures together",
        .purpose =
            R"(Reads the files that runs of `tarnex fail --shard I/N --save FILE` have written, on one machine or on many, and prints what one run over everything would have printed, to the byte.

Parts that are missing, doubled or broken off are refused, and those of another plan, of other sets or options, or of another version of the program.)",
        .examples = {{"A plan, whose failures are a matter for two machines:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect local-or-global --save plan.json"},
                     {"The first half, on one machine:",
                      "tarnex fail plan.json --set pairs --shard 1/2 --save one.jsonl"},
                     {"The second half, on another one:",
                      "tarnex fail plan.json --set pairs --shard 2/2 --save two.jsonl"},
                     {"All of it:", "tarnex merge plan.json one.jsonl two.jsonl"}},
        .findings = failureFindings};
    return page;
}

} // namespace

std::unique_ptr<Command> makeMerge() { return std::make_unique<MergeCommand>(); }

} // namespace tarnex::cli
