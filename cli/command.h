/** A command: what `tarnex NAME ...` does, and the page that explains it. */
#ifndef TARNEX_CLI_COMMAND_H
#define TARNEX_CLI_COMMAND_H

#include "cli/declaration.h"
#include "cli/exit_status.h"

#include <memory>
#include <string>
#include <vector>

namespace tarnex::cli
{

/** An example that runs as it stands in the folder `examples/`. */
struct Example {
    std::string what; ///< what it does, with a colon at the end
    std::string line; ///< for the shell
};

/** What the help says about a command beside its parameters. */
struct Page {
    std::string name;
    std::string summary; ///< one line
    std::string purpose; ///< paragraphs, as `wrapped` takes them
    std::vector<Example> examples;
    std::string findings; ///< when the exit status is 1; empty: never
};

/** One of the commands; made for one run. */
class Command
{
public:
    virtual ~Command() = default;
    virtual const Page &page() const = 0;
    /** Tells what the command takes; the values go into the command. */
    virtual void declare(Declaration &declaration) = 0;
    virtual ExitStatus run() = 0;
};

std::unique_ptr<Command> makeShow();
std::unique_ptr<Command> makePlace();
std::unique_ptr<Command> makeExplain();
std::unique_ptr<Command> makeVerify();
std::unique_ptr<Command> makeDiff();
std::unique_ptr<Command> makeFail();
std::unique_ptr<Command> makeMerge();
std::unique_ptr<Command> makeReport();
std::unique_ptr<Command> makeDraw();
std::unique_ptr<Command> makeBench();
std::unique_ptr<Command> makeConvert();
std::unique_ptr<Command> makeHelp();
std::unique_ptr<Command> makeCompletion();

/** The names of all commands, in the order of the help. */
const std::vector<std::string> &commandNames();
/** The command of a name; UsageError when there is none. */
std::unique_ptr<Command> makeCommand(const std::string &name);

} // namespace tarnex::cli

#endif
