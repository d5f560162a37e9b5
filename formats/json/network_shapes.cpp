#include "formats/json/shapes.h"

namespace tarnex::formats::json
{

namespace
{

constexpr Shape<Draft> className{.what = "the name of a class",
                                 .text = [](Draft &draft, std::string &name) {
                                     Draft::addName(draft.plan.network.classes, name);
                                 }};

constexpr Shape<Draft> levelName{.what = "the name of a level",
                                 .text = [](Draft &draft, std::string &name) {
                                     Draft::addName(draft.plan.network.levels, name);
                                 }};

// --- nodes ---

constexpr Shape<Draft> nodeNumber{.what = "an id", .integer = [](Draft &draft, std::int64_t id) {
                                      expectNextId(id, draft.plan.network.nodes.size());
                                  }};

constexpr Shape<Draft> nodeName{.what = "a name", .text = [](Draft &draft, std::string &name) {
                                    draft.node.name = std::move(name);
                                }};

constexpr Shape<Draft> longitude{
    .what = "a number of degrees",
    .number = [](Draft &draft, double degrees) { draft.longitude = degrees; }};

constexpr Shape<Draft> latitude{
    .what = "a number of degrees",
    .number = [](Draft &draft, double degrees) { draft.latitude = degrees; }};

constexpr Shape<Draft> hostName{
    .what = "the name of a host",
    .text = [](Draft &draft, std::string &name) { draft.node.hosts.push_back(std::move(name)); }};

constexpr Shape<Draft> hostNames{.what = "a list of names", .element = &hostName};

constexpr Member<Draft> nodeMembers[] = {
    {"id", &nodeNumber, false},     {"name", &nodeName},          {"longitude", &longitude, false},
    {"latitude", &latitude, false}, {"hosts", &hostNames, false},
};

constexpr Shape<Draft> node{.what = "a node",
                            .members = nodeMembers,
                            .begin =
                                [](Draft &draft) {
                                    draft.node = {};
                                    draft.longitude.reset();
                                    draft.latitude.reset();
                                },
                            .end = [](Draft &draft) { draft.addNode(); }};

// --- links ---

constexpr Shape<Draft> linkNumber{.what = "an id", .integer = [](Draft &draft, std::int64_t id) {
                                      expectNextId(id, draft.plan.network.links.size());
                                  }};

constexpr Shape<Draft> capacityOfClass{
    .what = "a number of 0 or more",
    .number = [](Draft &draft, double capacity) { draft.row.push_back(bandwidth(capacity)); }};

constexpr Shape<Draft> capacity{.what = "a list of numbers, one per class",
                                .element = &capacityOfClass,
                                .begin = [](Draft &draft) { draft.row.clear(); }};

constexpr Member<Draft> linkMembers[] = {
    {"id", &linkNumber, false},          {"from", &endName<&Draft::from>},
    {"to", &endName<&Draft::to>},        {"fromId", &endId<&Draft::from>, false},
    {"toId", &endId<&Draft::to>, false}, {"capacity", &capacity},
};

constexpr Shape<Draft> link{.what = "a link",
                            .members = linkMembers,
                            .begin = [](Draft &draft) { draft.from = draft.to = {}; },
                            .end = [](Draft &draft) { draft.addLink(); }};

} // namespace

// --- the network ---

constexpr Shape<Draft> networkName{.what = "a text", .text = [](Draft &draft, std::string &name) {
                                       draft.plan.network.name = std::move(name);
                                   }};

constexpr Shape<Draft> unitName{.what = "a text", .text = [](Draft &draft, std::string &name) {
                                    draft.plan.network.unit = std::move(name);
                                }};

constexpr Shape<Draft> classNames{
    .what = "a list of names", .element = &className, .end = [](Draft &draft) {
        expectSome(draft.plan.network.classes);
    }};

constexpr Shape<Draft> levelNames{
    .what = "a list of names", .element = &levelName, .end = [](Draft &draft) {
        expectSome(draft.plan.network.levels);
    }};

constexpr Shape<Draft> nodeList{.what = "a list of nodes",
                                .element = &node,
                                .end = [](Draft &draft) { draft.hasNodes = true; }};

constexpr Shape<Draft> linkList{.what = "a list of links",
                                .element = &link,
                                .begin =
                                    [](Draft &draft) {
                                        expectBefore(!draft.plan.network.classes.empty(),
                                                     "classes");
                                        expectBefore(draft.hasNodes, "nodes");
                                    },
                                .end = [](Draft &draft) { draft.hasLinks = true; }};

namespace
{

constexpr Member<Draft> networkMembers[] = {
    {"name", &networkName, false}, {"unit", &unitName, false}, {"classes", &classNames},
    {"levels", &levelNames},       {"nodes", &nodeList},       {"links", &linkList},
};

} // namespace

constexpr Shape<Draft> networkObject{.what = "a network", .members = networkMembers};

} // namespace tarnex::formats::json
