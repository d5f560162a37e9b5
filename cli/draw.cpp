#include "report/drawing.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/output.h"

#include <fmt/format.h>

#include <filesystem>

namespace tarnex::cli
{

namespace
{

class DrawCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "A plan, which `tarnex place --save` made", file);
        declaration.output("The drawing, by its suffix as .svg, .dot or .gv (default: PLAN with "
                           ".svg)",
                           output);
    }

    ExitStatus run() override
    {
        const std::string suffix = std::filesystem::path{output}.extension().string();
        if (!output.empty() && suffix != ".svg" && suffix != ".dot" && suffix != ".gv")
            throw UsageError(
                fmt::format("--output {}: expected a file that ends in .svg, .dot or .gv", output));
        const Plan plan = readPlan(file);
        writeBeside(file, ".svg", output, [&](std::ostream &out) {
            if (output.empty() || suffix == ".svg")
                report::writeSvg(out, plan);
            else
                report::writePlacedDot(out, plan);
        });
        return ExitStatus::done;
    }

private:
    std::string file;
    std::string output;
};

const Page &DrawCommand::page() const
{
    static const Page page{
        .name = "draw",
        .summary = "draws a plan for papers",
        .purpose =
            R"(Writes a drawing of the network of a plan as SVG, or as DOT with places for `neato -n2`: links coloured by what they reserve in their fullest class, over coast lines and borders where nodes have coordinates. The same plan gives the same drawing.)",
        .examples = {{"A plan:", "tarnex place abilene/abilene.network --demands "
                                 "abilene/abilene.demands --save plan.json"},
                     {"The drawing:", "tarnex draw plan.json -o map.svg"}},
        .findings = ""};
    return page;
}

} // namespace

std::unique_ptr<Command> makeDraw() { return std::make_unique<DrawCommand>(); }

} // namespace tarnex::cli
