#include "formats/json/schemas.h"
#include "formats/json/shapes.h"

#include <utility>

namespace tarnex::formats::json
{

namespace
{

// --- lists of ids ---

constexpr Shape<Draft> oneNode{
    .what = "the id of a node",
    .integer = [](Draft &draft, std::int64_t id) { draft.nodeIds.push_back(draft.nodeId(id)); }};

constexpr Shape<Draft> oneLink{
    .what = "the id of a link",
    .integer = [](Draft &draft, std::int64_t id) { draft.linkIds.push_back(draft.linkId(id)); }};

constexpr Shape<Draft> nodesTo(void (*take)(Draft &))
{
    return {.what = "a list of node ids",
            .element = &oneNode,
            .begin = [](Draft &draft) { draft.nodeIds.clear(); },
            .end = take};
}

constexpr Shape<Draft> linksTo(void (*take)(Draft &))
{
    return {.what = "a list of link ids",
            .element = &oneLink,
            .begin = [](Draft &draft) { draft.linkIds.clear(); },
            .end = take};
}

// --- refusals ---

constexpr Shape<Draft> reason{.what = "a reason", .text = [](Draft &draft, std::string &text) {
                                  draft.refusal.reason = reasonFor(text);
                              }};

constexpr Shape<Draft> sentence{.what = "a text", .text = [](Draft &draft, std::string &text) {
                                    draft.refusal.sentence = std::move(text);
                                }};

constexpr Shape<Draft> largestBandwidth{.what = "a number of 0 or more",
                                        .number = [](Draft &draft, double bandwidth) {
                                            draft.refusal.largestBandwidth = amount(bandwidth);
                                        }};

constexpr Shape<Draft> linkInTheWay{
    .what = "the id of a link",
    .integer = [](Draft &draft, std::int64_t id) { draft.inTheWay.link = draft.linkId(id); }};

constexpr Shape<Draft> roomOnLink{
    .what = "a number", .number = [](Draft &draft, double room) { draft.inTheWay.room = room; }};

constexpr Member<Draft> inTheWayMembers[] = {{"link", &linkInTheWay}, {"room", &roomOnLink}};

constexpr Shape<Draft> oneInTheWay{
    .what = "a link in the way", .members = inTheWayMembers, .end = [](Draft &draft) {
        draft.refusal.inTheWay.push_back(draft.inTheWay);
    }};

constexpr Shape<Draft> inTheWay{.what = "a list of links in the way", .element = &oneInTheWay};

constexpr Member<Draft> refusalMembers[] = {
    {"reason", &reason},
    {"sentence", &sentence},
    {"largestBandwidth", &largestBandwidth},
    {"inTheWay", &inTheWay, false},
};

constexpr Shape<Draft> refusalTo(void (*take)(Draft &))
{
    return {.what = "a refusal",
            .members = refusalMembers,
            .begin = [](Draft &draft) { draft.refusal = {}; },
            .end = take};
}

// --- LSPs ---

constexpr Shape<Draft> backupKind{
    .what = R"("local" or "global")",
    .text = [](Draft &draft, std::string &word) { draft.backup.kind = backupKindFor(word); }};

constexpr Shape<Draft> backupPath =
    nodesTo([](Draft &draft) { draft.backup.path = draft.nodeIds; });
constexpr Shape<Draft> protectedLinks =
    linksTo([](Draft &draft) { draft.backup.protectedLinks = draft.linkIds; });
constexpr Shape<Draft> protectedNodes =
    nodesTo([](Draft &draft) { draft.backup.protectedNodes = draft.nodeIds; });

constexpr Member<Draft> backupMembers[] = {
    {"kind", &backupKind},
    {"path", &backupPath},
    {"links", &protectedLinks},
    {"nodes", &protectedNodes},
};

constexpr Shape<Draft> backup{
    .what = "a backup", .members = backupMembers, .end = [](Draft &draft) { draft.addBackup(); }};

constexpr Shape<Draft> lspPath = nodesTo([](Draft &draft) { draft.lsp.path = draft.nodeIds; });
constexpr Shape<Draft> score{.what = "a number",
                             .number = [](Draft &draft, double value) { draft.lsp.score = value; }};
constexpr Shape<Draft> backups{.what = "a list of backups", .element = &backup};
constexpr Shape<Draft> unprotected =
    refusalTo([](Draft &draft) { draft.lsp.unprotected = std::move(draft.refusal); });

constexpr Member<Draft> lspMembers[] = {
    {"path", &lspPath},
    {"score", &score, false},
    {"backups", &backups, false},
    {"unprotected", &unprotected, false},
};

constexpr Shape<Draft> lsp{.what = "an LSP",
                           .members = lspMembers,
                           .begin = [](Draft &draft) { draft.lsp = {}; },
                           .end = [](Draft &draft) { draft.setOutcome(std::move(draft.lsp)); }};

constexpr Shape<Draft> preemptedBy{
    .what = "the id of a demand",
    .integer = [](Draft &draft, std::int64_t id) { draft.preempted.by = DemandId(count(id)); }};

constexpr Shape<Draft> retry =
    refusalTo([](Draft &draft) { draft.preempted.retry = std::move(draft.refusal); });

constexpr Member<Draft> preemptedMembers[] = {{"by", &preemptedBy}, {"retry", &retry, false}};

constexpr Shape<Draft> preempted{
    .what = "what gave way",
    .members = preemptedMembers,
    .begin = [](Draft &draft) { draft.preempted = {}; },
    .end = [](Draft &draft) { draft.setOutcome(std::move(draft.preempted)); }};

constexpr Shape<Draft> refused =
    refusalTo([](Draft &draft) { draft.setOutcome(std::move(draft.refusal)); });

// --- demands ---

constexpr Shape<Draft> demandNumber{.what = "an id", .integer = [](Draft &draft, std::int64_t id) {
                                        expectNextId(id, draft.plan.demands.size());
                                    }};

constexpr Shape<Draft> demandName{.what = "a text", .text = [](Draft &draft, std::string &name) {
                                      draft.demand.name = std::move(name);
                                  }};

constexpr Shape<Draft> demandClass{
    .what = "the name of a class", .text = [](Draft &draft, std::string &name) {
        draft.demand.classType = placeAmong(draft.plan.network.classes, name);
    }};

constexpr Shape<Draft> demandLevel{
    .what = "the name of a level", .text = [](Draft &draft, std::string &name) {
        draft.demand.level = placeAmong(draft.plan.network.levels, name);
    }};

constexpr Shape<Draft> demandBandwidth{
    .what = "a number of 0 or more",
    .number = [](Draft &draft, double value) { draft.demand.bandwidth = bandwidth(value); }};

constexpr Member<Draft> demandMembers[] = {
    {"name", &demandName, false},
    {"from", &endName<&Draft::from>},
    {"to", &endName<&Draft::to>},
    {"class", &demandClass, false},
    {"level", &demandLevel, false},
    {"bandwidth", &demandBandwidth},
    // in documents with a network
    {"id", &demandNumber, false},
    {"fromId", &endId<&Draft::from>, false},
    {"toId", &endId<&Draft::to>, false},
    // in plans
    {"lsp", &lsp, false},
    {"preempted", &preempted, false},
    {"refused", &refused, false},
};

constexpr Shape<Draft> demandOf(std::size_t nbMembers)
{
    return {.what = "a demand",
            .members = std::span(demandMembers).first(nbMembers),
            .begin = [](Draft &draft) { draft.beginDemand(); },
            .end = [](Draft &draft) { draft.addDemand(); }};
}

constexpr Shape<Draft> namedDemand = demandOf(6);
constexpr Shape<Draft> networkDemand = demandOf(9);
constexpr Shape<Draft> plannedDemand = demandOf(12);

constexpr Shape<Draft> demandsOf(const Shape<Draft> &one, void (*begin)(Draft &))
{
    return {.what = "a list of demands", .element = &one, .begin = begin, .end = [](Draft &draft) {
                draft.hasDemands = true;
            }};
}

} // namespace

constexpr Shape<Draft> namedDemands = demandsOf(namedDemand, nullptr);
constexpr Shape<Draft> networkDemands = demandsOf(networkDemand, [](Draft &draft) {
    expectBefore(!draft.plan.network.levels.empty(), "levels");
    expectBefore(draft.hasLinks, "links");
});
constexpr Shape<Draft> plannedDemands =
    demandsOf(plannedDemand, [](Draft &draft) { expectBefore(draft.hasLinks, "network"); });

} // namespace tarnex::formats::json
