#include "predicate/predicate.h"

#include "layout/agreed.h"

TEST(Layout, Predicate)
{
    expectAgreed<bool(DataBase *, Long, Long, DBLinkState *, LSPRequest *, double *)>(
        isValidRequestLink);
    expectAgreed<bool(DataBase *, Long, Long, DBLinkState *, DBLabelSwitchedPath *, double *)>(
        isValidLSPLink);
    expectAgreed<bool(DBLinkState *, LSPRequest *, double *)>(capacityClause);
    expectAgreed<bool(DBLinkState *, LSPRequest *)>(colorClause);
}
