#include "formats/digest.h"
#include "formats/json/json.h"
#include "formats/number.h"
#include "formats/oddities.h"
#include "formats/place.h"
#include "formats/write.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <tuple>

namespace tarnex::formats
{

namespace
{

/** Makes things up. */
class Inventor
{
public:
    explicit Inventor(unsigned seed) : random(seed) {}

    int upTo(int largest) { return std::uniform_int_distribution<int>(0, largest)(random); }
    bool coin() { return upTo(1) == 1; }

    /** Any finite number of 0 or more: integers, fractions, every pattern of bits. */
    double amount()
    {
        if (coin())
            return upTo(20000) / (coin() ? 1.0 : 7.0);
        const std::uint64_t bits = random() >> 1U;
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        return value <= largestBandwidth ? value : 0.0;
    }

    std::string name(const std::string &prefix)
    {
        static const std::vector<std::string> pieces{"a",    "\"", "\\", "\n", "Zürich", " ",
                                                     "\x01", "/",  "€",  "𝄞",  "{}",     ""};
        std::string result = prefix;
        for (int i = upTo(3); i > 0; --i)
            result += pieces[static_cast<std::size_t>(upTo(static_cast<int>(pieces.size()) - 1))];
        return result;
    }

    Network network()
    {
        Network made{name(""), coin() ? "Mbit/s" : "", {}, {}, {}, {}};
        for (int i = upTo(maxClassTypes - 1); i >= 0; --i)
            made.classes.push_back(name(std::to_string(i)));
        for (int i = upTo(maxLevels - 1); i >= 0; --i)
            made.levels.push_back(name(std::to_string(i)));
        const int nbNodes = 2 + upTo(10);
        for (int i = 0; i < nbNodes; ++i) {
            made.nodes.push_back({name(std::to_string(i)), {}});
            if (coin())
                made.nodes.back().at = Coordinates{-amount(), coin() ? -0.0 : amount()};
            if (upTo(3) == 0)
                made.nodes.back().hosts = {name("h"), name("i")};
        }
        for (int from = 0; from < nbNodes; ++from)
            for (int to = 0; to < nbNodes; ++to)
                if (from != to && upTo(2) == 0)
                    made.links.push_back({NodeId(from), NodeId(to), amounts(made.classes.size())});
        return made;
    }

    std::vector<Demand> demands(const Network &on)
    {
        std::vector<Demand> made(static_cast<std::size_t>(upTo(20)));
        for (Demand &demand : made)
            demand = {coin() ? name("d") : "",     id<NodeId>(on.nodes),
                      id<NodeId>(on.nodes),        id<NodeId>(on.classes).value,
                      id<NodeId>(on.levels).value, amount()};
        return made;
    }

    Plan plan()
    {
        Plan made;
        made.network = network();
        made.options = options(made.network);
        made.demands = demands(made.network);
        for (std::size_t i = 0; i < made.demands.size(); ++i) {
            made.outcomes.push_back(outcome(made));
            if (coin())
                made.setUp.insert(made.setUp.begin(), DemandId(static_cast<int>(i)));
        }
        for (std::size_t i = 0; i < made.network.links.size(); ++i)
            made.use.push_back({table(made.network), table(made.network)});
        return made;
    }

private:
    std::vector<double> amounts(std::size_t nb)
    {
        std::vector<double> made(nb);
        for (double &value : made)
            value = amount();
        return made;
    }

    std::vector<std::vector<double>> table(const Network &on)
    {
        std::vector<std::vector<double>> made;
        for (std::size_t i = 0; i < on.classes.size(); ++i)
            made.push_back(amounts(on.levels.size()));
        return made;
    }

    template <class Id, class Things>
    Id id(const Things &things)
    {
        return Id(upTo(static_cast<int>(things.size()) - 1));
    }

    template <class Id, class Things>
    std::vector<Id> ids(const Things &things)
    {
        std::vector<Id> made;
        for (int i = things.empty() ? 0 : upTo(5); i > 0; --i)
            made.push_back(id<Id>(things));
        return made;
    }

