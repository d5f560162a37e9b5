#include "planning/explain.h"

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/place_options.h"
#include "cli/plan_tables.h"
#include "cli/text.h"
#include "planning/names.h"

#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using planning::Explanation;

/** Node, as a person typed it. */
NodeId nodeFrom(const Network &network, const std::string &name)
{
    if (const auto node = planning::nodeNamed(network, name))
        return *node;
    std::vector<std::string> names;
    for (const Node &node : network.nodes)
        names.push_back(node.name);
    const std::string meant = nearest(name, names);
    throw UsageError(fmt::format("no node {}: {}", name,
                                 meant.empty() ? "expected a name that `tarnex show PLAN --list "
                                                 "nodes` lists"
                                               : fmt::format("did you mean {}?", meant)));
}

Facts refusalFacts(std::string key, std::string title, const planning::NamedRefusal &refusal)
{
    return {
        std::move(key),
        std::move(title),
        {{"reason", "reason", {std::string{textOf(refusal.reason)}, Tone::bad}},
         {"sentence", "that is", refusal.sentence},
         {"largestBandwidth", "largest bandwidth that fits", Bandwidth{refusal.largestBandwidth}}}};
}

class ExplainCommand : public Command
{
public:
    const Page &page() const override;

    void declare(Declaration &declaration) override
    {
        declaration.file("PLAN", "A plan, which `tarnex place --save` made", file);
        declareOperand(declaration, "FROM", "Name of the node where the LSP would begin", from);
        declareOperand(declaration, "TO", "Name of the node where it would end", to);
        declareOperand(declaration, "BANDWIDTH",
                       "Its bandwidth, in the network's unit or with k, M, G or T", bandwidth);
        declaration.text("--class", "NAME", "Its class (default: the network's first)", className);
        declaration.text("--level", "NAME", "Its level (default: the least important one)", level);
        declaration.option({.name = "--preempt",
                            .help = "Less important LSPs may give way (default: as in the plan)",
                            .take = [this](const std::string &) { preempts = true; }});
        declaration.option({.name = "--no-preempt",
                            .help = "No LSP gives way",
                            .take = [this](const std::string &) { preempts = false; }});
        declaration.choice("--protect", "SCHEME",
                           "Asks for backups, too: local, global, local-or-global or none "
                           "(default: as the plan has it for the level)",
                           wrapped(schemeNames()), protection);
        declareForms(declaration, form, "the LSPs that would give way, or the links in the way");
    }

    ExitStatus run() override
    {
        const Plan plan = readPlan(file);
        const planning::Question question = questionOn(plan);
        const Explanation answer = planning::explain(plan, question);
        Document document{"explanation", plan.network.unit, {factsOf(plan, question, answer)}};
        if (answer.lsp)
            addPath(document, plan, answer);
        if (answer.refusal)
            addRefusal(document, "refusal", "Why not", *answer.refusal);
        if (answer.unprotected)
            addRefusal(document, "unprotected", "Why it could not be protected",
                       *answer.unprotected);
        print(document, form);
        return answer.refusal || answer.unprotected ? ExitStatus::withFindings : ExitStatus::done;
    }

private:
    using OptionalScheme = std::optional<LevelScheme>;

    static std::vector<std::pair<std::string, OptionalScheme>>
    wrapped(const std::vector<std::pair<std::string, LevelScheme>> &names)
    {
        std::vector<std::pair<std::string, OptionalScheme>> all;
        all.reserve(names.size());
        for (const auto &[name, scheme] : names)
            all.emplace_back(name, OptionalScheme{std::in_place, scheme});
        return all;
    }

    static void declareOperand(Declaration &declaration, std::string name, std::string help,
                               std::string &target)
    {
        declaration.operand({.name = std::move(name),
                             .help = std::move(help),
                             .isRequired = true,
                             .take = [&target](const std::string &value) { target = value; }});
    }

