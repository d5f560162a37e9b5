/* Every native method with a caller that has the eighteen functions of its table and no others. */
#include "native/native_test.h"

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
    };
    using State = std::tuple<Network, std::string, int, jint, ThingPtr>;

    State state() const
    {
        const Thing &object = Caller::at(engine);
        return {networkOf(slot), dumpOf(slot), nbSessions, object.sessId, object.lsps};
    }

    /** Makes the call on a session of its own; what came of it. */
    std::string outcomeOf(const Row &row, const std::string &refused = "", int nth = 0)
    {
        killAll();
        start();
        row.prepare();
        caller.finish();
        before = state();
        caller.refuse(refused, nth);
        std::string outcome;
        output = printed([&] { outcome = caller.outcome(engine, row.call()); });
        hasRefused = caller.endRefusal();
        return outcome;
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
    bool hasRefused = false;
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
        {"add a link", silent([this] { link(40, 0, 4); }), ""},
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
        {"room", [this] { return compute(33, 6, false, true); }, "0 1 2 lsps 1 2 "},
        {"placement", [this] { return compute(33, 6, true, true); }, "0 1 2 lsps 1 2 "},
        {"no path", [this] { return compute(33, 10, true, true); }, "NoRouteToHostException"},
        {"placement again", [this] { return compute(1, 1, true, false); }, "AddDBException"},
        {"room that is not there", [this] { return compute(33, 3, false, true); },
         "RoutingException", [this] { prepareRefusal(); }},
        {"path for a strange bandwidth", [this] { return compute(33, NAN, false, false); },
         contract + "reservation must be a finite bandwidth of at least 0, but is nan"},
        {"local backups", [this] { return protect(backups, 0, true, false); }, "0 3 2 | 1 3 2 | ",
         [] {}, true},
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
        EXPECT_TRUE(row.outcome.find("Exception") == std::string::npos || state() == before);
        const std::string messagesLeft = messages();
        for (const char *function : {"GetFieldID", "FindClass", "NewIntArray", "NewObjectArray",
                                     "GetIntArrayElements", "GetFloatArrayElements"}) {
            for (int nth = 1;; ++nth) {
                SCOPED_TRACE(testing::Message() << function << ", call " << nth);
                const std::string outcome = outcomeOf(row, function, nth);
                if (!hasRefused)
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

} // namespace
