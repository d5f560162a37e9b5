/* Wrong use, refusals by kind, and what both leave behind. */
#include "api/networks.h"

#include <functional>
#include <limits>

namespace tarnex::test
{

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

/** A triangle with LSP 5 from node 1 to node 3 over node 2 and its global backup 6. */
class SmallNetwork : public testing::Test
{
protected:
    SmallNetwork()
    {
        build(engine, "0:1-2/100 1:2-3/100 2:1-3/60 3:3-2/10");
        engine.addNode(node(8));
        EXPECT_TRUE(engine.add({.bandwidth = 50.0, .id = LspId{5}}, over({1, 2, 3})));
        EXPECT_TRUE(engine.add(BackupSpec{LspId{5}, LspKind::globalBackup, over({1, 3}), {}}));
    }

    static std::vector<NodeId> over(const std::vector<Long> &ids)
    {
        std::vector<NodeId> nodes;
        for (const Long id : ids)
            nodes.emplace_back(id);
        return nodes;
    }

    std::vector<LinkUse> allUses() const
    {
        return {engine.use(LinkId{0}), engine.use(LinkId{1}), engine.use(LinkId{2}),
                engine.use(LinkId{3})};
    }

    Engine engine{{.classTypes = 1, .levels = 4}};
};

Request from1to3(double bandwidth) { return {node(1), node(3), bandwidth}; }

} // namespace

TEST_F(SmallNetwork, RefusesWrongUseAndChangesNothing)
{
    const std::vector<double> capacity{10.0};
    const std::vector<double> two{10.0, 10.0};
    const auto link = [&](Long id, Long from, Long to, double value) {
        const std::vector<double> one{value};
        engine.addLink({LinkId{id}, node(from), node(to), one});
    };
    const auto ask = [&](Request request) {
        EXPECT_THROW(static_cast<void>(engine.propose(request)), WrongUse);
        EXPECT_THROW(static_cast<void>(engine.explain({request.ingress, request.egress, noNumber})),
                     WrongUse);
        static_cast<void>(engine.place(request));
    };
    const auto add = [&](const std::vector<Long> &path, Long id) {
        static_cast<void>(engine.add({.bandwidth = 1.0, .id = LspId{id}}, over(path)));
    };
    const auto back = [&](Long primary, LspKind kind, const std::vector<Long> &path, Long id = -1) {
        static_cast<void>(engine.add(BackupSpec{LspId{primary}, kind, over(path), LspId{id}}));
    };
    using enum LspKind;
    const std::vector<std::pair<const char *, std::function<void()>>> calls{
        {"no id of a node", [&] { engine.addNode(NodeId{}); }},
        {"node taken", [&] { engine.addNode(node(1)); }},
        {"no id of a link", [&] { link(-1, 2, 1, 1.0); }},
        {"beyond all tables", [&] { link(std::numeric_limits<Long>::max(), 2, 1, 1.0); }},
        {"link taken", [&] { link(0, 2, 1, 1.0); }},
        {"no node", [&] { link(9, 2, 4, 1.0); }},
        {"loop", [&] { link(9, 2, 2, 1.0); }},
        {"parallel", [&] { link(9, 1, 2, 1.0); }},
        {"negative", [&] { link(9, 2, 1, -1.0); }},
        {"endless", [&] { link(9, 2, 1, infinity); }},
        {"capacities",
         [&] {
             engine.addLink({LinkId{9}, node(2), node(1), two});
         }},
        {"unknown link", [&] { static_cast<void>(engine.removeLink(LinkId{7})); }},
        {"unknown node", [&] { static_cast<void>(engine.removeNode(node(7))); }},
        {"class type",
         [&] {
             ask({node(1), node(3), 1.0, 1});
         }},
        {"level",
         [&] {
             ask({node(1), node(3), 1.0, 0, 4});
         }},
        {"below 0", [&] { ask(from1to3(-1.0)); }},
        {"no number", [&] { ask(from1to3(noNumber)); }},
        {"infinite", [&] { ask(from1to3(infinity)); }},
        {"LSP taken", [&] { ask({.bandwidth = 1.0, .id = LspId{5}}); }},
        {"short path", [&] { add({1}, 9); }},
        {"no link",
         [&] {
             add({1, 8}, 9);
         }},
        {"round",
         [&] {
             add({1, 3, 2, 3}, 9);
         }},
        {"taken by a backup",
         [&] {
             add({1, 3}, 6);
         }},
        {"backup of nobody",
         [&] {
             back(9, localBackup, {1, 3});
         }},
        {"backup of a backup",
         [&] {
             back(6, localBackup, {1, 3});
         }},
        {"no backup",
         [&] {
             back(5, primary, {1, 3});
         }},
        {"starts elsewhere",
         [&] {
             back(5, localBackup, {3, 2});
         }},
        {"over its own link",
         [&] {
             back(5, globalBackup, {1, 2, 3});
         }},
        {"ends elsewhere",
         [&] {
             back(5, globalBackup, {1, 3, 2});
         }},
        {"backup's id",
         [&] {
             back(5, localBackup, {1, 3}, 5);
         }},
        {"protects nobody", [&] { static_cast<void>(engine.protect(LspId{9}, Scheme::local)); }},
        {"protects a backup", [&] { static_cast<void>(engine.protect(LspId{6}, Scheme::local)); }},
        {"ids", [&] { static_cast<void>(engine.protect(LspId{5}, Scheme::global, LspId{6})); }},
        {"explains nobody",
         [&] { static_cast<void>(engine.explainProtection(LspId{9}, Scheme::local)); }},
        {"more than an LSP has",
         [&] { static_cast<void>(engine.protect(LspId{5}, Scheme::global, {}, 51.0)); }},
        {"removes nobody", [&] { engine.remove(LspId{9}); }},
        {"no use", [&] { static_cast<void>(engine.use(LinkId{4})); }},
        {"no list", [&] { static_cast<void>(engine.lspsOn(LinkId{-1})); }},
        {"no LSP", [&] { static_cast<void>(engine.lsp(LspId{4})); }},
        {"no primary", [&] { static_cast<void>(engine.backupsOf(LspId{4})); }}};
    const auto before = allUses();
    for (const auto &[what, call] : calls)
        EXPECT_THROW(call(), WrongUse) << what;
    EXPECT_TRUE(areSame(before, allUses()));
    EXPECT_EQ(engine.nbLsps(), 2U);
    for (const Options &options :
         {Options{.classTypes = 0}, Options{.classTypes = 9}, Options{.levels = 0},
          Options{.levels = 9}, Options{.weights = {.delay = -1.0}},
          Options{.preemptionPrices = {{{noNumber}}}}})
        EXPECT_THROW(Engine{options}, WrongUse);
}

