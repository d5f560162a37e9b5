#include "cli/place_options.h"

#include "cli/errors.h"
#include "cli/input.h"
#include "cli/text.h"

#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

const std::vector<std::pair<std::string, std::optional<Order>>> &orderNames()
{
    static const std::vector<std::pair<std::string, std::optional<Order>>> all{
        {"given", Order::given},
        {"level", Order::level},
        {"largest", Order::largest},
        {"smallest", Order::smallest}};
    return all;
}

const std::vector<std::pair<std::string, std::optional<Objective>>> &objectiveNames()
{
    static const std::vector<std::pair<std::string, std::optional<Objective>>> all{
        {"hops", Objective::hops},
        {"load", Objective::load},
        {"balance", Objective::balance},
        {"delay", Objective::delay},
        {"fortz", Objective::fortz}};
    return all;
}

const std::vector<std::pair<std::string, double Weights::*>> &weightNames()
{
    static const std::vector<std::pair<std::string, double Weights::*>> all{
        {"fortz", &Weights::fortz},
        {"load-balance", &Weights::loadBalance},
        {"load", &Weights::load},
        {"squared-load", &Weights::squaredLoad},
        {"utilization", &Weights::utilization},
        {"squared-utilization", &Weights::squaredUtilization},
        {"delay", &Weights::delay}};
    return all;
}

/** "NAME=NUMBER". */
std::pair<std::string, double> settingFrom(const std::string &text, const std::string &option)
{
    const std::size_t equals = text.find('=');
    if (equals == 0 || equals == std::string::npos)
        throw UsageError(fmt::format("{} {}: expected NAME=NUMBER", option, text));
    return {text.substr(0, equals), numberFrom(text.substr(equals + 1), option)};
}

} // namespace

const std::vector<std::pair<std::string, LevelScheme>> &schemeNames()
{
    static const std::vector<std::pair<std::string, LevelScheme>> names{
        {"local", Scheme::local},
        {"global", Scheme::global},
        {"local-or-global", Scheme::localOrGlobal},
        {"none", std::nullopt}};
    return names;
}

void PlaceOptions::declare(Declaration &declaration)
{
    declaration.group("Placing");
    declaration.choice("--order", "WHICH",
                       "Which demands come first: level (default; the most important level first, "
                       "then as given), given, largest or smallest",
                       orderNames(), order);
    declaration.option({.name = "--preempt",
                        .help = "Less important LSPs give way where there is no room (default)",
                        .take = [this](const std::string &) { preempts = true; }});
    declaration.option({.name = "--no-preempt",
                        .help = "No LSP gives way",
                        .take = [this](const std::string &) { preempts = false; }});
    declaration.option({.name = "--retry",
                        .argument = "N",
                        .help = "Places LSPs that had to give way again, in at most N rounds "
                                "(default: 0)",
                        .take = [this](const std::string &text) {
                            retryRounds = wholeNumberFrom(text, "--retry");
                        }});
    declaration.option(
        {.name = "--protect",
         .argument = "[LEVEL=]SCHEME",
         .help = "Backups for the LSPs of a level, or of all: local (around each link and the "
                 "node behind it), global (one from end to end), local-or-global (global where "
                 "local finds none) or none (default). May be given for several levels",
         .repeats = true,
         .completes = Completes::choices,
         .choices = wordsOf(schemeNames()),
         .take = [this](const std::string &text) {
             const std::size_t equals = text.rfind('=');
             const bool isForAll = equals == std::string::npos;
             const std::string scheme = isForAll ? text : text.substr(equals + 1);
             protection.emplace_back(isForAll ? "" : text.substr(0, equals),
                                     chosen(schemeNames(), scheme, "--protect"));
         }});
    declareScore(declaration);
}

void PlaceOptions::declareScore(Declaration &declaration)
{
    declaration.choice("--objective", "WHAT",
                       "What paths are to be good for: fortz (default; the link cost of Fortz and "
                       "Thorup), hops (few links), load (little load on links that are full), "
                       "balance (links equally full) or delay (little queueing)",
                       objectiveNames(), objective);
    declaration.option(
        {.name = "--weight",
         .argument = "NAME=NUMBER",
         .help = "A single weight of the score, beside those of --objective if that is given and "
                 "alone if not: " +
                 joined(wordsOf(weightNames()), ", "),
         .repeats = true,
         .take = [this](const std::string &text) {
             weights.push_back(settingFrom(text, "--weight"));
             chosen(weightNames(), weights.back().first, "--weight");
         }});
    declaration.option(
        {.name = "--preemption-price",
         .argument = "LEVEL=NUMBER",
         .help = "Price of taking a unit of bandwidth from LSPs of a level: a link where they "
                 "have to give way costs so many times more (default: 0)",
         .repeats = true,
         .take = [this](const std::string &text) {
             prices.push_back(settingFrom(text, "--preemption-price"));
         }});
    declaration.flag("--no-capacity-test", "Links have room for everything", testsCapacity, false);
}

void PlaceOptions::applyWeights(Weights &target) const
{
    if (objective)
        target = Weights::of(*objective);
    else if (!weights.empty())
        target = {};
    for (const auto &[name, value] : weights)
        target.*chosen(weightNames(), name, "--weight") = value;
}

void PlaceOptions::applyTo(PlanOptions &options, const Network &network) const
{
    options.order = order.value_or(options.order);
    options.preempts = preempts.value_or(options.preempts);
    options.retryRounds =
        static_cast<int>(retryRounds.value_or(static_cast<std::size_t>(options.retryRounds)));
    options.engine.testsCapacity = options.engine.testsCapacity && testsCapacity;
    applyWeights(options.engine.weights);

    options.protection.resize(network.levels.size());
    for (const auto &[level, scheme] : protection) {
        if (level.empty())
            std::fill(options.protection.begin(), options.protection.end(), scheme);
        else
            options.protection[indexNamed(network.levels, level, "--protect")] = scheme;
    }
    for (const auto &[level, price] : prices) {
        const std::size_t index = indexNamed(network.levels, level, "--preemption-price");
        for (auto &ofClass : options.engine.preemptionPrices)
            ofClass.at(index) = price;
    }
}

} // namespace tarnex::cli
