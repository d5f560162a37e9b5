#include "cli/errors.h"
#include "cli/pages.h"
#include "cli/terminal.h"

namespace tarnex::cli
{

namespace
{

class HelpCommand : public Command
{
public:
    const Page &page() const override
    {
        static const Page page{
            .name = "help",
            .summary = "explains a command, or all of them in short",
            .purpose =
                R"(Prints what a command is for, its operands and options, examples and exit statuses; without a command, what there is. `man tarnex` has the same in one page.)",
            .examples = {{"All about placing:", "tarnex help place"}},
            .findings = {}};
        return page;
    }

    void declare(Declaration &declaration) override
    {
        declaration.operand({.name = "COMMAND",
                             .help = "The command to explain",
                             .completes = Completes::choices,
                             .choices = commandNames(),
                             .take = [this](const std::string &name) { command = name; }});
        declaration.flag("--man", "Prints the man page of all commands, in roff", isManual);
    }

    ExitStatus run() override
    {
        const std::size_t width = Terminal::output().width();
        if (isManual)
            print(manualPage());
        else
            print(command.empty() ? helpOfAll(width) : helpOf(*makeCommand(command), width));
        return ExitStatus::done;
    }

private:
    std::string command;
    bool isManual = false;
};

} // namespace

std::unique_ptr<Command> makeHelp() { return std::make_unique<HelpCommand>(); }

} // namespace tarnex::cli