TEST_F(SmallNetwork, TellsWhyARequestIsRefused)
{
    struct Row {
        Request request;
        Reason reason;
        std::string sentence;
        double largest;
        std::vector<LinkId> inTheWay;
    };
    const std::vector<Row> rows{
        {{node(1), node(7), 1.0}, Reason::noSuchNode, "There is no node 7.", 0.0, {}},
        {{node(2), node(2), 1.0}, Reason::sameEnds, "Ingress and egress are both node 2.", 0.0, {}},
        {{node(1), node(8), 1.0},
         Reason::notConnected,
         "No path leads from node 1 to node 8.",
         0.0,
         {}},
        {{node(1), node(3), 70.5, 0, 2},
         Reason::noRoom,
         "No path from node 1 to node 3 has room for 70.5 at level 2; 50 would fit.",
         50.0,
         {LinkId{0}, LinkId{2}}},
        {{node(2), node(3), 51.0, 0, 3},
         Reason::noRoom,
         "No path from node 2 to node 3 has room for 51 at level 3; 50 would fit.",
         50.0,
         {LinkId{1}}}};
    Engine brief{{.explainsRefusals = false}};
    build(brief, "0:1-2/100 1:2-3/100");
    for (const Row &row : rows) {
        SCOPED_TRACE(row.sentence);
        const auto placed = engine.place(row.request);
        ASSERT_FALSE(placed);
        EXPECT_EQ(placed.refusal().reason, row.reason);
        EXPECT_EQ(placed.refusal().sentence, row.sentence);
        EXPECT_NEAR(placed.refusal().largestBandwidth, row.largest, 1e-12);
        std::vector<LinkId> inTheWay;
        for (const LinkInTheWay &link : placed.refusal().inTheWay)
            inTheWay.push_back(link.link);
        EXPECT_EQ(inTheWay, row.inTheWay);
        EXPECT_EQ(engine.explain(row.request)->sentence, row.sentence);
    }
    const auto refused = brief.place(from1to3(101.0));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.refusal().sentence,
              "No path from node 1 to node 3 has room for 101 at level 0.");
    EXPECT_TRUE(refused.refusal().inTheWay.empty());
    EXPECT_NE(brief.trail(), "");
    EXPECT_EQ(brief.explain(from1to3(101.0))->largestBandwidth, 100.0);
    EXPECT_FALSE(brief.explain(from1to3(100.0)));
    EXPECT_EQ(brief.trail(), "") << "the trail of a call that went well";
}

TEST_F(SmallNetwork, TellsWhyThereIsNoBackup)
{
    const auto reasonFor = [&](LspId id, Scheme scheme) {
        const auto refusal = engine.explainProtection(id, scheme);
        EXPECT_FALSE(engine.protect(id, scheme));
        return refusal ? refusal->sentence : "none";
    };
    // Nothing leads from node 2 but the link to node 3, so all or none of its backups is none.
    EXPECT_EQ(reasonFor(LspId{5}, Scheme::local),
              "No path leads around the link from node 2 to node 3 of LSP 5.");
    EXPECT_EQ(engine.backupsOf(LspId{5}), std::vector{LspId{6}});
    ASSERT_TRUE(engine.add({.bandwidth = 20.0, .level = 3, .id = LspId{7}}, over({1, 2, 3})));
    EXPECT_EQ(reasonFor(LspId{7}, Scheme::global),
              "No path from node 1 to node 3 beside LSP 7 has room for a backup; 10 would fit.");
    EXPECT_EQ(engine.explainProtection(LspId{7}, Scheme::localOrGlobal)->reason,
              Reason::noRoomForDisjointPath);
    const auto refused =
        engine.add(BackupSpec{LspId{7}, LspKind::globalBackup, over({1, 3}), LspId{}});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.refusal().reason, Reason::noRoomForDisjointPath);
    EXPECT_EQ(engine.nbLsps(), 3U);
}

TEST_F(SmallNetwork, KeepsTheClassTypeOfAnLspWithoutBandwidth)
{
    Engine wide{{.classTypes = 3}};
    build(wide, "0:1-2/100");
    const auto placed = wide.place({node(1), node(2), 0.0, 2});
    ASSERT_TRUE(placed);
    EXPECT_EQ(wide.lsp(placed->id).classType, 2);
}

} // namespace tarnex::test