    PlanOptions options(const Network &on)
    {
        PlanOptions made;
        made.engine.weights = {amount(), amount(), amount(), amount(),
                               amount(), amount(), amount()};
        made.engine.testsCapacity = coin();
        made.engine.explainsRefusals = coin();
        for (std::size_t i = 0; i < on.classes.size(); ++i)
            made.engine.preemptionPrices.at(i).at(on.levels.size() - 1) = amount();
        made.order = static_cast<Order>(upTo(3));
        made.preempts = coin();
        made.retryRounds = upTo(9);
        for (int i = upTo(static_cast<int>(on.levels.size())); i > 0; --i)
            made.protection.push_back(coin() ? LevelScheme(static_cast<Scheme>(upTo(2)))
                                             : std::nullopt);
        return made;
    }

    Refusal refusal(const Network &on)
    {
        Refusal made{static_cast<Reason>(upTo(5)), name("no "), amount(), {}};
        for (const LinkId link : ids<LinkId>(on.links))
            made.inTheWay.push_back({link, amount()});
        return made;
    }

    Outcome outcome(const Plan &plan)
    {
        const Network &on = plan.network;
        switch (upTo(4)) {
        case 0:
            return std::monostate{};
        case 1:
            return refusal(on);
        case 2: {
            PreemptedLsp made{id<DemandId>(plan.demands), {}};
            if (coin())
                made.retry = refusal(on);
            return made;
        }
        default:
            break;
        }
        PlannedLsp made{ids<NodeId>(on.nodes), coin() ? amount() : -amount(), {}, {}};
        for (int i = upTo(2); i > 0; --i)
            made.backups.push_back({coin() ? LspKind::localBackup : LspKind::globalBackup,
                                    ids<NodeId>(on.nodes), ids<LinkId>(on.links),
                                    ids<NodeId>(on.nodes)});
        if (coin())
            made.unprotected = refusal(on);
        return made;
    }

    std::mt19937_64 random;
};

bool same(const Refusal &a, const Refusal &b)
{
    return std::tie(a.reason, a.sentence, a.largestBandwidth) ==
               std::tie(b.reason, b.sentence, b.largestBandwidth) &&
           std::equal(a.inTheWay.begin(), a.inTheWay.end(), b.inTheWay.begin(), b.inTheWay.end(),
                      [](const LinkInTheWay &x, const LinkInTheWay &y) {
                          return x.link == y.link && x.room == y.room;
                      });
}

bool same(const std::optional<Refusal> &a, const std::optional<Refusal> &b)
{
    return a.has_value() == b.has_value() && (!a || same(*a, *b));
}

bool same(std::monostate /*a*/, std::monostate /*b*/) { return true; }

bool same(const PreemptedLsp &a, const PreemptedLsp &b)
{
    return a.by == b.by && same(a.retry, b.retry);
}

bool same(const PlannedLsp &a, const PlannedLsp &b)
{
    const auto sameBackup = [](const PlannedBackup &x, const PlannedBackup &y) {
        return std::tie(x.kind, x.path, x.protectedLinks, x.protectedNodes) ==
               std::tie(y.kind, y.path, y.protectedLinks, y.protectedNodes);
    };
    return a.path == b.path && a.score == b.score && same(a.unprotected, b.unprotected) &&
           std::equal(a.backups.begin(), a.backups.end(), b.backups.begin(), b.backups.end(),
                      sameBackup);
}

bool same(const Outcome &a, const Outcome &b)
{
    return a.index() == b.index() && std::visit(
                                         [&](const auto &value) {
                                             using Value = std::decay_t<decltype(value)>;
                                             return same(value, std::get<Value>(b));
                                         },
                                         a);
}

bool same(const PlanOptions &a, const PlanOptions &b)
{
    return std::tie(a.engine.weights, a.engine.preemptionPrices, a.engine.testsCapacity,
                    a.engine.explainsRefusals, a.order, a.preempts, a.retryRounds, a.protection) ==
           std::tie(b.engine.weights, b.engine.preemptionPrices, b.engine.testsCapacity,
                    b.engine.explainsRefusals, b.order, b.preempts, b.retryRounds, b.protection);
}

bool same(const PlannedUse &a, const PlannedUse &b)
{
    return a.primary == b.primary && a.total == b.total;
}

template <class Value>
bool same(const std::vector<Value> &a, const std::vector<Value> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Value &x, const Value &y) { return same(x, y); });
}