    planning::Question questionOn(const Plan &plan) const
    {
        const Network &network = plan.network;
        planning::Question question;
        question.demand.ingress = nodeFrom(network, from);
        question.demand.egress = nodeFrom(network, to);
        question.demand.bandwidth = bandwidthFrom(bandwidth, network.unit, "BANDWIDTH");
        const std::size_t classType =
            className.empty() ? 0 : indexNamed(network.classes, className, "--class");
        const std::size_t levelIndex = level.empty() ? network.levels.size() - 1
                                                     : indexNamed(network.levels, level, "--level");
        question.demand.classType = static_cast<int>(classType);
        question.demand.level = static_cast<int>(levelIndex);
        question.mayPreempt = preempts.value_or(plan.options.preempts);
        if (protection)
            question.protection = *protection;
        else if (levelIndex < plan.options.protection.size())
            question.protection = plan.options.protection[levelIndex];
        return question;
    }

    static Facts factsOf(const Plan &plan, const planning::Question &question,
                         const Explanation &answer)
    {
        const Network &network = plan.network;
        const Demand &demand = question.demand;
        Facts facts{
            "answer",
            "",
            {{"from", "from", network.nameOf(demand.ingress)},
             {"to", "to", network.nameOf(demand.egress)},
             {"class", "class", network.classes[static_cast<std::size_t>(demand.classType)]},
             {"level", "level", network.levels[static_cast<std::size_t>(demand.level)]},
             {"bandwidth", "bandwidth", Bandwidth{demand.bandwidth}},
             {"isPlaced", "would be placed",
              Cell{truth(answer.lsp.has_value()), answer.lsp ? Tone::good : Tone::bad}}}};
        if (answer.lsp) {
            facts.facts.push_back({"path", "path", namesOf(network, answer.lsp->path)});
            if (answer.lsp->score)
                facts.facts.push_back({"score", "score", *answer.lsp->score});
            facts.facts.push_back({"victims", "LSPs giving way", number(answer.victims.size())});
        }
        return facts;
    }

    static void addPath(Document &document, const Plan &plan, const Explanation &answer)
    {
        Table victims{.key = "victims",
                      .title = "LSPs that would give way",
                      .columns = {{"id", ""},
                                  {"demand", "demand"},
                                  {"level", "level"},
                                  {"bandwidth", "bandwidth"},
                                  {"backups", "backups lost"}}};
        for (const planning::Victim &victim : answer.victims) {
            const Demand &demand = plan.demands[victim.demand.index()];
            victims.rows.push_back({number(victim.demand.index()), victim.name,
                                    plan.network.levels[static_cast<std::size_t>(demand.level)],
                                    Bandwidth{demand.bandwidth}, number(victim.nbBackups)});
        }
        document.sections.emplace_back(std::move(victims));
        Table backups = backupTable();
        addBackups(backups, plan.network, *answer.lsp, "");
        document.sections.emplace_back(std::move(backups));
    }

    static void addRefusal(Document &document, std::string key, std::string title,
                           const planning::NamedRefusal &refusal)
    {
        document.sections.emplace_back(refusalFacts(std::move(key), std::move(title), refusal));
        document.sections.emplace_back(linksInTheWay(refusal));
    }

    std::string file;
    std::string from;
    std::string to;
    std::string bandwidth;
    std::string className;
    std::string level;
    std::optional<bool> preempts;
    OptionalScheme protection;
    Form form = Form::text;
};

const Page &ExplainCommand::page() const
{
    static const std::string plan =
        "tarnex place abilene/abilene.network --demands abilene/abilene.demands --save plan.json";
    static const Page page{
        .name = "explain",
        .summary = "tells what would become of one more LSP on a plan, and why",
        .purpose =
            R"(Sets a plan up and asks for one more LSP, changing nothing: would it be placed, on which path, and which LSPs would give way to it? If not, why; what is the largest bandwidth that would be placed on the same terms; and which links are in the way? Those are the links from the nodes that can still be reached to those that cannot, each with the room left on it.

Nodes, classes and levels go by their names.)",
        .examples = {{"A plan to ask about:", plan},
                     {"Would it be placed?", "tarnex explain plan.json Seattle Atlanta 500"},
                     {"At whose cost, if it is important, and with backups?",
                      "tarnex explain plan.json Seattle Chicago 2G --class data --level gold "
                      "--protect local"},
                     {"What would fit, when it would not?",
                      "tarnex explain plan.json Seattle Chicago 90G"}},
        .findings = "done, and the answer is no: the LSP would be refused, or not protected"};
    return page;
}

} // namespace

std::unique_ptr<Command> makeExplain() { return std::make_unique<ExplainCommand>(); }

} // namespace tarnex::cli
