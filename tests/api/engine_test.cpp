/* Engines against the calls of the core that they stand for, alone, together and in threads. */
#include "api/bare_core.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <thread>

namespace tarnex::test
{

namespace
{

Options optionsOf(int kind)
{
    Options options{.classTypes = 1 + kind % 3, .levels = 1 + kind * 5 % 8};
    options.weights = Weights::of(static_cast<Objective>(kind % 5));
    options.testsCapacity = kind % 7 != 6;
    if (kind % 2 == 1)
        options.preemptionPrices[0] = {0.0, 0.5, 1.0, 2.0, 3.0, 1.0, 0.25, 4.0};
    return options;
}

/** The ids of the primaries among LSPs in full, each of which is followed by its backups. */
std::vector<Long> primariesIn(const std::vector<Lsp> &lsps)
{
    std::vector<Long> ids;
    for (const Lsp &lsp : lsps) {
        if (!lsp.isBackup())
            ids.push_back(lsp.id.value);
        else
            EXPECT_EQ(lsp.protects.primary.value, ids.back());
    }
    return ids;
}

/** The same random operations on an engine and on the bare core, one at a time. */
class Pair
{
public:
    explicit Pair(unsigned seed)
        : rng(seed), plan(property::randomNetwork(rng, 10, 3, 1 + static_cast<int>(seed % 3))),
          engine(optionsOf(static_cast<int>(seed))), core(engine.options(), plan)
    {
        build(engine, plan);
    }

    void step()
    {
        const int kind = randomInt(rng, 10);
        if (kind < 5 || alive.empty())
            place();
        else if (kind < 9)
            protect();
        else
            remove();
        EXPECT_EQ(engine.nbLsps(), countAll());
    }

    bool areAlike() const { return core.isLike(engine, plan); }

private:
    void place()
    {
        const Request request = randomRequest(rng, plan, engine.options());
        if (request.ingress == request.egress)
            return;
        const auto before = uses(engine, plan);
        const auto proposed = engine.propose(request);
        EXPECT_TRUE(areSame(before, uses(engine, plan))) << "a proposal changed something";
        const auto placed = engine.place(request);
        const auto expected = core.place(request, nextId);
        ASSERT_EQ(static_cast<bool>(placed), expected.has_value());
        ASSERT_EQ(static_cast<bool>(proposed), expected.has_value());
        EXPECT_EQ(engine.explain(request).has_value() && !placed, !placed);
        if (!placed)
            return;
        EXPECT_EQ(placed->id, nextId);
        EXPECT_EQ(engine.lsp(nextId).path, placed->path);
        EXPECT_EQ(proposed->path, placed->path);
        EXPECT_TRUE(std::ranges::equal(placed->path.nodes, expected->path, {}, &NodeId::value));
        EXPECT_EQ(placed->score, expected->score);
        EXPECT_EQ(proposed->score, expected->score);
        EXPECT_EQ(primariesIn(placed->victims), expected->victims);
        EXPECT_EQ(primariesIn(proposed->victims), expected->victims);
        for (const Lsp &victim : placed->victims) {
            EXPECT_FALSE(engine.has(victim.id));
            std::erase(alive, victim.id);
        }
        alive.push_back(nextId);
        nextId = LspId{nextId.value + 1};
    }

    void protect()
    {
        const LspId id = anyOf(rng, alive);
        const auto scheme = static_cast<Scheme>(randomInt(rng, 3));
        if (!engine.backupsOf(id).empty())
            return;
        const auto before = uses(engine, plan);
        const auto whyNot = engine.explainProtection(id, scheme);
        const auto protection = engine.protect(id, scheme);
        auto expected = core.protect(id, scheme != Scheme::global, nextId);
        if (!expected && scheme == Scheme::localOrGlobal)
            expected = core.protect(id, false, nextId);
        ASSERT_EQ(static_cast<bool>(protection), expected.has_value());
        EXPECT_EQ(whyNot.has_value(), !protection);
        if (!protection) {
            EXPECT_TRUE(areSame(before, uses(engine, plan))) << "a refusal changed something";
            return;
        }
        expectProtected(engine.lsp(id), protection->backups);
        const auto isPath = [](const Lsp &lsp, const std::vector<Long> &path) {
            return std::ranges::equal(lsp.path.nodes, path, {}, &NodeId::value);
        };
        EXPECT_TRUE(std::ranges::equal(protection->backups, *expected, isPath));
        nextId = LspId{nextId.value + static_cast<Long>(expected->size())};
    }

