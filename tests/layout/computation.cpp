#include "computation/computation.h"

#include "layout/agreed.h"

TEST(Layout, Computation)
{
    expectAgreed<LSPRequest *()>(lspRequestNew);
    expectAgreed<int(LSPRequest *)>(lspRequestInit, lspRequestEnd, lspRequestDestroy, getRequestSrc,
                                    getRequestDst);
    expectAgreed<int(LSPRequest *, LSPRequest *)>(lspRequestCopy);
    expectAgreed<int(LSPRequestList *, Long)>(lspRequestListInit, lspRequestListResize);
    expectAgreed<int(LSPRequestList *)>(lspRequestListEnd);
    expectAgreed<Long(LSPRequestList *)>(lspRequestListSize);
    expectAgreed<LSPRequest *(LSPRequestList *, Long)>(lspRequestListGet);
    expectAgreed<int(LSPRequestList *, LSPRequest *, Long)>(lspRequestListSet);
    static_cast<void>(LSPRequest{.id = 0,
                                 .primID = 0,
                                 .rerouteInfo = {.id = 0, .src = 0, .dst = 0},
                                 .precedence = 0,
                                 .bw = {},
                                 .forbidLinks = {},
                                 .path = {},
                                 .type = 0});
    static_cast<void>(LSPRequestList{.cont = nullptr, .size = 0});
}
