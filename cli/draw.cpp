#include "report/drawing.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"

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
        declaration.file("OUT", "The drawing, by its suffix as .svg, .dot or .gv", target);
    }

    ExitStatus run() override
    {
        const std::string suffix = std::filesystem::path{target}.extension().string();
        if (suffix != ".svg" && suffix != ".dot" && suffix != ".gv")
            throw UsageError(
                fmt::format("{}: expected a file that ends in .svg, .dot or .gv", target));
        const Plan plan = readPlan(file);
        replaceFiles({{target, [&](std::ostream &out) {
                           if (suffix == ".svg")
                               report::writeSvg(out, plan);
                           else
                               report::writePlacedDot(out, plan);
                       }}});
        return ExitStatus::done;
    }

private:
    std::string file;
    std::string target;
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
                     {"The drawing:", "tarnex draw plan.json plan.svg"}},
        .findings = ""};
    return page;
}

} // namespace

std::unique_ptr<Command> makeDraw() { return std::make_unique<DrawCommand>(); }

} // namespace tarnex::cli