    /** What backups say that they protect, from the paths alone; read back they say the same. */
    void expectProtected(const Lsp &primary, const std::vector<Lsp> &backups)
    {
        const std::vector<LspId> ids = engine.backupsOf(primary.id);
        ASSERT_EQ(ids.size(), backups.size());
        for (std::size_t k = 0; k < backups.size(); ++k) {
            const Lsp stored = engine.lsp(ids[k]);
            EXPECT_EQ(stored.id, backups[k].id);
            EXPECT_EQ(stored.level, 0);
            EXPECT_EQ(stored.classType, primary.classType);
            EXPECT_EQ(stored.bandwidth, primary.bandwidth);
            const bool isLocal = stored.kind == LspKind::localBackup;
            EXPECT_EQ(stored.protects.links,
                      isLocal ? std::vector{primary.path.links[k]} : primary.path.links);
            std::vector<NodeId> avoided;
            for (std::size_t n = 1; n + 1 < primary.path.nodes.size(); ++n) {
                const NodeId inner = primary.path.nodes[n];
                const bool concerns = !isLocal || n == k + 1;
                if (concerns && std::ranges::count(stored.path.nodes, inner) == 0)
                    avoided.push_back(inner);
            }
            EXPECT_EQ(stored.protects.nodes, avoided);
            for (const LinkId link : stored.protects.links)
                EXPECT_EQ(std::ranges::count(stored.path.links, link), 0);
        }
    }

    void remove()
    {
        const LspId id = anyOf(rng, alive);
        const std::vector<LspId> backups = engine.backupsOf(id);
        engine.remove(id);
        core.remove(id);
        std::erase(alive, id);
        for (const LspId backup : backups)
            EXPECT_FALSE(engine.has(backup));
    }

    std::size_t countAll() const
    {
        std::size_t count = alive.size();
        for (const LspId id : alive)
            count += engine.backupsOf(id).size();
        return count;
    }

    Rng rng;
    NetworkPlan plan;
    Engine engine;
    BareCore core;
    std::vector<LspId> alive;
    LspId nextId{0};
};

/** Everything that the operations of one seed give, as text. */
std::string digestOf(unsigned seed)
{
    Rng rng{seed};
    const NetworkPlan plan = property::randomNetwork(rng, 12, 3, 1);
    Engine engine{optionsOf(static_cast<int>(seed))};
    build(engine, plan);
    std::string digest;
    for (int step = 0; step < 150; ++step) {
        const auto placed = engine.place(randomRequest(rng, plan, engine.options()));
        digest += placed ? std::to_string(placed->score.value_or(-1.0)) : placed.refusal().sentence;
        if (placed && step % 2 == 0) {
            const auto protection = engine.protect(placed->id, Scheme::localOrGlobal);
            digest += protection ? std::to_string(protection->backups.size())
                                 : protection.refusal().sentence;
        }
    }
    return digest + engine.trail();
}

} // namespace

TEST(Engines, DoWhatTheCallsOfTheCoreDo)
{
    std::vector<std::unique_ptr<Pair>> pairs; // interleaved in one process
    for (unsigned seed = 1; seed <= 16; ++seed)
        pairs.push_back(std::make_unique<Pair>(seed));
    for (int step = 0; step < 150 && !HasFailure(); ++step) {
        for (std::size_t k = 0; k < pairs.size() && !HasFailure(); ++k) {
            SCOPED_TRACE("seed " + std::to_string(k + 1) + ", step " + std::to_string(step));
            pairs[k]->step();
            EXPECT_TRUE(step % 10 != 9 || pairs[k]->areAlike());
        }
    }
}

TEST(Engines, WorkInThreadsOfTheirOwn)
{
    std::vector<std::string> alone(4);
    std::vector<std::string> together(alone.size());
    for (unsigned k = 0; k < alone.size(); ++k)
        alone[k] = digestOf(k + 1);
    {
        std::vector<std::jthread> threads;
        for (unsigned k = 0; k < alone.size(); ++k)
            threads.emplace_back([&together, k] { together[k] = digestOf(k + 1); });
    }
    EXPECT_EQ(together, alone);
}

TEST(Engines, LeaveTheGlobalsAsTheyWereAndPrintNothing)
{
    const std::int64_t bytes = Engine::countedMemory();
    DataBase somebodys{};
    centralDB = &somebodys;
    std::memset(&tarnexConfig.reroutingConfig, 7, sizeof tarnexConfig.reroutingConfig);
    NBOA = 5;
    NBPL = 3;
    COST = 42.0;
    addError(INFO, "dropped: no stack is live");
    const TARNEXConfig config = tarnexConfig;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const std::string digest = digestOf(3) + digestOf(5);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(digest.find(" a backup."), std::string::npos) << "nothing was refused";
    EXPECT_EQ(centralDB, &somebodys);
    EXPECT_EQ(std::memcmp(&config, &tarnexConfig, sizeof config), 0);
    EXPECT_EQ(std::tuple(NBOA, NBPL, COST, printsRemarks), std::tuple(5, 3, 42.0, true));
    EXPECT_EQ(errorManager.list, nullptr);
    EXPECT_EQ(Engine::countedMemory(), bytes) << "an engine left counted memory";
    centralDB = nullptr;
}

TEST(Engines, MoveWithEverythingInThem)
{
    Engine first{{.classTypes = 2, .levels = 4}};
    build(first, "0:1-2/100 1:2-3/100");
    const auto placed = first.place({node(1), node(3), 60.0});
    ASSERT_TRUE(placed);
    Engine second{std::move(first)};
    EXPECT_EQ(second.lsp(placed->id).path, placed->path);
    Engine third;
    third.addNode(node(9));
    third = std::move(second);
    EXPECT_EQ(third.nbNodes(), 3U);
    EXPECT_EQ(third.use(LinkId{1}).primary[0][0], 60.0);
    EXPECT_EQ(third.options().levels, 4);
    for (Engine *moved : {&first, &second}) { // NOLINT(bugprone-use-after-move)
        EXPECT_THROW(static_cast<void>(moved->nbNodes()), WrongUse);
        EXPECT_THROW(moved->addNode(node(1)), WrongUse);
    }
}

TEST(Engines, RemoveWhatUsesALinkOrNode)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        Rng rng{seed};
        const NetworkPlan plan = property::randomNetwork(rng, 10, 3, 2);
        Engine engine;
        build(engine, plan);
        std::vector<LspId> all;
        for (int k = 0; k < 30; ++k) {
            Request request = randomRequest(rng, plan, engine.options());
            request.bandwidth = 1.0 + k;
            const auto placed = engine.place(request);
            if (placed)
                static_cast<void>(engine.protect(placed->id, Scheme::localOrGlobal));
        }
        for (Long id = 0; all.size() < engine.nbLsps(); ++id) {
            if (engine.has(LspId{id}))
                all.push_back(LspId{id});
        }
        const property::PlannedLink &link = anyOf(rng, plan.links);
        const bool byNode = seed % 2 == 0;
        const auto uses = [&](const Lsp &lsp) {
            return byNode ? std::ranges::count(lsp.path.nodes, node(link.src)) > 0
                          : std::ranges::count(lsp.path.links, LinkId{link.id}) > 0;
        };
        std::vector<LspId> expected;
        for (const LspId id : all) {
            const Lsp lsp = engine.lsp(id);
            if (uses(lsp) || (lsp.isBackup() && uses(engine.lsp(lsp.protects.primary))))
                expected.push_back(id);
        }
        std::vector<LspId> gone;
        for (const Lsp &lsp :
             byNode ? engine.removeNode(node(link.src)) : engine.removeLink(LinkId{link.id}))
            gone.push_back(lsp.id);
        std::ranges::sort(gone);
        EXPECT_EQ(gone, expected);
        EXPECT_EQ(engine.nbLsps(), all.size() - gone.size());
        EXPECT_FALSE(engine.linkBetween(node(link.src), node(link.dst)));
        for (const LspId id : all)
            EXPECT_EQ(engine.has(id), !std::ranges::binary_search(gone, id));
    }
}

