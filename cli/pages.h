/** The help pages, the man page and the completion, all made from the commands' own tables. */
#ifndef TARNEX_CLI_PAGES_H
#define TARNEX_CLI_PAGES_H

#include "cli/command.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tarnex::cli
{

/** What the command as a whole is for. */
const Page &overview();

/** Exit statuses and what they mean, of all commands or, with a page, of that one. */
std::vector<std::pair<int, std::string>> exitStatuses(const Page *page = nullptr);

/** "tarnex place FILE [OPTION...]". */
std::string usageOf(const Page &page, const Declaration &declaration);

/** "-o, --output". */
std::string spellingsOf(const Parameter &parameter);
/** "-o, --output FILE". */
std::string signatureOf(const Parameter &parameter);

/** The page of a command, for a terminal of some columns. */
std::string helpOf(Command &command, std::size_t width);
/** The page about all commands. */
std::string helpOfAll(std::size_t width);
/** The man page in roff. */
std::string manualPage();
/** Completion of commands, options, words and files for bash. */
std::string bashCompletion();

} // namespace tarnex::cli

#endif