Input readText(const std::string &text, const ReadOptions &options = {})
{
    return readJson(std::string_view(text), "x.json", options);
}

std::string written(const Plan &plan)
{
    std::ostringstream out;
    writePlan(out, plan);
    return out.str();
}

/** Leaves a document where the test of the schemas finds it. */
void keep(const std::string &kind, unsigned seed, const std::string &text)
{
    if (const char *folder = std::getenv("TARNEX_DOCUMENTS"); folder != nullptr && seed < 40)
        std::ofstream(std::filesystem::path(folder) / (kind + std::to_string(seed) + ".json"))
            << text;
}

} // namespace

TEST(Json, PlansComeBackAsTheyWere)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        const Plan plan = Inventor(seed).plan();
        const std::string text = written(plan);
        keep("plan", seed, text);
        const Plan back = std::move(*readText(text).plan);
        EXPECT_EQ(back.network, plan.network);
        EXPECT_EQ(back.demands, plan.demands);
        EXPECT_TRUE(same(back.options, plan.options));
        EXPECT_TRUE(same(back.outcomes, plan.outcomes));
        EXPECT_TRUE(same(back.use, plan.use));
        EXPECT_EQ(back.setUp, plan.setUp);
        EXPECT_EQ(back.options.engine.levels, static_cast<int>(plan.network.levels.size()));
        ASSERT_EQ(written(back), text);
    }
}

TEST(Json, NetworksAndDemandsComeBackAsTheyWere)
{
    ReadOptions halved;
    halved.scale = 0.5;
    for (unsigned seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(seed);
        Inventor inventor(seed);
        const Network network = inventor.network();
        std::vector<Demand> demands = inventor.demands(network);
        std::erase_if(demands, isVoid); // these do not come back
        std::ostringstream out;
        writeNetwork(out, network, demands);
        keep("network", seed, out.str());
        const Input back = readText(out.str());
        EXPECT_EQ(back.network, network);
        EXPECT_EQ(back.demands, demands);

        std::ostringstream alone;
        writeDemands(alone, network, demands);
        keep("demands", seed, alone.str());
        const Input named = readText(alone.str(), halved);
        EXPECT_EQ(named.network.classes, network.classes);
        ASSERT_EQ(named.demands.size(), demands.size());
        for (std::size_t i = 0; i < demands.size(); ++i) {
            const Demand &one = named.demands[i];
            EXPECT_EQ(named.network.nameOf(one.egress), network.nameOf(demands[i].egress));
            EXPECT_EQ(one.level, demands[i].level);
            EXPECT_EQ(one.bandwidth, 0.5 * demands[i].bandwidth);
        }
    }
}

TEST(Json, RemarksWhatItLeavesOutAndOptionsThatDecideNothing)
{
    const Network network{"", "", {"c"}, {"l"}, {{"A", {}}, {"B", {}}}, {}};
    const std::vector<Demand> demands{{"", NodeId(0), NodeId(1), 0, 0, 0.0},
                                      {"d", NodeId(1), NodeId(1), 0, 0, 1.0}};
    std::ostringstream out;
    writeNetwork(out, network, demands);
    ReadOptions options;
    options.capacity = "2G";
    options.parallel = ParallelLinks::error;
    options.classes = options.mix = {{"a", 1.0}};
    options.className = options.level = "a";
    const Input input = readText(out.str(), options);
    EXPECT_EQ(input.demands.size(), 0U);
    const char *const ignored = " ignored: tarnex JSON says it itself";
    std::vector<std::string> expected;
    for (const char *name :
         {"--classes", "--capacity", "--parallel", "--class", "--level", "--mix"})
        expected.push_back(std::string(name) + ignored);
    expected.emplace_back("demands without bandwidth left out: 1 (A > B)");
    expected.emplace_back("demands from a node to itself left out: 1 (d)");
    std::vector<std::string> found;
    for (const Remark &remark : input.remarks.all())
        found.push_back(textOf(remark));
    EXPECT_EQ(found, expected);
    options.isStrict = true;
    EXPECT_THROW(readText(out.str(), options), InputError);
}

