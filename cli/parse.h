/** From the command line to the parameters of a command. */
#ifndef TARNEX_CLI_PARSE_H
#define TARNEX_CLI_PARSE_H

#include "cli/declaration.h"

#include <string>
#include <vector>

namespace tarnex::cli
{

/** Gives the arguments, without the command's name, to the parameters. False when help is asked for
 * instead, with `--help` or `-h`; UsageError when the arguments are not what was declared. */
bool parse(const Declaration &declaration, const std::vector<std::string> &arguments);

} // namespace tarnex::cli

#endif
