#include "formats/json/json.h"

#include "formats/json/schemas.h"
#include "formats/json/shapes.h"
#include "formats/number.h"
#include "formats/oddities.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace tarnex::formats
{

namespace json
{

namespace
{

// --- the document as a whole ---

constexpr Shape<Draft> schema{.what = "the name of a schema",
                              .text = [](Draft &draft, std::string &name) { draft.setKind(name); }};

constexpr Shape<Draft> version{
    .what = "the version of the schema", .integer = [](Draft & /*draft*/, std::int64_t number) {
        if (number != schemaVersion)
            throw Problem("expected version " + std::to_string(schemaVersion) +
                          " of the schema, not " + std::to_string(number));
    }};

constexpr Member<Draft> networkMembers[] = {
    {"schema", &schema},        {"version", &version},    {"name", &networkName, false},
    {"unit", &unitName, false}, {"classes", &classNames}, {"levels", &levelNames},
    {"nodes", &nodeList},       {"links", &linkList},     {"demands", &networkDemands, false},
};

constexpr Member<Draft> demandsMembers[] = {
    {"schema", &schema},
    {"version", &version},
    {"unit", &unitName, false},
    {"classes", &classNames, false},
    {"levels", &levelNames, false},
    {"demands", &namedDemands},
};

constexpr Member<Draft> planMembers[] = {
    {"schema", &schema},       {"version", &version},        {"network", &networkObject},
    {"options", &planOptions}, {"demands", &plannedDemands}, {"use", &useList},
    {"setUp", &setUpList},
};

constexpr Shape<Draft> networkDocument{.what = "a network", .members = networkMembers};
constexpr Shape<Draft> demandsDocument{.what = "a file of demands", .members = demandsMembers};
constexpr Shape<Draft> planDocument{
    .what = "a plan", .members = planMembers, .end = [](Draft &draft) { draft.finish(); }};

/** Until the schema is known; it comes first. */
constexpr Shape<Draft> anyDocument{.what = "a document",
                                   .members = std::span(planMembers).first(1),
                                   .rest = [](const Draft &draft) -> const Shape<Draft> * {
                                       switch (draft.kind) {
                                       case Kind::network:
                                           return &networkDocument;
                                       case Kind::demands:
                                           return &demandsDocument;
                                       case Kind::plan:
                                           return &planDocument;
                                       case Kind::unknown:
                                           break;
                                       }
                                       return nullptr;
                                   },
                                   .skipsOthers = false};

void readInto(Draft &draft, TextStream &text, const std::string &file)
{
    ShapeReader<Draft> reader(anyDocument, draft);
    parse(text, file, reader);
    draft.digest = text.digest();
}

/** Options that decide nothing in a document which leaves nothing open. */
void remarkIgnored(const ReadOptions &options, Remarks &remarks)
{
    const std::pair<const char *, bool> given[]{
        {"--classes", !options.classes.empty()},
        {"--capacity", !options.capacity.empty()},
        {"--parallel", options.parallel != ParallelLinks::sum},
        {"--class", !options.className.empty()},
        {"--level", !options.level.empty()},
        {"--mix", !options.mix.empty()},
    };
    for (const auto &[name, isGiven] : given)
        if (isGiven)
            remarks.choose(name, "ignored: tarnex JSON says it itself");
}

/** Scales demands and leaves out those that ask for nothing, as in the other formats. */
void settleDemandsOf(Input &input, const std::string &file, const ReadOptions &options)
{
    Oddities oddities(file, options.isStrict, input.remarks);
    const auto isLeftOut = [&](Demand &demand) {
        demand.bandwidth *= options.scale;
        if (!(demand.bandwidth <= largestBandwidth))
            oddities.fail(0, "a demand is too large to be scaled");
        if (!isVoid(demand))
            return false;
        const Network &network = input.network;
        noteVoid(oddities, demand,
                 demand.name.empty()
                     ? network.nameOf(demand.ingress) + " > " + network.nameOf(demand.egress)
                     : demand.name,
                 0);
        return true;
    };
    std::erase_if(input.demands, isLeftOut);
}

Input inputOf(Draft &&draft, const std::string &file, const ReadOptions &options)
{
    Input input;
    input.format = Format::json;
    remarkIgnored(options, input.remarks);
    input.digest = std::move(draft.digest);
    if (draft.kind == Kind::plan) {
        input.plan = std::move(draft.plan);
        if (options.scale != 1.0)
            input.remarks.choose("demands of a plan", "not scaled");
        return input;
    }
    input.network = std::move(draft.plan.network);
    input.demands = std::move(draft.plan.demands);
    settleDemandsOf(input, file, options);
    return input;
}

SourceDemand sourceOf(const Demand &demand, const Network &network)
{
    SourceDemand source;
    source.name = demand.name;
    source.from = network.nameOf(demand.ingress);
    source.to = network.nameOf(demand.egress);
    if (!network.classes.empty())
        source.className = network.classes[static_cast<std::size_t>(demand.classType)];
    if (!network.levels.empty())
        source.level = network.levels[static_cast<std::size_t>(demand.level)];
    source.bandwidth = demand.bandwidth;
    return source;
}

Source sourceOf(const Draft &draft, const std::string &file)
{
    const Network &network = draft.plan.network;
    Source source;
    source.file = file;
    source.unit = network.unit;
    source.classes = network.classes;
    source.levels = network.levels;
    source.demands.reserve(draft.plan.demands.size());
    for (const Demand &demand : draft.plan.demands)
        source.demands.push_back(sourceOf(demand, network));
    return source;
}

Draft readFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw InputError(file.string(), 0, 0, std::generic_category().message(errno));
    std::error_code unknown;
    const auto size = std::filesystem::file_size(file, unknown);
    TextStream text(stream, unknown ? 0 : static_cast<std::size_t>(size));
    Draft draft(text);
    readInto(draft, text, file.string());
    return draft;
}

Draft readText(std::string_view text, const std::string &file)
{
    TextStream stream(text);
    Draft draft(stream);
    readInto(draft, stream, file);
    return draft;
}

} // namespace

} // namespace json

Input readJson(const std::filesystem::path &file, const ReadOptions &options)
{
    return json::inputOf(json::readFile(file), file.string(), options);
}

Input readJson(std::string_view text, const std::string &file, const ReadOptions &options)
{
    return json::inputOf(json::readText(text, file), file, options);
}

Source readJsonDemands(const std::filesystem::path &file)
{
    return json::sourceOf(json::readFile(file), file.string());
}

Source readJsonDemands(std::string_view text, const std::string &file)
{
    return json::sourceOf(json::readText(text, file), file);
}

} // namespace tarnex::formats
