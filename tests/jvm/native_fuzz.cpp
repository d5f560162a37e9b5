/*
 * Random calls, within the contract and outside, on sessions that come and go, each held against a
 * model of what every session has. TARNEX_FUZZ_SECONDS, TARNEX_FUZZ_CALLS and TARNEX_FUZZ_SEED in
 * the environment make the runs longer, or other ones.
 */
#include "jvm/jvm_test.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>

namespace
{

unsigned setting(const char *name, unsigned otherwise)
{
    const char *text = std::getenv(name);
    return text ? static_cast<unsigned>(std::atol(text)) : otherwise;
}

constexpr jint nodeIds = 8, lspIds = 40;
constexpr jfloat infinite = INFINITY;

/** Floats of an array argument: unusual ones that the contract allows, and some it does not. */
struct Floats {
    const char *name;
    std::vector<jfloat> unusual, refused;
};

class Fuzz : public JvmTest
{
public:
    /** A call with its arguments; what it does when it succeeds is done to the parameter. */
    using Call = std::function<void(Network &)>;

    /** Makes calls, as many as asked for and for some time, up to the first failure. */
    void run(int oddsOfSession, unsigned count, unsigned seconds = 0)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{seconds};
        for (unsigned i = 0; i < count || std::chrono::steady_clock::now() < end; ++i) {
            const bool isOnSessions = oddsOfSession > 0 && below(oddsOfSession) == 0;
            step(isOnSessions ? &Fuzz::sessionCall : &Fuzz::anyCall);
            if (HasFailure())
                return;
        }
    }

    void step(Call (Fuzz::*prepare)())
    {
        SCOPED_TRACE(testing::Message() << "call " << ++calls);
        env->PushLocalFrame(64);
        chooseTarget();
        isOpening = isProtection = false;
        flaws.clear();
        judge((this->*prepare)());
        env->PopLocalFrame(nullptr);
    }

    /** One call: what was there before it, what it should do and what came of it. */
    struct Judged {
        bool isLive;    ///< whether it is on a live session
        bool isInForce; ///< whether it has to answer for its arguments: that, or an opening
        int witness;    ///< another session, or the same
        bool dumps;     ///< whether dumps are compared
        TARNEXConfig config;
        std::string before, aside; ///< dumps of the session and of the witness
        Network after{};           ///< what the session should hold if it succeeds
        std::string thrown{};
        Trail trail{};

        bool isRefused() const
        {
            return thrown.starts_with("java.lang.IllegalArgumentException: ");
        }
    };

    /** Makes the call and compares what it threw and what it did with what it should. */
    void judge(const Call &call)
    {
        Judged judged = stateBefore();
        const std::string output = printed([&] { call(judged.after); });
        judged.thrown = takeException();
        judged.trail = takeSessionTrail();
        checkRefusal(judged);
        checkException(judged);
        if (judged.isLive && live.contains(target))
            checkNetwork(judged);
        checkNothingElseChanged(judged);
        if (HasFailure())
            std::printf("%s\n%s\n", judged.thrown.c_str(), output.c_str());
    }

    Judged stateBefore()
    {
        const bool isLive = live.contains(target), isInForce = isLive || isOpening;
        const int witness = anySession();
        const bool dumps = !flaws.empty() || !isInForce || below(32) == 0;
        return {isLive,
                isInForce,
                witness,
                dumps,
                isLive ? sessions[target]->tarnexConfig : TARNEXConfig{},
                dumps ? dump(target) : "",
                dumps ? dump(witness) : "",
                network()};
    }

    /** A flawed argument is refused by its name, and only that is; the configuration stays. */
    void checkRefusal(const Judged &judged)
    {
        const bool isRefused = judged.isRefused();
        if (isRefused && isProtection)
            flaws.push_back("backuplspIds"); // how many it takes shows in the computation
        const bool isNamed = std::ranges::any_of(flaws, [&](const std::string &name) {
            return !isRefused || judged.thrown.find(name) != std::string::npos;
        });
        EXPECT_EQ(isRefused, judged.isInForce && isNamed);
        EXPECT_TRUE(!isRefused || !judged.isLive || isOpening ||
                    std::memcmp(&judged.config, &sessions[target]->tarnexConfig,
                                sizeof judged.config) == 0);
    }

    /** Whatever else is thrown is an exception of the engine, on a live session. */
    static void checkException(const Judged &judged)
    {
        EXPECT_TRUE(judged.thrown.empty() || judged.isRefused() ||
                    (judged.isLive && judged.thrown.starts_with("org.kestro.")));
    }

