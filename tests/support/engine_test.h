/**
 * Base of the tests of the core: each gets a fresh error stack and must end with no message unread
 * and every counted byte given back. A trail is what failures left on the stack, oldest first, as
 * "<text> in <unit>", with the grade in front where it is not CRITICAL; taking it empties the
 * stack.
 */
#ifndef TARNEX_TESTS_SUPPORT_ENGINE_TEST_H
#define TARNEX_TESTS_SUPPORT_ENGINE_TEST_H

#include "common/common.h"
#include "common/records.h"
#include "error/error.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Trail = std::vector<std::string>;
using Trails = std::vector<Trail>;

inline const std::string inCommon = " in common/common";
inline const std::string inDatabase = " in database/database";
inline const std::string inTables = " in database/database_util";
inline const std::string inRequests = " in computation/computation";
inline const std::string inPrimary = " in computation/primary/primaryPath";
inline const std::string inBackup = " in computation/backup/backup";
inline const std::string inRerouting = " in rerouting/rerouting";
inline const std::string noArgument = "Bad argument (NULL)";
inline const std::string negativeIndex = "Bad argument (index < 0)";
inline const std::string noMemory = "Critical lack of memory";
inline const std::string noList = noMemory + inCommon;
inline const std::string listNotGrown = "Unable to resize long vector" + inCommon;

inline Trail takeTrail()
{
    static const char *const grades[] = {"[INFO] ", "[WARNING] ", "", "[PANIC] "};
    Trail trail;
    for (const ErrorElem &entry : std::span{errorManager.list, std::size_t(errorManager.top)}) {
        const std::string text = entry.message;
        trail.push_back(grades[entry.gravity] + text.substr(0, text.rfind(" at line ")));
    }
    errorManager.top = 0;
    return trail;
}

inline void expectTrail(const Trail &expected) { EXPECT_EQ(takeTrail(), expected); }
inline bool isRefusal(Long result) { return result == -1; }
inline bool isRefusal(const void *result) { return !result; }

/** Expects that each result is -1 or null and that each call left just that trail. */
template <class... Results>
void expectRefused(const Trail &trail, Results... results)
{
    EXPECT_TRUE((isRefusal(results) && ...)) << trail.back();
    Trail expected;
    for (std::size_t i = 0; i < sizeof...(results); ++i)
        expected.insert(expected.end(), trail.begin(), trail.end());
    expectTrail(expected);
}

class EngineTest : public testing::Test
{
protected:
    EngineTest() { errorInit(); }

    ~EngineTest() override
    {
        expectTrail({});
        errorDestroy();
        EXPECT_EQ(allocatedMemory, bytesBefore) << "counted bytes were not given back";
    }

    Long bytesBefore = allocatedMemory;
};

#endif
