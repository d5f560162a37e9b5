#include "admission/prefetch.h"

#include "common/records.h"

void prefetchRecord(const DBLink &link, const LSPView &lsp)
{
    const DBLinkState &state = link.state;
    const LinkSummary &summary = link.summary;
    __builtin_prefetch(&summary);
    __builtin_prefetch(&link.lspList);
    __builtin_prefetch(&link.number);
    __builtin_prefetch(state.cap);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (lsp.bw[oa] == 0.0)
            continue;
        __builtin_prefetch(&summary.needy[oa]);
        __builtin_prefetch(summary.largest[oa]);
        __builtin_prefetch(state.pbw[oa]);
        __builtin_prefetch(state.rbw[oa]);
        __builtin_prefetch(state.bbw[oa]);
        __builtin_prefetch(state.fbw[oa]);
    }
}

void prefetchChanges(const DBLink &link, const Effect &effect)
{
    const Long listed = link.lspList.top;
    __builtin_prefetch(link.lspList.cont);
    __builtin_prefetch(link.lspList.cont + listed / 2);
    for (int oa = 0; oa < MAXOA && effect.concerned; ++oa) {
        if (!effect.changes(oa))
            continue;
        const DoubleVec &backup = link.state.bbw[oa][effect.level];
        const DoubleVec &freed = link.state.fbw[oa][effect.level];
        for (const SlotChange &change : effect.slots.all()) {
            const DoubleVec &table = change.table == FailureTable::backup ? backup : freed;
            if (change.slot < table.size)
                __builtin_prefetch(table.cont + change.slot);
        }
    }
}

void prefetchListed(const DBLSPList &list)
{
    const auto lsps = inUse(list);
    if (lsps.empty())
        return;
    for (std::size_t quarter = 0; quarter < 4; ++quarter)
        __builtin_prefetch(lsps[lsps.size() / 4 * quarter]);
    __builtin_prefetch(lsps.back());
}