    /** The session holds what it should, and the model follows where a call failed half way. */
    void checkNetwork(const Judged &judged)
    {
        Network &expected = live[target];
        const Network found = networkOf(target);
        const bool isPartial = std::ranges::any_of(judged.trail, [](const std::string &text) {
            return text.find("uncomplete") != std::string::npos;
        });
        if (isPartial || judged.thrown.empty())
            expected = isPartial ? found : judged.after;
        else if (isProtection && !judged.isRefused()) // backups before the one that failed stay
            std::ranges::copy_if(backupIds, std::inserter(expected.lsps, expected.lsps.end()),
                                 [&](jint id) { return found.lsps.contains(id); });
        EXPECT_EQ(found, expected) << testing::PrintToString(judged.trail);
    }

    /** A call that does nothing changes nothing, and none changes another session. */
    void checkNothingElseChanged(const Judged &judged)
    {
        if (judged.dumps && (judged.isRefused() || !judged.isInForce)) {
            EXPECT_EQ(dump(target), judged.before);
            EXPECT_EQ(env->GetIntField(engine, sessId), target);
        }
        EXPECT_TRUE(!judged.dumps || judged.witness == target ||
                    dump(judged.witness) == judged.aside);
        for (auto other = live.begin(); calls % 1024 == 0 && other != live.end(); ++other)
            EXPECT_EQ(networkOf(other->first), other->second);
    }

    const Network &network() const
    {
        static const Network none;
        const auto found = live.find(target);
        return found == live.end() ? none : found->second;
    }
    std::string dump(int slot) const { return live.contains(slot) ? dumpOf(slot) : ""; }

    // --- what to draw from ---

    int below(int bound) { return static_cast<int>(rng() % static_cast<unsigned>(bound)); }

    template <class T>
    T anyOf(const std::vector<T> &values)
    {
        return values[rng() % values.size()];
    }

    /** Whether this argument is to be outside the contract. */
    bool flawed(const char *name)
    {
        const bool isFlawed = below(48) == 0;
        if (isFlawed)
            flaws.push_back(name);
        return isFlawed;
    }

    jint id(int bound)
    {
        return below(24) ? below(bound) : anyOf<jint>({-1, INT_MIN, 1 << 30, INT_MAX});
    }
    jint classType() { return below(MAXOA + 2) - 1; }
    jint level() { return flawed("PL") ? anyOf<jint>({-1, 8, INT_MIN, INT_MAX}) : below(MAXPL); }
    jint count(const char *name) { return flawed(name) ? anyOf<jint>({-1, 0, 9}) : 1 + below(8); }
    jfloat number(int bound)
    {
        return below(24) ? static_cast<jfloat>(below(8 * bound)) / 8
                         : anyOf<jfloat>({1e-45F, 3.4e38F});
    }
    jfloat bandwidth(const char *name)
    {
        return flawed(name) ? anyOf<jfloat>({-1, NAN, infinite, -infinite}) : number(6);
    }

    jfloatArray row(const Floats &kind, int length)
    {
        std::vector<jfloat> values(static_cast<std::size_t>(length + below(2)));
        for (jfloat &value : values)
            value = below(24) ? number(40) : anyOf(kind.unusual);
        if (flawed(kind.name)) {
            if (below(3) == 0)
                return nullptr;
            if (kind.refused.empty() || below(2))
                values.resize(static_cast<std::size_t>(below(length)));
            else
                values[static_cast<std::size_t>(below(length))] = anyOf(kind.refused);
        }
        return floats(values);
    }

    jobjectArray matrix(const Floats &kind, int height, int width)
    {
        std::vector<jfloatArray> lines;
        for (int i = 0; i < height; ++i)
            lines.push_back(row(kind, width));
        if (!flawed(kind.name))
            return rows(lines);
        lines.pop_back();
        return below(2) ? rows(lines) : nullptr;
    }

    int anySession()
    {
        const auto found = live.lower_bound(below(maxSessions));
        return found != live.end() ? found->first : live.empty() ? -1 : live.begin()->first;
    }

    /** Mostly one session for some hundred calls, at times another or a number that names none. */
    void chooseTarget()
    {
        if (calls % 400 == 0 || !live.contains(favourite))
            favourite = anySession();
        const int dice = below(16);
        target = dice == 0  ? anyOf<jint>({-1, INT_MIN, maxSessions, INT_MAX, below(maxSessions)})
                 : dice < 4 ? anySession()
                            : favourite;
        env->SetIntField(engine, sessId, target);
        env->SetObjectField(engine, lsps, nullptr);
    }

    jint anyLsp()
    {
        const auto found = network().lsps.lower_bound(below(lspIds));
        return found != network().lsps.end() ? *found : id(lspIds);
    }