namespace
{

/** A plan in few words; `old` becomes `damaged`. */
std::string smallPlan(const std::string &old = "", const std::string &damaged = "")
{
    std::string text = R"({"schema":"tarnex-plan","version":1,
"network":{"name":"n","classes":["c"],"levels":["gold","tin"],
"nodes":[{"name":"A"},{"id":1,"name":"B"}],
"links":[{"id":0,"from":"A","to":"B","toId":1,"capacity":[7]}]},
"options":{"weights":{"fortz":0,"loadBalance":0,"load":1,"squaredLoad":0,"utilization":0,"squaredUtilization":0,"delay":0},
"preemptionPrices":[[1,2]],
"testsCapacity":true,"explainsRefusals":true,"order":"level","preempts":true,"retryRounds":2,"protection":["local"]},
"demands":[
{"id":0,"from":"A","to":"B","level":"gold","bandwidth":5,"lsp":{"path":[0,1],"score":3}},
{"id":1,"from":"A","to":"B","level":"tin","bandwidth":5,"preempted":{"by":0}},
{"id":2,"from":"B","to":"A","level":"tin","bandwidth":5,"refused":{"reason":"no room","sentence":"no","largestBandwidth":2,"inTheWay":[{"link":0,"room":2}]}}],
"use":[{"link":0,"primary":[[5,0]],"total":[[5,0]]}],
"setUp":[0]})";
    const std::size_t at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return text.replace(at, old.size(), damaged);
}

