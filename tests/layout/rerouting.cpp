#include "rerouting/rerouting.h"

#include "layout/agreed.h"

TEST(Layout, Rerouting)
{
    expectAgreed<int(int, DBLinkState *, DBLSPList *, double *, LongList *)>(chooseReroutedLSPs);
    expectAgreed<double(LSPRequest *, double *, DBLinkState *, int)>(makeRerouteScore);
}
