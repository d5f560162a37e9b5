/** The command `tarnex`: finds the command that is asked for, runs it, and says how it ended. */
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/interrupt.h"
#include "cli/parse.h"
#include "cli/terminal.h"
#include "formats/remarks.h"
#include "planning/setup.h"

#include <exception>
#include <fmt/format.h>
#include <new>
#include <system_error>

namespace
{

using namespace tarnex::cli;

ExitStatus helpFor(const std::vector<std::string> &commands)
{
    const std::unique_ptr<Command> help = makeHelp();
    Declaration declaration;
    help->declare(declaration);
    parse(declaration, commands);
    return help->run();
}

ExitStatus run(const std::string &name, const std::vector<std::string> &arguments)
{
    const std::unique_ptr<Command> command = makeCommand(name);
    Declaration declaration;
    command->declare(declaration);
    return parse(declaration, arguments) ? command->run() : helpFor({name});
}

ExitStatus run(const std::vector<std::string> &words)
{
    const std::string first = words.empty() ? "" : words.front();
    if (first == "--version") {
        print("tarnex " TARNEX_VERSION "\n");
        return ExitStatus::done;
    }
    if (first == "--help" || first == "-h")
        return helpFor({});
    if (first.empty())
        throw UsageError("no command: expected one, as in `tarnex show FILE`");
    if (first.starts_with('-'))
        throw UsageError(
            fmt::format("unknown option {}: expected a command, --help or --version", first));
    return run(first, {words.begin() + 1, words.end()});
}

ExitStatus fail(ExitStatus status, const std::string &sentence)
{
    remark(sentence);
    return status;
}

/** Runs the command; every way out is an exit status, with a sentence on standard error. */
ExitStatus guarded(const std::vector<std::string> &words)
{
    std::string about; // the command, for the pointer to its help page
    for (const std::string &name : commandNames())
        if (!words.empty() && words.front() == name)
            about = " " + name;
    try {
        return run(words);
    } catch (const UsageError &error) {
        return fail(ExitStatus::wrongUse,
                    fmt::format("tarnex{}: {}\nTry: tarnex help{}", about, error.what(), about));
    } catch (const Interrupted &error) {
        return fail(ExitStatus::interrupted, fmt::format("tarnex{}: {}", about, error.what()));
    } catch (const tarnex::InputError &error) {
        return fail(ExitStatus::wrongUse, error.what());
    } catch (const tarnex::planning::SetUpError &error) {
        return fail(ExitStatus::wrongUse,
                    fmt::format("tarnex{}: the plan cannot be set up: {}\n"
                                "Try: tarnex verify PLAN, which names what is wrong with it",
                                about, error.what()));
    } catch (const tarnex::WrongUse &error) {
        return fail(ExitStatus::wrongUse, fmt::format("tarnex{}: {}", about, error.what()));
    } catch (const std::system_error &error) {
        return fail(ExitStatus::wrongUse, fmt::format("tarnex{}: {}", about, error.what()));
    } catch (const std::bad_alloc &) {
        return fail(ExitStatus::fault, fmt::format("tarnex{}: not enough memory", about));
    } catch (const std::exception &error) {
        return fail(ExitStatus::fault,
                    fmt::format("tarnex{}: a fault of the program, not of its input: {}", about,
                                error.what()));
    }
}

} // namespace

int main(int count, char **words)
{
    handleInterrupts();
    return static_cast<int>(guarded({words + (count > 0 ? 1 : 0), words + count}));
}
