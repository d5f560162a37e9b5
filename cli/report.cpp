#include "report/page.h"

#include "cli/command.h"
#include "cli/input.h"
#include "cli/output.h"

#include <filesystem>

namespace tarnex::cli
{

namespace
{

std::string titleOf(const Plan &plan, const std::string &file)
{
    return plan.network.name.empty() ? std::filesystem::path{file}.stem().string()
                                     : plan.network.name;
}

class ReportCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "A plan, which `tarnex place --save` made", file);
        declaration.output("Where the page goes (default: PLAN with .html)", output);
        declaration.text("--compare", "BEFORE",
                         "Shows another plan beside it, and what differs from that one to PLAN",
                         before, Completes::files);
        declaration.text("--title", "TEXT", "What stands above it (default: the plan's name)",
                         title);
    }

    ExitStatus run() override
    {
        if (before.empty())
            writePlan();
        else
            writeComparison();
        return ExitStatus::done;
    }

private:
    void writePlan() const
    {
        const Plan plan = readPlan(file);
        writeBeside(file, ".html", output, [&](std::ostream &out) {
            report::writePage(out, plan, title.empty() ? titleOf(plan, file) : title);
        });
    }

    void writeComparison() const
    {
        const std::pair<Plan, Plan> plans = readPlans(before, file);
        const auto stem = [](const std::string &path) {
            return std::filesystem::path{path}.stem().string();
        };
        std::string above = title;
        if (title.empty() && !plans.second.network.name.empty())
            above = plans.second.network.name + ": ";
        if (title.empty())
            above += stem(before) + " and " + stem(file);
        writeBeside(file, ".html", output, [&](std::ostream &out) {
            report::writeComparison(out, {plans.first, stem(before)}, {plans.second, stem(file)},
                                    above);
        });
    }

    std::string file;
    std::string before;
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

With --compare there are two plans side by side: which LSPs moved, were gained or lost, which links are fuller or emptier, what each failure does to either.

Nodes stand where their coordinates say, over coast lines and borders; without coordinates they are laid out by how far they are from each other. The same plan gives the same page. Nothing in it asks the network for anything.)",
        .examples = {{"A plan whose LSPs have backups:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect local-or-global --save plan.json"},
                     {"The page, in plan.html:", "tarnex report plan.json"},
                     {"Elsewhere, under another title:",
                      "tarnex report plan.json -o abilene.html --title 'Abilene, 2004'"},
                     {"Another plan, on shortest paths:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect local-or-global --objective hops --save hops.json"},
                     {"The two side by side:",
                      "tarnex report --compare plan.json hops.json -o comparison.html"}},
        .findings = ""};
    return page;
}

} // namespace

std::unique_ptr<Command> makeReport() { return std::make_unique<ReportCommand>(); }

} // namespace tarnex::cli
