/* What replacing stored states and too large link ids do. */
#include "admission/admission.h"
#include "database/books/change.h"
#include "support/engine_test.h"
#include "support/random_network.h"

namespace
{

using namespace property;

using States = EngineTest;

TEST_F(States, KeepSlotsBeyondTheStateThatReplacesThem)
{
    const Owned<DataBase, DBdestroy> db{DBnew(0)};
    ASSERT_EQ(addNetwork(db.get(), networkOf("0:0-1")), 0);
    const State longer{DBlinkStateNew()};
    const State shorter{DBlinkStateNew()};
    ASSERT_EQ(dblVecSet(&longer->bbw[1][2], 0, 3.0) | dblVecSet(&longer->bbw[1][2], 4, 5.0), 0);
    shorter->cap[1] = 7.0;
    ASSERT_EQ(DBsetLinkState(db.get(), 0, 1, longer.get()), 0);
    ASSERT_EQ(DBsetLinkState(db.get(), 0, 1, shorter.get()), 0);
    const DBLinkState &state = storedState(db.get(), {0, 1});
    const auto kept = slots(state.bbw[1][2]);
    EXPECT_EQ((std::vector(kept.begin(), kept.end())), (std::vector{0.0, 0.0, 0.0, 0.0, 5.0}));
    EXPECT_EQ(state.cap[1], 7.0);
}

TEST_F(States, RefuseTheFirstIdWithoutASlotAsTablesThatCannotGrow)
{
    constexpr Long first = 268435453; // one slot more does not fit the 31 bits of a block's size
    const Owned<DataBase, DBdestroy> db{DBnew(0)};
    const Owned<LongList, longVecDestroy> preempted{longVecNew(-1)};
    ASSERT_EQ(addNetwork(db.get(), {{0, 1}, {{first, 0, 1}}}), 0);
    const LspRecord lsp = recordOf({.id = 1, .bw = {1.0}, .path = {0, 1}});
    expectRefused({noList, noMemory + inDatabase,
                   "Unable to update link state in predicate/predicate",
                   "LSP refused by the predicate" + inDatabase},
                  DBaddLSP(db.get(), lsp.get(), preempted.get()));
}

} // namespace
