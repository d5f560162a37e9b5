#include "cli/declaration.h"

#include "cli/errors.h"
#include "cli/text.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>

namespace tarnex::cli
{

void Declaration::group(std::string title) { theGroups.push_back({std::move(title), {}}); }

void Declaration::file(std::string name, std::string help, std::string &target, bool isRequired)
{
    operand({.name = std::move(name),
             .help = std::move(help),
             .isRequired = isRequired,
             .completes = Completes::files,
             .take = [&target](const std::string &value) { target = value; }});
}

void Declaration::operand(Parameter parameter) { theOperands.push_back(std::move(parameter)); }

void Declaration::option(Parameter parameter)
{
    if (theGroups.empty())
        group("Options");
    theGroups.back().options.push_back(std::move(parameter));
}

void Declaration::flag(std::string name, std::string help, bool &target, bool value)
{
    option({.name = std::move(name),
            .help = std::move(help),
            .take = [&target, value](const std::string &) { target = value; }});
}

void Declaration::text(std::string name, std::string argument, std::string help,
                       std::string &target, Completes completes)
{
    option({.name = name,
            .argument = argument,
            .help = std::move(help),
            .completes = completes,
            .take = [what = std::move(name), kind = std::move(argument),
                     &target](const std::string &value) {
                if (value.empty())
                    throw UsageError(fmt::format("{} is empty: expected {}", what, kind));
                target = value;
            }});
}

void Declaration::output(std::string help, std::string &target)
{
    text("--output", "FILE", std::move(help), target, Completes::files);
    theGroups.back().options.back().letter = "-o";
}

void Declaration::count(std::string name, std::string argument, std::string help,
                        std::size_t &target, std::size_t least)
{
    option({.name = name,
            .argument = std::move(argument),
            .help = std::move(help),
            .take = [what = std::move(name), least, &target](const std::string &value) {
                target = wholeNumberFrom(value, what, least);
            }});
}

std::vector<std::string> Declaration::optionNames() const
{
    std::vector<std::string> names;
    for (const ParameterGroup &group : theGroups)
        for (const Parameter &option : group.options)
            names.push_back(option.name);
    return names;
}

std::size_t wholeNumberFrom(const std::string &text, const std::string &what, std::size_t least)
{
    constexpr std::size_t most = 1'000'000'000;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < least || number > most)
        throw UsageError(
            fmt::format("{} {}: expected a whole number of {} or more", what, text, least));
    return number;
}

double numberFrom(const std::string &text, const std::string &what)
{
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(number) ||
        number < 0.0)
        throw UsageError(fmt::format("{} {}: expected a number of 0 or more", what, text));
    return number;
}

void refuseWord(const std::string &word, const std::string &what,
                const std::vector<std::string> &words)
{
    throw UsageError(fmt::format("{} {}: expected {}", what, word, oneOf(words)));
}

} // namespace tarnex::cli
