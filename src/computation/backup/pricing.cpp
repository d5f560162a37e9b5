#include "computation/backup/pricing.h"

#include "computation/backup/cost.h"
#include "database/reservation.h"
#include "error/report.h"

#include <cassert>
#include <cstring>

namespace
{

constexpr Unit here{"computation/backup/backup"};

/** Appends what `lsp` changes on a link to an effect with the same amounts. */
void append(const DataBase &db, Long src, Long dst, const LSPView &lsp, Effect &effect)
{
    Effect added;
    effectOf(db, src, dst, lsp, SETUP, added);
    effect.concerned = effect.concerned || added.concerned;
    effect.flaw = std::max(effect.flaw, added.flaw);
    effect.level = added.level;
    std::ranges::copy(added.own, effect.own);
    for (const SlotChange &change : added.slots.all()) {
        if (!effect.slots.append(change))
            effect.flaw = EffectFlaw::noMemory;
    }
}

} // namespace

LinkPricing::LinkPricing(DataBase &database, const DBLabelSwitchedPath &protectedLSP,
                         const BackupDemand &backupDemand, BackupType backupType)
    : db(database), primary(protectedLSP), demand(backupDemand), type(backupType),
      bandwidth(totalBandwidth(protectedLSP)), needs(database, backupDemand)
{
}

double LinkPricing::price(Long position, Long start, std::span<const LSPRequest> placed) const
{
    const BackupIndex &index = db.backups;
    if (index.isAsked[position])
        return priceExactly(position, start, placed);
    const BackupFigures &own = index.figures[demand.oa][position];
    const double reserved = reservedWith(own, needs.on(position));
    const unsigned others = index.overfull[position] & ~(1U << demand.oa);
    double cost = infeasible;
    if (!(reserved > own.capacity) && others == 0) {
        double after = 0.0;
        double before = 0.0;
        for (int oa = 0; oa < MAXOA; ++oa) {
            if (!index.figures[oa])
                continue;
            const BackupFigures &figures = index.figures[oa][position];
            after += oa == demand.oa ? reserved : figures.derived;
            before += figures.stored;
        }
        const Long dst = db.index.nodeIds[index.destination[position]];
        cost = costOf(before, after, hopFactor(primary, dst), bandwidth);
    }
    assert(cost == priceExactly(position, start, placed));
    return cost;
}

void LinkPricing::placeOn(Long position)
{
    BackupIndex &index = db.backups;
    if (index.isAsked[position])
        return;
    noteStale(index, position);
    BackupFigures &own = index.figures[demand.oa][position];
    const double *atFailure = needs.on(position);
    own.derived = reservedWith(own, atFailure);
    for (int p = 0; p < MAXPL; ++p)
        own.largest[p] = std::max(own.largest[p], atFailure[p]);
    for (BackupFigures *figures : index.figures) {
        if (figures)
            figures[position].stored = figures[position].derived;
    }
}

/** What the class type would reserve on a link, over all levels. */
double LinkPricing::reservedWith(const BackupFigures &figures, const double *atFailure) const
{
    bool isShared = true;
    for (int p = 0; p < MAXPL; ++p)
        isShared = isShared && !(figures.largest[p] < atFailure[p]);
    if (isShared)
        return figures.derived;
    double reserved = 0.0;
    double below = 0.0;
    for (int p = 0; p < MAXPL; ++p) {
        const double largest = std::max(figures.largest[p], atFailure[p]);
        reserved += figures.pbw[p] + largest - below;
        below = largest;
    }
    return reserved;
}

/** The price from the stored tables, with the effects of the placed backups and this one on it. */
double LinkPricing::priceExactly(Long position, Long start,
                                 std::span<const LSPRequest> placed) const
{
    DBLink &link = *db.backups.links[position];
    const Long src = DBgetLinkSrc(&db, link.id);
    const Long dst = DBgetLinkDst(&db, link.id);
    LSPView lsp{.path = {},
                .primPath = inUse(primary.path),
                .bw = primary.bw,
                .precedence = demand.level,
                .type = type,
                .noContentionId = -1};
    Effect effect;
    for (auto req = placed.rbegin(); req != placed.rend(); ++req) {
        lsp.path = inUse(req->path);
        if (hasHop(lsp.path, src, dst))
            append(db, src, dst, lsp, effect);
    }
    double now[MAXOA][MAXPL];
    if (effect.concerned)
        reservationWith(db, link, effect, now);
    else
        std::memcpy(now, link.state.rbw, sizeof now);

    const ReducedPath reduced{start, src, dst};
    lsp.path = reduced.path();
    append(db, src, dst, lsp, effect);
    if (effect.flaw != EffectFlaw::none) {
        here.push(WARNING, "Error while computing new link state in %s at line %d");
        return infeasible;
    }
    double then[MAXOA][MAXPL];
    reservationWith(db, link, effect, then);
    return costOf(primary, dst, link.state.cap, now, then);
}
