#include "cli/parse.h"

#include "cli/errors.h"
#include "cli/text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

/** A parameter, and what CLI11 keeps of it. */
struct Bound {
    const Parameter &parameter;
    CLI::Option *option;
};

std::vector<Bound> bind(CLI::App &app, const Declaration &declaration)
{
    std::vector<Bound> all;
    for (const Parameter &operand : declaration.operands()) {
        CLI::Option *const option = app.add_option(operand.name);
        all.push_back(
            {operand, operand.repeats ? option->expected(-1)->take_all() : option->expected(1)});
    }
    for (const ParameterGroup &group : declaration.groups())
        for (const Parameter &option : group.options) {
            const std::string names =
                option.letter.empty() ? option.name : option.letter + ',' + option.name;
            all.push_back({option, option.argument.empty()
                                       ? app.add_flag(names)
                                       : app.add_option(names)->expected(1)->take_all()});
        }
    return all;
}

void refuseExtras(const std::vector<std::string> &extras, const Declaration &declaration)
{
    if (extras.empty())
        return;
    const std::string &first = extras.front();
    if (!first.starts_with('-'))
        throw UsageError(fmt::format("unexpected argument {}", first));
    const std::string name = first.substr(0, first.find('='));
    const std::string meant = nearest(name, declaration.optionNames());
    throw UsageError(fmt::format("unknown option {}{}", name,
                                 meant.empty() ? "" : fmt::format(": did you mean {}?", meant)));
}

void give(const Bound &bound)
{
    const auto &[parameter, option] = bound;
    const std::vector<std::string> values = option->results();
    if (values.empty()) {
        if (parameter.isRequired)
            throw UsageError(fmt::format("{} is missing: {}", parameter.name, parameter.help));
        return;
    }
    if (values.size() > 1 && !parameter.repeats)
        throw UsageError(fmt::format("{} is given {} times", parameter.name, values.size()));
    for (const std::string &value : values)
        parameter.take(value);
}

/** The option at the end of the line that was left without its value. */
std::string needyOption(const Declaration &declaration, const std::string &problem)
{
    for (const ParameterGroup &group : declaration.groups())
        for (const Parameter &option : group.options)
            if (problem.starts_with(option.name + ':'))
                return fmt::format("{} needs a value: {} {}", option.name, option.name,
                                   option.argument);
    return problem;
}

} // namespace

bool parse(const Declaration &declaration, const std::vector<std::string> &arguments)
{
    CLI::App app;
    app.allow_extras();
    const std::vector<Bound> bound = bind(app, declaration);
    try {
        app.parse(std::vector<std::string>{arguments.rbegin(), arguments.rend()});
    } catch (const CLI::CallForHelp &) {
        return false;
    } catch (const CLI::ParseError &error) {
        throw UsageError(needyOption(declaration, error.what()));
    }
    refuseExtras(app.remaining(), declaration);
    std::ranges::for_each(bound, give);
    return true;
}

} // namespace tarnex::cli
