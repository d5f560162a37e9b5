#include "cli/command.h"
#include "cli/errors.h"
#include "cli/text.h"

#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using Maker = std::unique_ptr<Command> (*)();

const std::vector<std::pair<std::string, Maker>> &makers()
{
    static const std::vector<std::pair<std::string, Maker>> all{{"show", makeShow},
                                                                {"place", makePlace},
                                                                {"explain", makeExplain},
                                                                {"verify", makeVerify},
                                                                {"diff", makeDiff},
                                                                {"fail", makeFail},
                                                                {"merge", makeMerge},
                                                                {"report", makeReport},
                                                                {"draw", makeDraw},
                                                                {"bench", makeBench},
                                                                {"convert", makeConvert},
                                                                {"help", makeHelp},
                                                                {"completion", makeCompletion}};
    return all;
}

} // namespace

const std::vector<std::string> &commandNames()
{
    static const std::vector<std::string> names = wordsOf(makers());
    return names;
}

std::unique_ptr<Command> makeCommand(const std::string &name)
{
    for (const auto &[known, make] : makers())
        if (known == name)
            return make();
    const std::string meant = nearest(name, commandNames());
    throw UsageError(meant.empty()
                         ? fmt::format("no command {}: expected {}", name, oneOf(commandNames()))
                         : fmt::format("no command {}: did you mean {}?", name, meant));
}

} // namespace tarnex::cli