    /** Node ids, mostly along links. */
    jintArray walk()
    {
        std::vector<jint> nodes{id(nodeIds)};
        while (below(4) != 0) {
            const auto next = network().links.lower_bound({nodes.back(), below(nodeIds)});
            const bool leadsOn = next != network().links.end() && next->first.first == nodes.back();
            nodes.push_back(leadsOn && below(16) ? next->first.second : id(nodeIds));
        }
        return newIntArray(env, nodes);
    }

    // --- calls ---

    Call anyCall()
    {
        const int kind = below(16);
        return kind < 3    ? addition()
               : kind < 7  ? placement()
               : kind < 10 ? removal()
               : kind < 13 ? computation()
                           : protection();
    }

    Call addition()
    {
        const jint link = id(nodeIds * nodeIds), src = id(nodeIds), dst = id(nodeIds);
        if (below(3) == 0)
            return [=, this](Network &n) {
                CALL(addNode, src);
                n.nodes.insert(src);
            };
        const jfloatArray cap = row({"cap", {-1, infinite}, {NAN}}, std::max(NBOA, 1));
        const jobjectArray rbw =
            matrix({"rbw", {0}, {-1, NAN, infinite}}, std::max(NBOA, 1), std::max(NBPL, 1));
        return [=, this](Network &n) {
            CALL(addLink, link, 0, src, dst, cap, rbw, nullptr, nullptr, nullptr);
            n.links[{src, dst}] = link;
        };
    }

    Call placement()
    {
        const jint lsp = id(lspIds), primary = anyLsp(), pl = level(), oa = classType();
        const jintArray path = flawed("path") ? nullptr : walk();
        const jfloat bw = bandwidth("bw");
        const int kind = below(4);
        return [=, this](Network &n) {
            if (kind < 2)
                CALL(addLSP, lsp, path, pl, oa, bw);
            else
                CALL(addBackupLSP, lsp, primary, path, pl, oa, bw, kind == 2);
            n.lsps.insert(lsp);
        };
    }

    Call removal()
    {
        const jint lsp = anyLsp(), src = id(nodeIds), dst = id(nodeIds), kind = below(32);
        return [=, this](Network &n) {
            if (kind == 0) {
                CALL(removeNode, src);
                n.nodes.erase(src);
                std::erase_if(n.links, [&](const auto &link) {
                    return link.first.first == src || link.first.second == src;
                });
            } else if (kind < 4) {
                CALL(removeLink, src, dst);
                n.links.erase({src, dst});
            } else if (kind < 8) {
                CALL(printTarnexDB);
            } else {
                CALL(removeLSP, lsp);
                n.lsps.erase(lsp);
            }
        };
    }

    Call computation()
    {
        const jint lsp = id(lspIds), src = id(nodeIds), dst = id(nodeIds), pl = level();
        const jint oa = classType(), flags = below(4);
        const jfloat bw = bandwidth("reservation");
        return [=, this](Network &n) {
            const jintArray path = CALL(computePath, lsp, src, dst, 0, 0, 0, oa, pl, bw, nullptr,
                                        flags & 1, flags > 1);
            if (!isGiven(path))
                return;
            const std::vector<jint> nodes = valuesOf(path);
            EXPECT_TRUE(nodes.front() == src && nodes.back() == dst && areLinked(nodes, n));
            if (flags & 1)
                n.lsps.insert(lsp);
            if (const LocalRef<jintArray> gone{env, preempted()}) {
                for (const jint id : valuesOf(gone.get()))
                    EXPECT_EQ(n.lsps.erase(id), 1U) << id;
            }
        };
    }

    Call protection()
    {
        const jint primary = anyLsp(), type = below(3), flags = below(4);
        isProtection = flags & 1;
        backupIds.clear();
        for (int i = below(8); i > 0; --i)
            backupIds.push_back(id(lspIds));
        const bool isLost = flags & 1 ? flawed("backuplspIds") : below(48) == 0;
        const jintArray ids = isLost ? nullptr : newIntArray(env, backupIds);
        return [=, this](Network &n) {
            const jobjectArray paths =
                CALL(computeBackupPath, primary, ids, type, flags & 1, flags > 1);
            for (jsize i = 0; isGiven(paths) && i < env->GetArrayLength(paths); ++i) {
                const LocalRef<jobject> path{env, env->GetObjectArrayElement(paths, i)};
                EXPECT_TRUE(areLinked(valuesOf(static_cast<jarray>(path.get())), n));
                if (flags & 1)
                    n.lsps.insert(backupIds[static_cast<std::size_t>(i)]);
            }
        };
    }