/** What the error says of a text; empty when there is none. */
std::string errorOf(const std::string &text)
{
    try {
        (void)readText(text);
    } catch (const InputError &error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(Json, DamagedPlansAreRefusedWithTheirPlace)
{
    struct Row {
        const char *old, *damaged; // a bar marks the place of the error
        const char *error;
        const char *place = nullptr; // where the bar is, if not in the damage
    };
    const Row rows[] = {
        {R"({"schema":"tarnex-plan",)", R"({|)", "expected \"schema\" in a document"},
        {R"("tarnex-plan")", R"(|"tarnex-plane")", "unknown schema \"tarnex-plane\""},
        {R"("version":1)", R"("version":|2)", "expected version 1 of the schema, not 2"},
        {R"("version":1,)", "", "expected \"version\" in a plan", R"("setUp":[0]|})"},
        {R"("network":)", R"("net":)", "expected \"network\" before", R"("options":|{)"},
        {R"(["c"])", "[|]", "expected at least one name"},
        {R"(["c"])", R"(["c",|"c"])", "a second \"c\" in the list"},
        {R"(["c"])", "[|1]", "expected the name of a class"},
        {R"("gold")", R"("1","2","3","4","5","6","7","gold")", "expected at most 8 names",
         R"(,|"tin"])"},
        {R"("id":1,"name":"B")", R"("id":|2,"name":"B")", "expected the id 1, the next"},
        {R"({"name":"A"})", R"({"name":"B"})", "a second node \"B\"", R"("id":1,"name":"B"|})"},
        {R"({"name":"A"})", R"({"name":|7})", "expected a name"},
        {R"({"name":"A"})", R"({"name":"A","latitude":4|})", "expected both \"longitude\""},
        {R"("from":"A","to":"B","toId")", R"("from":|"X","to":"B","toId")",
         "there is no node \"X\""},
        {R"("toId":1)", R"("toId":|0)", "expected the name and the id of the same node"},
        {R"("toId":1)", R"("toId":|2)", "there is no node 2, expected an id below 2"},
        {R"("to":"B","toId":1,"capacity":[7])", R"("to":"A","capacity":[7]|)",
         "expected a link to another"},
        {"[7]}", R"([7]},{"from":"A","to":"B","capacity":[1]|})",
         "a second link from \"A\" to \"B\""},
        {"[7]", "[|-7]", "expected a number of 0 or more"},
        {"[7]", "[|2e100]", "expected a number that is no larger than 1e100"},
        {"[7]", "[7,7]|", "expected a capacity per class, which are 1"},
        {"[7]", "[1e99|9]", "number overflow"},
        {"[7]", "[|NaN]", "syntax error"},
        {R"("delay":0)", R"("delayed":0|)", "expected \"delay\" in weights"},
        {R"("order":"level")", R"("order":|"random")",
         "unknown word \"random\", expected one of \"given\""},
        {R"(["local"])", R"(["local","none",|"none"])", "expected no more than a word per level"},
        {R"("retryRounds":2)", R"("retryRounds":|-2)", "expected an integer of 0 or more"},
        {R"("retryRounds":2)", R"("retryRounds":|1.5)", "expected an integer of 0 or more"},
        {"[[1,2]]", "[[1|]]", "expected a list per class"},
        {"[[1,2]]", "[|]", "expected a list per class"},
        {R"("level":"gold")", R"("level":|"silver")",
         "unknown name \"silver\", expected \"gold\", \"tin\""},
        {R"("level":"gold",)", "", "expected \"level\" in a demand", R"("score":3}|})"},
        {R"("bandwidth":5,"lsp")", R"("bandwidth":|"5","lsp")", "expected a number of 0 or more"},
        {R"("bandwidth":5,"lsp")", R"("bandwidth":|null,"lsp")", "expected a number of 0 or more"},
        {"[0,1]", "[0,|2]", "there is no node 2, expected an id below 2"},
        {"[0,1]", "[|0.5,1]", "expected the id of a node"},
        {"[0,1]", "|{}", "expected a list of node ids"},
        {R"("score":3})", R"("score":3},"preempted":{"by":1|})",
         "expected one of \"lsp\", \"preempted\""},
        {R"("score":3)", R"("score":3,"score":3)", "a second \"score\" in an LSP", R"(3,|"score")"},
        {R"("by":0)", R"("by":3)", "there is no demand 3", R"("setUp":[0]|})"},
        {R"("room":2)", R"("room":2},{"link":|1,"room":2)",
         "there is no link 1, expected an id below 1"},
        {R"("no room")", R"(|"no rooms")",
         "unknown word \"no rooms\", expected one of \"no such node\""},
        {R"({"link":0,"primary")", R"({"link":|1,"primary")", "expected the id 0"},
        {R"({"link":0,"primary":[[5,0]],"total":[[5,0]]}])", "]", "expected a use per link",
         R"("setUp":[0]|})"},
        {R"("setUp":[0])", R"("setUp":[0,|0])", "demand 0 a second time"},
        {R"("setUp":[0])", R"("setUp":[|3])", "there is no demand 3"},
        {R"("setUp":[0]})", R"("setUp":[0]} |x)", "syntax error"},
        {"\"A\"", "\"A|\xff\"", "syntax error"},
    };
    ASSERT_EQ(errorOf(smallPlan()), "");
    for (const Row &row : rows) {
        std::string text = smallPlan(row.old, row.damaged);
        const std::string context = row.place != nullptr ? row.place : row.damaged;
        const std::size_t bar = context.find('|');
        if (row.place == nullptr)
            text.erase(text.find('|'), 1);
        const Place place = placeOf(text, text.find(std::string(context).erase(bar, 1)) + bar);
        const std::string expected = "x.json:" + std::to_string(place.line) + ":" +
                                     std::to_string(place.column) + ": " + row.error;
        EXPECT_EQ(errorOf(text).substr(0, expected.size()), expected) << text;
    }
}

TEST(Json, EveryTruncatedPlanIsRefused)
{
    const std::string text = smallPlan();
    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_NE(errorOf(text.substr(0, size)), "") << size;
}

TEST(Json, UnknownMembersAreSkipped)
{
    const std::string unknown = R"("x":{"y":[1,{"id":[]},null,"z"],"name":2},)";
    const std::string plain = written(*readText(smallPlan()).plan);
    for (const char *before : {R"("version")", R"("network")", R"("name":"A")", R"("from")",
                               R"("fortz")", R"("path")", R"("by")", R"("reason")", R"("primary")"})
        EXPECT_EQ(written(*readText(smallPlan(before, unknown + before)).plan), plain) << before;
    const std::string deep(100, '[');
    EXPECT_NE(errorOf(smallPlan(R"("version")", "\"x\":" + deep)).find("nested more than 64 deep"),
              std::string::npos);
}

TEST(Json, LongFilesAreCountedAndDigestedToTheirEnd)
{
    const auto file = std::filesystem::path(testing::TempDir()) / "long.json";
    std::string text =
        R"({"schema":"tarnex-network","version":1,"classes":["c"],"levels":["l"],"nodes":[)";
    std::size_t lines = 1;
    for (std::size_t next = text.size(); text.size() < 300000; next = text.size()) {
        text += "\n{\"name\":\"" + std::to_string(lines++) + "\"},";
        if (next % 1000 == 0)
            text.insert(next, 70000, ' '); // longer than what is read at a time
    }
    text += "\n   {\"name\":7}";
    std::ofstream(file, std::ios::binary) << text;
    try {
        (void)readJson(file, {});
        ADD_FAILURE() << "read";
    } catch (const InputError &error) {
        EXPECT_EQ(error.line, lines + 1);
        EXPECT_EQ(error.column, 12U);
    }
    text.back() = ' ';
    text.replace(text.rfind('7'), 1, R"("last"}],"links":[]})");
    std::ofstream(file, std::ios::binary) << text;
    EXPECT_EQ(readJson(file, {}).digest, digestOf(text));
    EXPECT_EQ(readJson(text, "long.json", {}).digest, digestOf(text));
    std::filesystem::remove(file);
}

TEST(NodeLink, IdsNamesAndFlagsAreAsTheLibrariesWriteThem)
{
    const Source source = parseNodeLink(
        R"({"directed": true, "multigraph": false, "graph": {"name": "g", "x": 1},
"nodes": [{"id": 3, "label": "Rome", "x": 12.5, "y": 41.9}, {"id": "oslo", "x": null}],
"edges": [{"capacity": 5000.0, "source": 3, "target": "oslo", "key": 0},
{"source": "oslo", "target": 3}]})",
        "x.json");
    EXPECT_TRUE(source.isDirected);
    EXPECT_EQ(source.name, "g");
    ASSERT_EQ(source.nodes.size(), 2U);
    EXPECT_EQ(source.nodes[0].key, "3");
    EXPECT_EQ(source.nodes[0].name, "Rome");
    EXPECT_EQ(source.nodes[0].at, (Coordinates{12.5, 41.9}));
    EXPECT_EQ(source.nodes[1].at, std::nullopt);
    ASSERT_EQ(source.edges.size(), 2U);
    EXPECT_EQ(source.edges[0].capacity, std::vector{5000.0});
    EXPECT_EQ(source.edges[0].to, "oslo");
    EXPECT_TRUE(source.edges[1].capacity.empty());
    EXPECT_EQ(source.edges[1].line, 4U);
    EXPECT_FALSE(parseNodeLink(R"({"nodes":[],"links":[]})", "x.json").isDirected);
}

