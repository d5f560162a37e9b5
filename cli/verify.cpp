#include "planning/verify.h"

#include "cli/command.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"

namespace tarnex::cli
{

namespace
{

Facts verdictOn(const Plan &plan, std::size_t nbDeviations)
{
    std::size_t nbLsps = 0;
    std::size_t nbBackups = 0;
    for (const Outcome &outcome : plan.outcomes)
        if (const auto *const lsp = std::get_if<PlannedLsp>(&outcome)) {
            ++nbLsps;
            nbBackups += lsp->backups.size();
        }
    return {"verdict",
            "",
            {{"isRight", "the plan is right",
              Cell{truth(nbDeviations == 0), nbDeviations == 0 ? Tone::good : Tone::bad}},
             {"deviations", "deviations", number(nbDeviations)},
             {"lsps", "LSPs checked", number(nbLsps)},
             {"backups", "backups checked", number(nbBackups)},
             {"links", "links checked", number(plan.network.links.size())},
             {"testsCapacity", "capacities checked", truth(plan.options.engine.testsCapacity)}}};
}

class VerifyCommand : public Command
{
public:
    const Page &page() const override
    {
        static const Page page{
            .name = "verify",
            .summary = "checks a plan against nothing but its own network and LSPs",
            .purpose =
                R"(Works out anew, by plain addition over all single failures, what every link has to reserve for the LSPs and backups of a plan, and compares that with what the plan says and with the capacities. Checks that every path is there, joins its ends and passes no node twice, that backups avoid what they protect, and that every demand has one outcome. At last the engine has to come to the same reservations. Whatever deviates is named, but what depends on it is then not looked at. Scores, and what refusals say, are not worked out anew; nor are capacities checked of a plan that was made with --no-capacity-test.

It trusts no tables: a plan that was edited, or made by another program, may be checked as well.)",
            .examples = {{"A plan to check:",
                          "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                          "--protect local --save plan.json"},
                         {"Is it right?", "tarnex verify plan.json"}},
            .findings = "done, and there are deviations"};
        return page;
    }

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "A plan, which `tarnex place --save` made", file);
        declareForms(declaration, form, "the deviations");
    }

    ExitStatus run() override
    {
        const Plan plan = readPlan(file);
        nowDoing("verifying");
        const std::vector<planning::Deviation> deviations = planning::verify(plan);
        Table table{.key = "deviations",
                    .title = "Deviations",
                    .columns = {{"fault", "what"}, {"sentence", "deviation"}}};
        for (const planning::Deviation &deviation : deviations)
            table.rows.push_back({std::string{nameOf(deviation.fault)}, deviation.sentence});
        print({"verification", plan.network.unit, {verdictOn(plan, deviations.size()), table}},
              form);
        return deviations.empty() ? ExitStatus::done : ExitStatus::withFindings;
    }

private:
    std::string file;
    Form form = Form::text;
};

} // namespace

std::unique_ptr<Command> makeVerify() { return std::make_unique<VerifyCommand>(); }

} // namespace tarnex::cli
