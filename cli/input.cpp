#include "cli/input.h"

#include "cli/errors.h"
#include "cli/interrupt.h"
#include "cli/terminal.h"
#include "cli/text.h"
#include "formats/bandwidth.h"

#include <algorithm>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using formats::Format;

constexpr Format allFormats[] = {
    Format::sndlibNative, Format::sndlibXml, Format::graphml, Format::gml,  Format::repetita,
    Format::nodeLink,     Format::dot,       Format::matrix,  Format::json, Format::text};

/** "gold=10%,silver=90%". */
std::vector<formats::Share> sharesFrom(const std::string &text, const std::string &what)
{
    std::vector<formats::Share> shares;
    for (const std::string &piece : split(text, ',')) {
        const std::size_t equals = piece.find('=');
        if (equals == 0 || equals == std::string::npos)
            throw UsageError(
                fmt::format("{} {}: expected NAME=SHARE,..., as gold=10%,bronze=90%", what, text));
        shares.push_back({piece.substr(0, equals), shareFrom(piece.substr(equals + 1), what)});
    }
    return shares;
}

Parameter shares(std::string name, std::string argument, std::string help,
                 std::vector<formats::Share> &target)
{
    return {.name = name,
            .argument = std::move(argument),
            .help = std::move(help),
            .take = [what = std::move(name), &target](const std::string &text) {
                target = sharesFrom(text, what);
            }};
}

/** The options for the network: those about demands are for the file of demands, if there is one.
 */
formats::ReadOptions forNetwork(const InputOptions &options)
{
    formats::ReadOptions reading = options.reading;
    if (options.demands.empty())
        return reading;
    reading.scale = 1.0;
    reading.className.clear();
    reading.level.clear();
    reading.mix.clear();
    return reading;
}

} // namespace

void InputOptions::declareDemands(Declaration &declaration)
{
    declaration.text("--demands", "FILE",
                     "The demands, in a file of their own; they take the place of those in the "
                     "network's file",
                     demands, Completes::files);
}

void InputOptions::declareReading(Declaration &declaration)
{
    std::vector<std::pair<std::string, std::optional<Format>>> formatNames;
    for (const Format format : allFormats)
        formatNames.emplace_back(formats::nameOf(format), format);

    declaration.group("Reading");
    declaration.choice("--format", "NAME",
                       "The format of the network's file, if its content and suffix do not tell: " +
                           oneOf(wordsOf(formatNames)),
                       formatNames, reading.format);
    declaration.choice("--parallel", "HOW",
                       "What becomes of several links from one node to another: sum (default), "
                       "first or error",
                       {{"sum", formats::ParallelLinks::sum},
                        {"first", formats::ParallelLinks::first},
                        {"error", formats::ParallelLinks::error}},
                       reading.parallel);
    declaration.option({.name = "--capacity",
                        .argument = "BANDWIDTH",
                        .help = "Capacity of links that have none in the file (default: 1)",
                        .take = [this](const std::string &text) {
                            bandwidthFrom(text, {}, "--capacity");
                            reading.capacity = text;
                        }});
    declaration.option(
        {.name = "--scale",
         .argument = "FACTOR",
         .help = "Takes every demand so many times (default: 1)",
         .take = [this](const std::string &text) { reading.scale = numberFrom(text, "--scale"); }});
    declaration.option(shares("--classes", "NAME=SHARE,...",
                              "Divides capacities among classes, as interactive=30%,data=70%",
                              reading.classes));
    declaration.text("--class", "NAME", "Class of demands that have none in the file",
                     reading.className);
    declaration.text("--level", "NAME", "Level of demands that have none in the file",
                     reading.level);
    declaration.option(shares("--mix", "NAME=SHARE,...",
                              "Gives such demands levels in turn, as "
                              "gold=10%,silver=30%,bronze=60%, so that each gets its share",
                              reading.mix));
    declaration.option({.name = "--hosts",
                        .argument = "FILE",
                        .help = "Names of the rows and columns of a matrix of demands",
                        .completes = Completes::files,
                        .take = [this](const std::string &file) { reading.hosts = file; }});
    declaration.count("--matrix-line", "N", "Which matrix of a file with several (default: 1)",
                      reading.matrixLine, 1);
    declaration.flag("--strict", "Takes oddities of the input, else reported, as errors",
                     reading.isStrict);
}

void tell(const Remarks &remarks)
{
    for (const Remark &found : remarks.all())
        remark("note: " + textOf(found));
}

NetworkInput readInput(const std::string &file, const InputOptions &options)
{
    nowDoing("reading");
    formats::Input read = formats::read(file, forNetwork(options));
    tell(read.remarks);
    NetworkInput input{read.format, std::move(read.network), std::move(read.demands),
                       std::move(read.plan)};
    if (options.demands.empty())
        return input;
    formats::ReadOptions forDemands = options.reading;
    forDemands.format.reset();
    Network &network = input.plan ? input.plan->network : input.network;
    formats::Input more = formats::readDemands(options.demands, network, forDemands);
    tell(more.remarks);
    input.demands = std::move(more.demands);
    return input;
}

Plan readPlan(const std::string &file) { return readDigestedPlan(file).plan; }

DigestedPlan readDigestedPlan(const std::string &file)
{
    nowDoing("reading");
    formats::Input input = formats::read(file, {});
    if (!input.plan)
        throw InputError(
            file, 0, 0,
            fmt::format("expected a plan, which `tarnex place {} --save PLAN` makes", file));
    tell(input.remarks);
    return {std::move(*input.plan), std::move(input.digest)};
}

std::pair<Plan, Plan> readPlans(const std::string &before, const std::string &after)
{
    std::pair<Plan, Plan> plans{readPlan(before), readPlan(after)};
    const std::string &unit = plans.first.network.unit;
    const std::string &other = plans.second.network.unit;
    if (unit != other)
        throw UsageError(fmt::format("{} counts in {}, {} in {}: expected plans with the same unit",
                                     before, unit, after, other));
    return plans;
}

double shareFrom(const std::string &text, const std::string &what)
{
    const bool isPercent = text.ends_with('%');
    const double number = numberFrom(isPercent ? text.substr(0, text.size() - 1) : text, what);
    const double share = isPercent ? number / 100.0 : number;
    if (share > 1.0)
        throw UsageError(fmt::format("{} {}: expected at most 100%", what, text));
    return share;
}

double bandwidthFrom(const std::string &text, const std::string &unit, const std::string &what)
{
    try {
        return formats::parseBandwidth(text, unit);
    } catch (const formats::BandwidthError &error) {
        throw UsageError(fmt::format("{} {}: {}", what, text, error.what()));
    }
}

std::size_t indexNamed(const std::vector<std::string> &names, const std::string &name,
                       const char *what)
{
    const auto found = std::ranges::find(names, name);
    if (found == names.end())
        refuseWord(name, what, names);
    return static_cast<std::size_t>(found - names.begin());
}

} // namespace tarnex::cli
