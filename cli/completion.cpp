#include "cli/errors.h"
#include "cli/pages.h"
#include "cli/terminal.h"
#include "cli/text.h"

#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

constexpr auto skeleton = R"(# Completion of tarnex for bash, made by `tarnex completion bash`.
_tarnex() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}} words= files=
    if [[ $word == = ]]; then
        word=
    elif [[ $before == = ]]; then
        before=${{COMP_WORDS[COMP_CWORD - 2]}}
    fi
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W '{} --help --version' -- "$word"))
        return
    fi
    case "${{COMP_WORDS[1]}} $before" in
{}    esac
    case ${{COMP_WORDS[1]}} in
{}    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$words" -- "$word"))
    elif [[ $files ]]; then
        COMPREPLY=($(compgen -f -- "$word"))
    fi
}}
complete -o filenames -F _tarnex tarnex
)";

/** What may follow an option. */
std::string valuesOf(const std::string &command, const Parameter &option)
{
    if (option.argument.empty())
        return {};
    std::string offer = ":";
    if (option.completes == Completes::files)
        offer = "COMPREPLY=($(compgen -f -- \"$word\"))";
    else if (option.completes == Completes::choices)
        offer =
            fmt::format("COMPREPLY=($(compgen -W '{}' -- \"$word\"))", joined(option.choices, " "));
    const std::string letter =
        option.letter.empty() ? "" : fmt::format("'{} {}' | ", command, option.letter);
    return fmt::format("    {}'{} {}') {}; return ;;\n", letter, command, option.name, offer);
}

/** What else a command takes: its options, and files or words. */
std::string operandsOf(const std::string &command, const Declaration &declaration)
{
    std::vector<std::string> words = declaration.optionNames();
    std::string also;
    for (const Parameter &operand : declaration.operands()) {
        if (operand.completes == Completes::files)
            also = " files=yes";
        if (operand.completes == Completes::choices)
            also = fmt::format("; [[ $word == -* ]] || COMPREPLY=($(compgen -W '{}' -- \"$word\"))",
                               joined(operand.choices, " "));
    }
    return fmt::format("    {}) words='{} --help'{} ;;\n", command, joined(words, " "), also);
}

class CompletionCommand : public Command
{
public:
    const Page &page() const override
    {
        static const Page page{
            .name = "completion",
            .summary = "prints what a shell needs to complete the command line",
            .purpose =
                R"(Prints a script for bash. An installed tarnex has it where bash looks for it; otherwise put into ~/.bashrc:

    source <(tarnex completion bash))",
            .examples = {{"The script:", "tarnex completion bash"}},
            .findings = {}};
        return page;
    }

    void declare(Declaration &declaration) override
    {
        declaration.operand({.name = "SHELL",
                             .help = "bash",
                             .isRequired = true,
                             .completes = Completes::choices,
                             .choices = {"bash"},
                             .take = [](const std::string &shell) {
                                 if (shell != "bash")
                                     refuseWord(shell, "SHELL", {"bash"});
                             }});
    }

    ExitStatus run() override
    {
        print(bashCompletion());
        return ExitStatus::done;
    }
};

} // namespace

std::string bashCompletion()
{
    std::string values;
    std::string operands;
    for (const std::string &name : commandNames()) {
        const std::unique_ptr<Command> command = makeCommand(name);
        Declaration declaration;
        command->declare(declaration);
        for (const ParameterGroup &group : declaration.groups())
            for (const Parameter &option : group.options)
                values += valuesOf(name, option);
        operands += operandsOf(name, declaration);
    }
    return fmt::format(skeleton, joined(commandNames(), " "), values, operands);
}

std::unique_ptr<Command> makeCompletion() { return std::make_unique<CompletionCommand>(); }

} // namespace tarnex::cli
