#include "database/books/link_state.h"

#include "common/records.h"
#include "error/report.h"

#include <array>
#include <cstring>

namespace
{

constexpr Unit here{"database/database"};

using Family = DoubleVec (DBLinkState::*)[MAXOA][MAXPL];

constexpr std::array<Family, 4> families{&DBLinkState::bbw, &DBLinkState::remoteBbw,
                                         &DBLinkState::fbw, &DBLinkState::remoteFbw};
constexpr int pairs = MAXOA * MAXPL;

/** Vector of one family for the pair number oa * MAXPL + p. */
template <class State>
auto &vectorOf(State &ls, Family family, int pair)
{
    return (ls.*family)[pair / MAXPL][pair % MAXPL];
}

/** Releases the first `count` vectors in the order in which makeVectors makes them. */
void endVectors(DBLinkState &ls, int count)
{
    for (int i = 0; i < count; ++i)
        dblVecEnd(&vectorOf(ls, families[static_cast<std::size_t>(i / pairs)], i % pairs));
}

constexpr int allVectors = static_cast<int>(families.size()) * pairs;

/** Makes every vector with the default capacity; after a failure none is left. */
bool makeVectors(DBLinkState &ls)
{
    for (int i = 0; i < allVectors; ++i) {
        if (dblVecInit(&vectorOf(ls, families[static_cast<std::size_t>(i / pairs)], i % pairs),
                       -1) != 0) {
            endVectors(ls, i);
            return false;
        }
    }
    return true;
}

} // namespace

DBLinkState *DBlinkStateNew()
{
    auto *ls = static_cast<DBLinkState *>(mycalloc(1, sizeof(DBLinkState)));
    if (!ls)
        return here.null("Critical lack of memory in %s at line %d");
    if (!makeVectors(*ls)) {
        myfree(ls);
        return here.null("Unable to create link state in %s at line %d");
    }
    return ls;
}

int DBlinkStateInit(DBLinkState *ls)
{
    if (!ls)
        return here.fail("Bad argument (NULL) in %s at line %d");
    *ls = {};
    return makeVectors(*ls) ? 0 : here.fail("Unable to create link state in %s at line %d");
}

int DBlinkStateCopy(DBLinkState *dst, DBLinkState *src)
{
    if (!dst || !src)
        return here.fail("Bad argument (NULL) in %s at line %d");
    dst->color = src->color;
    std::memcpy(dst->cap, src->cap, sizeof dst->cap);
    std::memcpy(dst->rbw, src->rbw, sizeof dst->rbw);
    std::memcpy(dst->pbw, src->pbw, sizeof dst->pbw);
    int result = 0;
    for (int pair = 0; pair < pairs && result == 0; ++pair) {
        for (const Family family : families)
            result |= dblVecCopy(&vectorOf(*dst, family, pair), &vectorOf(*src, family, pair));
    }
    return result == 0 ? 0 : here.fail("Link state copy uncomplete in %s at line %d");
}

int DBlinkStateEnd(DBLinkState *ls)
{
    if (!ls)
        return here.fail("Bad argument (NULL) in %s at line %d");
    endVectors(*ls, allVectors);
    return 0;
}

int DBlinkStateDestroy(DBLinkState *ls) { return destroyRecord<DBlinkStateEnd>(ls); }
