#include "cli/pages.h"

#include "cli/text.h"

#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

constexpr std::size_t widestText = 100;
constexpr std::size_t helpColumn = 26;

std::string heading(const std::string &title) { return '\n' + title + '\n'; }

/** A signature with its explanation, beside it if there is room. */
std::string entry(const std::string &signature, const std::string &help, std::size_t width)
{
    std::string text = wrapped(help, width, helpColumn);
    const std::size_t taken = 2 + columnsOf(signature);
    if (taken + 2 > helpColumn)
        return fmt::format("  {}\n{}", signature, text);
    text.replace(0, taken, "  " + signature);
    return text;
}

std::string entries(const std::vector<Parameter> &parameters, std::size_t width)
{
    std::string text;
    for (const Parameter &parameter : parameters)
        text += entry(signatureOf(parameter), parameter.help, width);
    return text;
}

std::string examplesOf(const Page &page, std::size_t width)
{
    if (page.examples.empty())
        return {};
    std::string text = heading("Examples, in the folder examples/");
    for (const Example &example : page.examples)
        text += wrapped(example.what, width, 2) + "    $ " + example.line + '\n';
    return text;
}

std::string exitStatusesOf(const Page *page, std::size_t width)
{
    std::string text = heading("Exit status");
    for (const auto &[status, meaning] : exitStatuses(page))
        text += entry(std::to_string(status), meaning, width);
    return text;
}

} // namespace

const Page &overview()
{
    static const Page page{
        .name = "tarnex",
        .summary = "places LSPs in MPLS networks with DiffServ classes, and protects them",
        .purpose =
            R"(tarnex takes a network with capacities and a list of demands, finds a path with enough room for every demand, lets less important LSPs give way where need be, and finds backups that share their bandwidth. The result is a plan: a file that the other commands explain, verify and compare, and that `tarnex place` goes on from.

Networks and demands are read in the formats that people have: SNDlib (native and XML), GraphML and GML as the Topology Zoo has them, Repetita, node-link JSON, DOT with a matrix of demands, and the two of tarnex, JSON and plain text. The format is found out from the content. What is odd in a file is reported on standard error, with what was done about it.)",
        .examples = {{"What is in a network:", "tarnex show abilene/abilene.network"},
                     {"Place demands, protect the important ones, keep the plan:",
                      "tarnex place abilene/abilene.network --demands abilene/abilene.demands "
                      "--protect gold=local --save plan.json"},
                     {"Would one more LSP find a path?",
                      "tarnex explain plan.json Seattle Atlanta 500"}},
        .findings = "done, but some demands were refused, or deviations or differences were found"};
    return page;
}

std::vector<std::pair<int, std::string>> exitStatuses(const Page *page)
{
    std::vector<std::pair<int, std::string>> all{{0, "all done"}};
    const std::string &findings = page != nullptr ? page->findings : overview().findings;
    if (!findings.empty())
        all.emplace_back(1, findings);
    all.emplace_back(2, "wrong use or wrong input, or a file that cannot be read or written; no "
                        "output file was touched");
    all.emplace_back(3, "a fault of the program");
    all.emplace_back(130, "stopped with Ctrl-C; no output file was touched");
    return all;
}

std::string spellingsOf(const Parameter &parameter)
{
    return parameter.letter.empty() ? parameter.name : parameter.letter + ", " + parameter.name;
}

std::string signatureOf(const Parameter &parameter)
{
    const std::string names = spellingsOf(parameter);
    return parameter.argument.empty() ? names : fmt::format("{} {}", names, parameter.argument);
}

std::string usageOf(const Page &page, const Declaration &declaration)
{
    std::string usage = "tarnex " + page.name;
    for (const Parameter &operand : declaration.operands()) {
        const std::string name = operand.name + (operand.repeats ? "..." : "");
        usage += operand.isRequired ? fmt::format(" {}", name) : fmt::format(" [{}]", name);
    }
    return declaration.groups().empty() ? usage : usage + " [OPTION...]";
}

std::string helpOf(Command &command, std::size_t width)
{
    width = std::min(width, widestText);
    const Page &page = command.page();
    Declaration declaration;
    command.declare(declaration);

    std::string text = fmt::format("tarnex {} - {}\n", page.name, page.summary);
    text += heading("Usage") + "  " + usageOf(page, declaration) + '\n';
    text += '\n' + wrapped(page.purpose, width, 0);
    if (!declaration.operands().empty())
        text += heading("Operands") + entries(declaration.operands(), width);
    for (const ParameterGroup &group : declaration.groups())
        text += heading(group.title) + entries(group.options, width);
    return text + examplesOf(page, width) + exitStatusesOf(&page, width);
}

std::string helpOfAll(std::size_t width)
{
    width = std::min(width, widestText);
    const Page &page = overview();
    std::string text = fmt::format("tarnex - {}\n", page.summary);
    text += heading("Usage") + "  tarnex COMMAND [ARGUMENT...]\n  tarnex --version\n";
    text += '\n' + wrapped(page.purpose, width, 0) + heading("Commands");
    for (const std::string &name : commandNames())
        text += entry(name, makeCommand(name)->page().summary, width);
    text += "\n`tarnex help COMMAND` explains a command, with examples.\n";
    return text + examplesOf(page, width) + exitStatusesOf(nullptr, width);
}

} // namespace tarnex::cli
