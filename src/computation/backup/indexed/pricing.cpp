#include "computation/backup/indexed/pricing.h"

#include "database/books/lookup.h"
#include "database/reservations/question.h"
#include "error/report.h"

#include <algorithm>
#include <iterator>

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
                         const BackupDemands &backupDemands, BackupType backupType)
    : db(database), index(database.backups), primary(protectedLSP), demands(backupDemands),
      type(backupType), bandwidth(totalBandwidth(protectedLSP)),
      least(costOf(0.0, 0.0, 1, bandwidth))
{
    for (std::size_t i = 0; i < demands.all().size(); ++i) {
        const BackupDemand &demand = demands.items[i];
        parts[i].emplace(Part{demand, FailureNeeds{db, demand}});
        ownClasses.set(demand.oa, true);
    }
}

void LinkPricing::layOut(Layout &layout)
{
    for (auto &part : demanded())
        part->needs.layOut(layout);
}

void LinkPricing::begin()
{
    for (auto &part : demanded()) {
        part->needs.begin();
        part->figures = index.figures[part->demand.oa];
        part->levels = index.levels[part->demand.oa];
    }
    isOneClassAlone = demands.size == 1 && primary.primPath.top == 0 &&
                      std::ranges::count(index.figures, nullptr) == std::ssize(index.figures) - 1;
}

void LinkPricing::protect(std::span<const Long> stretch)
{
    for (auto &part : demanded())
        part->needs.addUp(stretch);
}

/** Cost with every class type looked at. */
double LinkPricing::costInClasses(Long position) const
{
    if (!index.overfull[position].without(ownClasses).isEmpty())
        return infeasible;
    double after = 0.0;
    double before = 0.0;
    const std::optional<Part> *part = parts.data();
    for (int oa = 0; oa < MAXOA; ++oa) {
        const BackupFigures *ofClass = index.figures[oa];
        if (!ofClass)
            continue;
        double reserved = ofClass[position].derived;
        if (ownClasses.has(oa))
            reserved = (*part++)->reservedOn(position);
        if (ownClasses.has(oa) && reserved > ofClass[position].capacity)
            return infeasible;
        after += reserved;
        before += ofClass[position].stored;
    }
    const Long dst = db.index.nodeIds[index.destination[position]];
    return costOf(before, after, hopFactor(primary, dst), bandwidth);
}

void LinkPricing::setUpOn(Long position)
{
    if (index.isAsked[position])
        return;
    markStale(index, position);
    for (auto &part : demanded())
        part->setUpOn(position);
    for (BackupFigures *ofClass : index.figures) {
        if (ofClass)
            ofClass[position].stored = ofClass[position].derived;
    }
}

/** Has the link at a position carry what was priced there. */
void LinkPricing::Part::setUpOn(Long position)
{
    figures[position].derived = reservedOn(position);
    for (int p = 0; p < MAXPL; ++p)
        levels[position].largest[p] = std::max(levels[position].largest[p], needs.on(position)[p]);
    flatten(levels[position], figures[position]);
}

/** What the class type would reserve on a link, added up level by level. */
double LinkPricing::Part::reservedByLevel(Long position) const
{
    const double *atFailure = needs.on(position);
    double reserved = 0.0;
    double below = 0.0;
    for (int p = 0; p < MAXPL; ++p) {
        const double largest = std::max(levels[position].largest[p], atFailure[p]);
        reserved += levels[position].pbw[p] + largest - below;
        below = largest;
    }
    return reserved;
}

/** The price from the stored tables, with the effects of the earlier backups and this one on it. */
double LinkPricing::priceExactly(Long position, Long start,
                                 std::span<const LSPRequest> earlier) const
{
    DBLink &link = *index.links[position];
    const Long src = DBgetLinkSrc(&db, link.id);
    const Long dst = DBgetLinkDst(&db, link.id);
    LSPView lsp{.path = {},
                .primPath = inUse(primary.path),
                .bw = primary.bw,
                .precedence = demands.items[0].level,
                .type = type,
                .noContentionId = -1};
    Effect effect;
    for (std::size_t i = earlier.size(); i-- > 0;) {
        lsp.path = inUse(earlier[i].path);
        if (hasHop(lsp.path, src, dst))
            append(db, src, dst, lsp, effect);
    }
    double now[MAXOA][MAXPL];
    double then[MAXOA][MAXPL];
    effect.slots.sortBySlot();
    int result = reservationWithEffect(db, link, effect, now, nullptr);
    const ReducedPath reduced{start, src, dst};
    lsp.path = reduced.path();
    append(db, src, dst, lsp, effect);
    effect.slots.sortBySlot();
    result |= reservationWithEffect(db, link, effect, then, nullptr);
    if (result == 0)
        return costOf(primary, dst, link.state.cap, now, then);
    here.push(WARNING, "Error while computing new link state in %s at line %d");
    return infeasible;
}
