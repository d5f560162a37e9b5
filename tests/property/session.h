/**
 * One engine session per property test, followed by a plain network. At its end every message must
 * have been asked for and every counted byte be released.
 */
#ifndef TARNEX_TESTS_PROPERTY_SESSION_H
#define TARNEX_TESTS_PROPERTY_SESSION_H

#include "admission/admission.h"
#include "common/setup.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "error/error.h"
#include "support/plain_evaluation.h"

#include <gtest/gtest.h>

namespace property
{

using Trail = std::vector<std::string>;

class Session : public ::testing::Test
{
protected:
    Session()
    {
        errorInit();
        tarnexConfig = {};
        COST = 0.0;
        db = DBnew(1);
        EXPECT_EQ(longVecInit(&preempted, -1), 0);
    }

    ~Session() override
    {
        expectTrail({});
        longVecEnd(&preempted);
        DBdestroy(db);
        errorDestroy();
        EXPECT_EQ(allocatedMemory, bytesBefore);
    }

    /** Expects and drops these messages, without their unit; a warning has '?' in front. */
    static void expectTrail(const Trail &expected)
    {
        Trail trail;
        for (const ErrorElem &entry : std::span{errorManager.list, std::size_t(errorManager.top)}) {
            const std::string text = entry.message;
            trail.push_back((entry.gravity == WARNING ? "?" : "") +
                            text.substr(0, text.rfind(" in ")));
        }
        errorManager.top = 0;
        EXPECT_EQ(trail, expected);
    }

    static NodePath idsIn(const LongList &list) { return {inUse(list).begin(), inUse(list).end()}; }

    void build(const NetworkPlan &plan)
    {
        ASSERT_EQ(addNetwork(db, plan), 0);
        for (const PlannedLink &link : plan.links)
            plain.add(link);
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

    Long bytesBefore = allocatedMemory;
    DataBase *db = nullptr;
    PlainNetwork plain;
    LongList preempted{};
};

} // namespace property

#endif
