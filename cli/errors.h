/** What ends a command early. */
#ifndef TARNEX_CLI_ERRORS_H
#define TARNEX_CLI_ERRORS_H

#include <stdexcept>
#include <string>

namespace tarnex::cli
{

/** The command line asks for something that the command does not have; the text says what was
 * expected. Exit status 2, with a pointer to the help page. */
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** The user pressed Ctrl-C; the text says what had been finished. */
class Interrupted : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace tarnex::cli

#endif