    /** Whether a call has a result, as it must on a live session when nothing is thrown. */
    bool isGiven(jobject result)
    {
        EXPECT_EQ(result != nullptr, live.contains(target) && !env->ExceptionCheck());
        return result != nullptr;
    }

    static bool areLinked(const std::vector<jint> &path, const Network &n)
    {
        return std::ranges::adjacent_find(path, [&](jint src, jint dst) {
                   return !n.links.contains({src, dst});
               }) == path.end();
    }

    /** Opens a session or kills one; for some thousand calls mostly the one, then the other. */
    Call sessionCall()
    {
        const bool fills = calls / 8192 % 2 == 0;
        if (below(8) == (fills ? 0 : 1) || (!fills && below(4) != 0))
            return [this](Network &) {
                CALL(killTarnex);
                live.erase(target);
            };
        return opening();
    }

    Call opening()
    {
        isOpening = true;
        const jint classes = count("nbOA"), levels = count("nbPL");
        const auto height = std::clamp(classes, 1, MAXOA), width = std::clamp(levels, 1, MAXPL);
        const jobjectArray prices =
            matrix({"reroutingScorecoef", {-1, NAN, infinite}, {}}, height, width);
        std::vector<jfloat> w(7);
        for (jfloat &weight : w)
            weight = below(3) ? 0 : number(2);
        const int flags = below(16);
        return [=, this](Network &) {
            CALL(initTarnex, classes, levels, flags & 1, flags > 7, (flags & 6) != 0, w[0], w[1],
                 w[2], w[3], w[4], w[5], w[6], prices);
            if (env->ExceptionCheck() || live.size() == maxSessions)
                return;
            do
                lastOpened = (lastOpened + 1) % maxSessions;
            while (live.contains(lastOpened));
            EXPECT_EQ(env->GetIntField(engine, sessId), lastOpened);
            populate(live[lastOpened]);
        };
    }

    /** Adds every node and link there may be, and the last LSP, to a session without them. */
    void populate(Network &n)
    {
        const LocalRef<jfloatArray> cap{env, floats(std::vector<jfloat>(MAXOA, 7))};
        const LocalRef<jintArray> path{env, newIntArray(env, {})};
        CALL(addLSP, lspIds - 1, path.get(), 0, 0, 0);
        n.lsps.insert(lspIds - 1);
        for (jint src = 0; src < nodeIds; ++src) {
            CALL(addNode, src);
            n.nodes.insert(src);
        }
        for (jint src = 0; src < nodeIds; ++src) {
            for (jint dst = 0; dst < nodeIds; ++dst) {
                const jint link = n.links[{src, dst}] = src * nodeIds + dst;
                CALL(addLink, link, 0, src, dst, cap.get(), zeros, nullptr, nullptr, nullptr);
            }
        }
    }

    /** Makes every session empty. */
    void strip()
    {
        for (auto &[slot, network] : live) {
            env->SetIntField(engine, sessId, slot);
            for (const jint node : network.nodes) {
                CALL(removeNode, node);
                takeException(); // when the id of one of its links is too large for a table
            }
            for (const jint lsp : network.lsps) {
                CALL(removeLSP, lsp);
                takeException(); // as the links of its path are gone
            }
            network = {};
            EXPECT_EQ(networkOf(slot), network);
        }
    }

    const unsigned wanted = setting("TARNEX_FUZZ_CALLS", 20'000);
    std::mt19937_64 rng{setting("TARNEX_FUZZ_SEED", 1)};
    std::map<int, Network> live;
    int lastOpened = lastSession, target = -1, favourite = -1;
    unsigned calls = 0;
    bool isOpening = false, isProtection = false;
    std::vector<const char *> flaws; ///< names of the arguments outside the contract
    std::vector<jint> backupIds;     ///< for the backups that are asked for
};

TEST_F(Fuzz, CallsDoWhatTheModelSays)
{
    const auto start = std::chrono::steady_clock::now();
    run(32, wanted, setting("TARNEX_FUZZ_SECONDS", 0));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("%u calls, %.0f per second\n", calls, calls / taken.count());
}

TEST_F(Fuzz, LongRunsKeepTheirMemory)
{
    while (live.size() < maxSessions)
        step(&Fuzz::opening);
    for (int tooMany = 0; tooMany < 8; ++tooMany)
        step(&Fuzz::opening);
    strip();
    const Long held = bytesHeld();
    for (int round = 0; round < 5; ++round) {
        for (auto &[slot, network] : live) {
            env->SetIntField(engine, sessId, slot);
            populate(network);
        }
        run(0, wanted / 5);
        strip();
        EXPECT_EQ(bytesHeld(), held) << "round " << round;
    }
}

} // namespace
