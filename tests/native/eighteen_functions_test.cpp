/* Every native method with a caller that has the eighteen functions of its table and no others. */
#include "native/native_test.h"
#include "support/memory_probe.h"

#include <cmath>

namespace
{

class EighteenFunctions : public NativeTest
{
protected:
    struct Row {
        const char *name;
        std::function<jobject()> call;
        std::string outcome;                   ///< what is thrown, else what is returned
        std::function<void()> prepare = [] {}; ///< before the call
        bool mayStay = false;                  ///< whether what was added before a failure stays
        const char *partial = nullptr;         ///< message that excuses the rest of a change
    };
    using Contents = std::tuple<Network, std::string, int>;
    using State = std::tuple<Contents, jint, ThingPtr>;

    Contents contents() const { return {networkOf(slot), dumpOf(slot), nbSessions}; }

    State state() const { return {contents(), Caller::at(engine).sessId, Caller::at(engine).lsps}; }

    /** Makes the call on a session of its own, where `refuse` takes effect; what came of it. */
    std::string outcomeOf(
        const Row &row, const std::function<void()> &refuse = [] {})
    {
        killAll();
        EXPECT_EQ(bytesHeld(), bytesBefore);
        start();
        row.prepare();
        caller.finish();
        before = state();
        refuse();
        return outcomeHere(row);
    }

    std::string outcomeHere(const Row &row)
    {
        std::string outcome;
        caller.thrown.clear();
        output = printed([&] { outcome = caller.outcome(engine, row.call()); });
        return outcome;
    }

    /** Makes the call with a fault and again once memory is back; false: there was no fault. */
    bool survives(const Row &row, int nth, Lasting lasting, const Contents &wanted)
    {
        std::unique_ptr<MemoryProbe> probe;
        const std::string outcome = outcomeOf(row, [&] {
            probe = std::make_unique<MemoryProbe>(nth, lasting);
            saveCntx(slot);
        });
        const bool faulted = probe->faulted();
        probe.reset();
        const std::string trail = messages();
        const bool threw = !caller.thrown.empty();
        if (!threw && trail.empty()) { // no fault, or one in what only spares work
            EXPECT_EQ(outcome, row.outcome);
            EXPECT_TRUE(contents() == wanted);
            return faulted;
        }
        EXPECT_TRUE(faulted) << trail;
        if (row.mayStay && !threw && state() != before) { // backups that do not know of each other
            EXPECT_TRUE(networkOf(slot) == std::get<Network>(wanted));
            return faulted;
        }
        const bool isPartial = row.partial && trail.find(row.partial) != std::string::npos;
        EXPECT_TRUE(isPartial || state() == before) << trail;
        takeBack(std::get<Network>(std::get<Contents>(before)));
        outcomeHere(row);
        EXPECT_EQ(caller.thrown, "");
        EXPECT_TRUE(contents() == wanted);
        return faulted;
    }

    /** Removes what a call that failed has added. */
    void takeBack(const Network &earlier)
    {
        const Network now = networkOf(slot);
        for (const jint id : now.lsps) {
            if (!earlier.lsps.contains(id))
                CALL(removeLSP, id);
        }
        for (const auto &[ends, id] : now.links) {
            if (!earlier.links.contains(ends))
                CALL(removeLink, ends.first, ends.second);
        }
    }

    void prepareRefusal()
    {
        // a backup larger than its primary reserves on 0-1 at a level where no LSP can give way
        for (const jint id : {1, 2})
            CALL(removeLSP, id);
        CALL(removeLink, 0, 3);
        link(9, 1, 4);
        link(10, 4, 2);
        CALL(addLSP, 1, path, 0, 0, 5);
        CALL(addBackupLSP, 2, 1, caller.ints({1, 4, 2}), 1, 0, 8, true);
    }

    template <class Method>
    static std::function<jobject()> silent(Method method)
    {
        return [method] {
            method();
            return nullptr;
        };
    }

