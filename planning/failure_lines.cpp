#include "planning/failure_lines.h"

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <limits>

namespace tarnex::planning
{

namespace
{

using nlohmann::json;

constexpr int version = 1;
constexpr const char *schema = "tarnex-failures-part";

constexpr Amount BrokenLsps::*amounts[] = {
    &BrokenLsps::hit,  &BrokenLsps::local, &BrokenLsps::global,   &BrokenLsps::rerouted,
    &BrokenLsps::lost, &BrokenLsps::ended, &BrokenLsps::displaced};

/** JSON has no infinity, which links without capacity are full to. */
json finite(double value)
{
    return value <= std::numeric_limits<double>::max() ? json(value) : json(nullptr);
}

double number(const json &value)
{
    return value.is_null() ? std::numeric_limits<double>::infinity() : value.get<double>();
}

json figuresOf(const BrokenLsps &broken)
{
    json all = json::array();
    for (Amount BrokenLsps::*const amount : amounts) {
        all.push_back((broken.*amount).number);
        all.push_back((broken.*amount).bandwidth);
    }
    return all;
}

BrokenLsps figuresIn(const json &all)
{
    BrokenLsps broken;
    std::size_t at = 0;
    for (Amount BrokenLsps::*const amount : amounts) {
        (broken.*amount).number = all.at(at++).get<std::size_t>();
        (broken.*amount).bandwidth = all.at(at++).get<double>();
    }
    return broken;
}

/** An index below a size. */
int indexIn(const json &value, std::size_t size)
{
    const auto index = value.get<std::size_t>();
    if (index >= size)
        throw LineError("a number is larger than the plan allows");
    return static_cast<int>(index);
}

/** One of several things, by its name. */
template <class T>
T named(const json &name, std::initializer_list<T> all)
{
    const auto text = name.get<std::string>();
    for (const T one : all)
        if (nameOf(one) == text)
            return one;
    throw LineError("unknown word '" + text + "'");
}

/** The object in a line, read by `read`; whatever is wrong with it is a LineError. */
template <class Read>
auto objectIn(std::string_view line, Read read)
{
    try {
        return read(json::parse(line));
    } catch (const json::exception &) {
        throw LineError("no line that `tarnex fail --save` writes");
    }
}

FailureEffect effectOf(const json &object, const Plan &plan)
{
    const std::size_t nbLinks = plan.network.links.size();
    const std::size_t nbClasses = plan.network.classes.size();
    FailureEffect effect;
    effect.all = figuresIn(object.at("all"));
    for (const json &level : object.at("levels"))
        effect.levels.push_back(figuresIn(level));
    if (effect.levels.size() != plan.network.levels.size())
        throw LineError("the plan has another number of levels");
    for (const json &one : object.at("overloads"))
        effect.overloads.push_back({LinkId{indexIn(one.at(0), nbLinks)},
                                    indexIn(one.at(1), nbClasses), one.at(2).get<double>(),
                                    one.at(3).get<double>()});
    for (const json &one : object.at("peaks"))
        effect.peaks.push_back({LinkId{indexIn(one.at(0), nbLinks)}, indexIn(one.at(1), nbClasses),
                                number(one.at(2)), number(one.at(3))});
    for (const json &one : object.at("lost")) {
        FailedLsp &lsp = effect.lsps.emplace_back();
        lsp.id = DemandId{indexIn(one.at(0), plan.demands.size())};
        lsp.fate = one.at(1).get<bool>() ? Fate::displaced : Fate::lost;
        if (!one.at(2).is_null())
            lsp.reason = static_cast<Reason>(
                indexIn(one.at(2), static_cast<std::size_t>(Reason::noRoomForDisjointPath) + 1));
    }
    return effect;
}

} // namespace

std::string lineOf(const TriedFailure &tried)
{
    const FailureEffect &effect = tried.effect;
    json levels = json::array();
    for (const BrokenLsps &level : effect.levels)
        levels.push_back(figuresOf(level));
    json overloads = json::array();
    for (const Overload &one : effect.overloads)
        overloads.push_back({one.link.value, one.classType, one.use, one.capacity});
    json peaks = json::array();
    for (const LinkPeak &one : effect.peaks)
        peaks.push_back({one.link.value, one.classType, finite(one.share), finite(one.before)});
    json lost = json::array();
    for (const FailedLsp &one : effect.lsps)
        lost.push_back({one.id.value, one.fate == Fate::displaced,
                        one.reason ? json(static_cast<int>(*one.reason)) : json(nullptr)});
    return json{{"failure", tried.position},
                {"name", tried.name.name},
                {"kind", nameOf(tried.name.kind)},
                {"isSingle", tried.name.isSingle},
                {"all", figuresOf(effect.all)},
                {"levels", levels},
                {"overloads", overloads},
                {"peaks", peaks},
                {"lost", lost}}
        .dump();
}

TriedFailure triedIn(std::string_view line, const Plan &plan)
{
    return objectIn(line, [&](const json &object) {
        TriedFailure tried;
        tried.position = object.at("failure").get<std::size_t>();
        tried.name.name = object.at("name").get<std::string>();
        tried.name.kind =
            named(object.at("kind"), {FailureSet::links, FailureSet::duplex, FailureSet::nodes,
                                      FailureSet::pairs, FailureSet::named});
        tried.name.isSingle = object.at("isSingle").get<bool>();
        tried.effect = effectOf(object, plan);
        return tried;
    });
}

std::string lineOf(const PartHeader &header)
{
    return json{{"schema", schema},
                {"version", version},
                {"program", header.program},
                {"plan", header.plan},
                {"sets", header.sets},
                {"reroute", nameOf(header.reroute)},
                {"listsLost", header.listsLost},
                {"failures", header.nbFailures},
                {"part", header.shard.number + 1},
                {"parts", header.shard.of}}
        .dump();
}

PartHeader headerIn(std::string_view line)
{
    return objectIn(line, [](const json &object) {
        if (object.at("schema") != schema || object.at("version") != version)
            throw LineError("no part of a sweep, or one of another version");
        PartHeader header;
        header.program = object.at("program").get<std::string>();
        header.plan = object.at("plan").get<std::string>();
        header.sets = object.at("sets").get<std::string>();
        header.reroute =
            named(object.at("reroute"), {Reroute::no, Reroute::gently, Reroute::preempting});
        header.listsLost = object.at("listsLost").get<bool>();
        header.nbFailures = object.at("failures").get<std::size_t>();
        header.shard.of = object.at("parts").get<std::size_t>();
        header.shard.number = object.at("part").get<std::size_t>() - 1;
        if (header.shard.number >= header.shard.of)
            throw LineError("there are fewer parts");
        return header;
    });
}

} // namespace tarnex::planning
