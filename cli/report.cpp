#include "report/page.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"

#include <filesystem>

namespace tarnex::cli
{

namespace
{

class ReportCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "A plan, which `tarnex place --save` made", file);
        declaration.text("--output", "FILE", "Where the page goes (default: PLAN with .html)",
                         output, Completes::files);
        declaration.text("--title", "TEXT", "What stands above it (default: the plan's name)",
                         title);
    }

    ExitStatus run() override
    {
        const Plan plan = readPlan(file);
        std::filesystem::path target{output};
        if (output.empty())
            target = std::filesystem::path{file}.replace_extension(".html");
        replaceFiles(
            {{target, [&](std::ostream &out) { report::writePage(out, plan, titleOf(plan)); }}});
        return ExitStatus::done;
    }

private:
    std::string titleOf(const Plan &plan) const
    {
        if (!title.empty())
            return title;
        return plan.network.name.empty() ? std::filesystem::path{file}.stem().string()
                                         : plan.network.name;
    }

    std::string file;
    std::string output;
    std::string title;
};

const Page &ReportCommand::page() const
{
    static const Page page{
        .name = "report",
        .summary = "makes a page of a plan to look at in a browser",
        .purpose =
            R"(Writes one HTML file that works by itself: a map with links coloured by use, lists of LSPs, links, failures and refusals with search and sorting, and charts. Choose an LSP to see its path and its backups, a link to see what it reserves at each level, a failure to see the switch and the load after it.

Nodes stand where their coordinates say, over coast lines and borders; without coordinates they are laid out by how far they are from each other. The same plan gives the same page. Nothing in it asks the network for anything.)",
        .examples = {{"A plan whose LSPs have backups:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect local-or-global --save plan.json"},
                     {"The page, in plan.html:", "tarnex report plan.json"},
                     {"Elsewhere, under another title:",
                      "tarnex report plan.json --output abilene.html --title 'Abilene, 2004'"}},
        .findings = ""};
    return page;
}

} // namespace

std::unique_ptr<Command> makeReport() { return std::make_unique<ReportCommand>(); }

} // namespace tarnex::cli