TEST(NodeLink, DamagedGraphsAreRefusedWithTheirPlace)
{
    const std::pair<const char *, const char *> rows[] = {
        {"[]", "1:1: expected a graph"},
        {R"({"nodes":[]})", "1:12: expected \"links\" or \"edges\" in a graph"},
        {R"({"links":[]})", "1:12: expected \"nodes\" in a graph"},
        {R"({"nodes":[],"links":[],"edges":[]})", "1:32: a second list of links"},
        {R"({"nodes":[{"name":"A"}]})", "1:22: expected \"id\" in a node"},
        {R"({"nodes":[{"id":1.5}]})", "1:17: expected a text or an integer"},
        {R"({"nodes":[],"links":[{"source":1}]})", "1:33: expected \"target\" in a link"},
        {R"({"nodes":[],"links":[{"source":1,"target":2,"capacity":-1}]})",
         "1:56: expected a number"},
    };
    for (const auto &[text, expected] : rows)
        try {
            (void)parseNodeLink(text, "x.json");
            ADD_FAILURE() << text;
        } catch (const InputError &error) {
            EXPECT_EQ(std::string(error.what()).rfind(std::string("x.json:") + expected, 0), 0U)
                << text << "\n"
                << error.what();
        }
}

} // namespace tarnex::formats