    State before;
    std::string output;
    const std::string contract = "IllegalArgumentException: ";
    const std::vector<Row> table{
        {"open", silent([this] { open(); }), ""},
        {"open with too many classes",
         silent([this] { CALL(initTarnex, 9, 3, 0, 1, 1, 0, 0, 0, 0, 0, 0, 1, zeros); }),
         contract + "nbOA must lie between 1 and 8, but is 9"},
        {"open with a short row", silent([this] {
             CALL(initTarnex, 2, 3, 0, 1, 1, 0, 0, 0, 0, 0, 0, 1, caller.rows({{1, 2, 3}, {1}}));
         }),
         contract + "reroutingScorecoef[1] needs 3 elements or more, but has 1"},
        {"kill", silent([this] { CALL(killTarnex); }), ""},
        {"print", silent([this] { CALL(printTarnexDB); }), ""},
        {"add a node", silent([this] { CALL(addNode, 9); }), ""},
        {"add a node again", silent([this] { CALL(addNode, 0); }), "AddDBException"},
        {"add a link", silent([this] { link(40, 0, 4); }), "", [] {}, false,
         "Link addition uncomplete"},
        {"add a link again", silent([this] { link(40, 0, 1); }), "AddDBException"},
        {"add a link with a strange reservation", silent([this] {
             CALL(addLink, 40, 0, 0, 4, wide, caller.rows({{0, 0, 0}, {0, INFINITY, 0}}), {}, {},
                  {});
         }),
         contract + "rbw[1][1] must be a finite bandwidth of at least 0, but is inf"},
        {"add an LSP", silent([this] { CALL(addLSP, 30, detour, 0, 0, 1); }), ""},
        {"add an LSP without hops", silent([this] { CALL(addLSP, 30, caller.ints({}), 0, 0, 1); }),
         ""},
        {"add an LSP again", silent([this] { CALL(addLSP, 1, detour, 0, 0, 1); }),
         "AddDBException"},
        {"add an LSP at no level", silent([this] { CALL(addLSP, 30, detour, 8, 0, 1); }),
         contract + "PL must lie between 0 and 7, but is 8"},
        {"add a backup", silent([this] { CALL(addBackupLSP, 31, 1, detour, 0, 0, 4, 1); }), ""},
        {"add a backup of nothing", silent([this] { CALL(addBackupLSP, 31, 7, path, 0, 0, 4, 1); }),
         "AddDBException"},
        {"remove an LSP", silent([this] { CALL(removeLSP, 1); }), ""},
        {"remove no LSP", silent([this] { CALL(removeLSP, 7); }), "AddDBException"},
        {"remove a node", silent([this] { CALL(removeNode, 1); }), ""},
        {"remove no node", silent([this] { CALL(removeNode, 7); }), "AddDBException"},
        {"remove a link", silent([this] { CALL(removeLink, 0, 1); }), ""},
        {"remove no link", silent([this] { CALL(removeLink, 1, 0); }), "AddDBException"},
        {"path", [this] { return compute(33, 4, false, false); }, "0 3 2 "},
        {"room", [this] { return compute(33, 6, false, true); }, "0 1 2 lsps 1 2 ", [] {}, false,
         "Impossible to remove LSP"},
        {"placement", [this] { return compute(33, 6, true, true); }, "0 1 2 lsps 1 2 ", [] {},
         false, "Impossible to remove LSP"},
        {"room that is there", [this] { return compute(33, 1, false, true); }, "0 3 2 "},
        {"placement where room is", [this] { return compute(33, 1, true, true); }, "0 3 2 "},
        {"placement without preemption", [this] { return compute(33, 4, true, false); }, "0 3 2 "},
        {"no path", [this] { return compute(33, 10, true, true); }, "NoRouteToHostException"},
        {"no path without preemption", [this] { return compute(33, 6, false, false); },
         "NoRouteToHostException"},
        {"no placement without preemption", [this] { return compute(33, 6, true, false); },
         "NoRouteToHostException"},
        {"placement again", [this] { return compute(1, 1, true, false); }, "AddDBException"},
        {"room that is not there", [this] { return compute(33, 3, false, true); },
         "RoutingException", [this] { prepareRefusal(); }},
        {"placement without that room", [this] { return compute(33, 3, true, true); },
         "AddDBException", [this] { prepareRefusal(); }},
        {"path for a strange bandwidth", [this] { return compute(33, NAN, false, false); },
         contract + "reservation must be a finite bandwidth of at least 0, but is nan"},
        {"local backups", [this] { return protect(backups, 0, true, false); }, "0 3 2 | 1 3 2 | ",
         [] {}, true, "Impossible to add BACKUP LSP"},
        {"global backup", [this] { return protect(backups, 1, true, true); }, "0 3 2 | ", [] {},
         true},
        {"too few ids", [this] { return protect(caller.ints({34}), 0, true, true); },
         contract + "backuplspIds needs 2 elements or more, but has 1"},
        {"no ids", [this] { return protect(nullptr, 0, true, false); },
         contract + "backuplspIds must not be null"},
        {"no ids where none is used", [this] { return protect(nullptr, 1, false, true); },
         "0 3 2 | "},
        {"too few ids where none is used",
         [this] { return protect(caller.ints({34}), 0, false, true); }, "0 3 2 | 1 3 2 | "},
        {"backups again",
         [this] {
             return protect(caller.ints({1, 2}), 0, true, false);
         },
         "AddDBException"},
        {"no backups", [this] { return protect(backups, 1, true, false); },
         "NoRouteToHostException", [this] { CALL(removeLink, 3, 2); }},
    };
};

TEST_F(EighteenFunctions, ServeEveryMethod)
{
    int refusals = 0;
    for (const Row &row : table) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(outcomeOf(row), row.outcome);
        if (const ThingPtr preempted = Caller::at(engine).lsps) {
            for (const jint id : preempted->ints)
                EXPECT_FALSE(networkOf(slot).lsps.contains(id));
        }
        EXPECT_TRUE(row.outcome.find("Exception") == std::string::npos || state() == before);
        const std::string messagesLeft = messages();
        for (const char *function : {"GetFieldID", "FindClass", "NewIntArray", "NewObjectArray",
                                     "GetIntArrayElements", "GetFloatArrayElements"}) {
            for (int nth = 1;; ++nth) {
                SCOPED_TRACE(testing::Message() << function << ", call " << nth);
                const std::string outcome = outcomeOf(row, [&] { caller.refuse(function, nth); });
                if (!caller.endRefusal())
                    break;
                ++refusals;
                EXPECT_EQ(outcome, "");
                EXPECT_TRUE(row.mayStay || state() == before);
                const bool isClass = function == std::string("FindClass");
                EXPECT_EQ(messages(), isClass ? messagesLeft : "");
                EXPECT_EQ(output.ends_with("Unable to find the exception class, giving up\n"),
                          isClass);
            }
        }
        EXPECT_EQ(caller.misuse, std::vector<std::string>{});
    }
    EXPECT_GT(refusals, 90);
}

TEST_F(EighteenFunctions, SurviveEveryLackOfMemory)
{
    int faults = 0;
    for (const Row &row : table) {
        if (row.outcome.find("Exception") != std::string::npos)
            continue;
        outcomeOf(row);
        const Contents wanted = contents();
        for (const Lasting lasting : {Lasting::once, Lasting::fromThenOn}) {
            // a session's first block is its error stack, without which the process ends
            int nth = row.name == std::string("open") ? 2 : 1;
            for (bool faulted = true; faulted; ++nth) {
                SCOPED_TRACE(testing::Message() << row.name << ", allocation " << nth);
                faulted = survives(row, nth, lasting, wanted);
                faults += faulted;
            }
        }
    }
    EXPECT_GT(faults, 1500);
}

} // namespace