TEST(Engines, PlacePrimariesAloneAsTheyDoWithBooksForBackups)
{
    for (unsigned seed = 1; seed <= 8; ++seed) {
        Rng rng{seed};
        const NetworkPlan plan = property::randomNetwork(rng, 20, 4, 1);
        Options options{.classTypes = 1 + static_cast<int>(seed % 3), .levels = 4};
        options.weights = Weights::of(seed % 2 == 0 ? Objective::fortz : Objective::load);
        Engine usual{options};
        options.allowsBackups = false;
        Engine primaries{options};
        build(usual, plan);
        build(primaries, plan);
        std::vector<LspId> alive;
        for (int step = 0; step < 200; ++step) {
            Request request = randomRequest(rng, plan, options);
            request.bandwidth = std::floor(request.bandwidth); // sums leave nothing behind
            const auto expected = usual.place(request);
            const auto placed = primaries.place(request);
            ASSERT_EQ(static_cast<bool>(placed), static_cast<bool>(expected));
            if (placed) {
                EXPECT_EQ(placed->path, expected->path);
                EXPECT_EQ(placed->score, expected->score);
                EXPECT_TRUE(
                    std::ranges::equal(placed->victims, expected->victims, {}, &Lsp::id, &Lsp::id));
                alive.push_back(placed->id);
            } else {
                EXPECT_EQ(placed.refusal().sentence, expected.refusal().sentence);
            }
            std::erase_if(alive, [&](LspId id) { return !usual.has(id); });
            if (step % 5 == 0 && !alive.empty()) {
                const LspId id = anyOf(rng, alive);
                usual.remove(id);
                primaries.remove(id);
            }
            ASSERT_TRUE(areSame(uses(usual, plan), uses(primaries, plan)));
        }
        EXPECT_THROW(static_cast<void>(primaries.explainProtection(alive.back(), Scheme::local)),
                     WrongUse);
    }
}

} // namespace tarnex::test
