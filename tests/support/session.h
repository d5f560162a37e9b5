/**
 * One engine session per test, followed by a plain network.
 */
#ifndef TARNEX_TESTS_SUPPORT_SESSION_H
#define TARNEX_TESTS_SUPPORT_SESSION_H

#include "admission/admission.h"
#include "common/setup.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "support/engine_test.h"
#include "support/plain_evaluation.h"

namespace property
{

class Session : public EngineTest
{
protected:
    Session()
    {
        tarnexConfig = {};
        COST = 0.0;
        EXPECT_EQ(longVecInit(&preempted, -1), 0);
    }

    ~Session() override
    {
        longVecEnd(&preempted);
        DBdestroy(db);
    }

    void build(const NetworkPlan &plan)
    {
        ASSERT_EQ(addNetwork(db, plan), 0);
        for (const PlannedLink &link : plan.links)
            plain.add(link);
    }

    /** Goes on with a network of its own. */
    void rebuild(const NetworkPlan &plan)
    {
        DBdestroy(db);
        db = DBnew(1);
        plain = {};
        build(plan);
    }

    /** Takes the link between two nodes away or, where there is none, adds one with this id. */
    void exchangeLink(const PlannedLink &link)
    {
        if (linkAt(db->linkTab, link.src, link.dst)) {
            ASSERT_EQ(DBremoveLink(db, link.src, link.dst), 0);
            return;
        }
        const State state{DBlinkStateNew()};
        std::ranges::fill(state->cap, link.capacity);
        ASSERT_EQ(DBaddLink(db, link.id, link.src, link.dst, state.get()), 0);
    }

    /** Adds to the engine and, what it admits, to the plain network. */
    int add(const PlannedLsp &lsp)
    {
        preempted.top = 0;
        const int result = DBaddLSP(db, recordOf(lsp).get(), &preempted);
        if (result == 0)
            plain.add(lsp);
        return result;
    }

    int remove(Long id)
    {
        plain.removeLsp(id);
        return DBremoveLSP(db, id);
    }

    /** Whether every stored state is, bit for bit, the plain one. */
    bool followsPlain() const
    {
        bool same = DBgetNbLinks(db) == static_cast<Long>(plain.links.size());
        for (const auto &[ends, link] : plain.links)
            same = same && areSame(storedState(db, ends), link.state);
        for (const auto &[id, lsp] : plain.lsps)
            same = same && DBgetLSP(db, id)->noContentionId == lsp.noContentionId;
        return same;
    }

    DataBase *db = DBnew(1);
    PlainNetwork plain;
    LongList preempted{};
};

/** Takes what the searches print. */
class Quiet
{
public:
    Quiet()
    {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
    }
    ~Quiet()
    {
        static_cast<void>(testing::internal::GetCapturedStdout());
        static_cast<void>(testing::internal::GetCapturedStderr());
    }
    Quiet(const Quiet &) = delete;
    Quiet &operator=(const Quiet &) = delete;
};

} // namespace property

#endif
