#include "database/reservations/effect.h"

#include "common/records.h"
#include "error/report.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

constexpr Unit here{"database/database"};

using Path = std::span<const Long>;

/** Where `node` first stands at or after `from`; -1 when it does not. */
std::ptrdiff_t findNode(Path path, Long node, std::ptrdiff_t from = 0)
{
    const auto found = std::find(path.begin() + from, path.end(), node);
    return found == path.end() ? -1 : found - path.begin();
}

std::ptrdiff_t lastPosition(Path path) { return static_cast<std::ptrdiff_t>(path.size()) - 1; }

Long nodeOn(Path path, std::ptrdiff_t position) { return path[static_cast<std::size_t>(position)]; }

/** Position of the hop src->dst, judged at the first occurrence of `src`; -1 when it is no hop. */
std::ptrdiff_t hopPosition(Path path, Long src, Long dst)
{
    const std::ptrdiff_t k = findNode(path, src);
    const bool isHop = k >= 0 && k < lastPosition(path) && nodeOn(path, k + 1) == dst;
    return isHop ? k : -1;
}

/** The LSP's bandwidth that comes on top of its partner's on a link they share. */
double partnerAmount(const LSPView &lsp, const DBLabelSwitchedPath &partner, int oa)
{
    if (lsp.precedence != partner.precedence)
        return lsp.bw[oa];
    return std::max(0.0, lsp.bw[oa] - partner.bw[oa]);
}

/** Reports what growing a table for the slot of such a link would. */
void reportTooLong()
{
    Scoped<DoubleVec, dblVecEnd> table;
    if (dblVecInit(&table, 0) == 0)
        static_cast<void>(dblVecResize(&table, std::numeric_limits<Long>::max()));
}

/** Builds one effect; a helper that meets a flaw notes it and returns false. */
class EffectBuilder
{
public:
    EffectBuilder(const DataBase &database, Long source, Long destination, const LSPView &view,
                  Effect &result)
        : db(database), src(source), dst(destination), lsp(view), effect(result)
    {
    }

    void build(operation op)
    {
        const bool onPath = hopPosition(lsp.path, src, dst) >= 0;
        if (onPath && lsp.noContentionId >= 0)
            findPartner();
        const std::ptrdiff_t primHop =
            isBackup(lsp.type) ? hopPosition(lsp.primPath, src, dst) : -1;
        effect.concerned = onPath || primHop >= 0;
        if (!effect.concerned || !checkArguments(op))
            return;
        removes = op == REMOVE;
        setAmounts(removes ? -1.0 : 1.0);
        if (lsp.type == localBackupLSP)
            localBackup(onPath, primHop);
        else if (lsp.type == globalBackupLSP)
            globalBackup(onPath, primHop);
        else
            primary();
    }

private:
    bool stop(EffectFlaw flaw)
    {
        effect.flaw = flaw;
        return false;
    }

    void findPartner()
    {
        partner = lspAt(db.lspVec, lsp.noContentionId);
        effect.partnerMissing = !partner;
        rerouting = partner && hopPosition(inUse(partner->path), src, dst) >= 0;
    }

    bool checkArguments(operation op)
    {
        if (op != SETUP && op != REMOVE)
            return stop(EffectFlaw::unknownOperation);
        return (lsp.precedence >= 0 && lsp.precedence < MAXPL) || stop(EffectFlaw::wrongLevel);
    }

    void setAmounts(double mult)
    {
        effect.level = lsp.precedence;
        for (int oa = 0; oa < MAXOA; ++oa) {
            effect.own[oa] = mult * lsp.bw[oa];
            effect.partner[oa] = rerouting ? mult * partnerAmount(lsp, *partner, oa) : 0.0;
        }
    }

    bool primary()
    {
        std::ranges::copy(rerouting ? effect.partner : effect.own, effect.primary);
        if (partner && !checkLinks(inUse(partner->path)))
            return false;
        for (std::size_t i = 0; !db.hasPrimariesAlone && i + 1 < lsp.path.size(); ++i) {
            const bool shared =
                rerouting && hasHop(inUse(partner->path), lsp.path[i], lsp.path[i + 1]);
            if (!change(lsp.path[i], lsp.path[i + 1], FailureTable::freed, shared, 1))
                return false;
        }
        return true;
    }

    bool localBackup(bool onPath, std::ptrdiff_t primHop)
    {
        const std::ptrdiff_t b = firstProtected();
        if (b < 0 || b == lastPosition(lsp.primPath))
            return stop(EffectFlaw::noProtectedLink);
        const Long head = nodeOn(lsp.primPath, b);
        const Long tail = nodeOn(lsp.primPath, b + 1);
        if (!checkLink(head, tail) ||
            (onPath && !change(head, tail, FailureTable::backup, rerouting, 1)))
            return false;
        const std::ptrdiff_t e = findNode(lsp.primPath, lsp.path.back(), b);
        const bool bypassed = primHop >= b && primHop < e;
        return primHop < 0 || bypassed || change(head, tail, FailureTable::freed, rerouting, -1);
    }

    bool globalBackup(bool onPath, std::ptrdiff_t primHop)
    {
        const std::ptrdiff_t b = firstProtected();
        if (b < 0)
            return stop(EffectFlaw::noProtectedLink);
        if (onPath && !changeHops(b, lastPosition(lsp.primPath), FailureTable::backup, 1))
            return false;
        return primHop < 0 || changeHops(0, b, FailureTable::freed, -1);
    }

    /** Position on the protected path at which the backup starts; -1 when it is not on it. */
    std::ptrdiff_t firstProtected() const
    {
        return lsp.path.empty() ? -1 : findNode(lsp.primPath, lsp.path.front());
    }

    bool changeHops(std::ptrdiff_t from, std::ptrdiff_t to, FailureTable table, signed char sign)
    {
        for (std::ptrdiff_t i = from; i < to; ++i) {
            if (!change(nodeOn(lsp.primPath, i), nodeOn(lsp.primPath, i + 1), table, rerouting,
                        sign))
                return false;
        }
        return true;
    }

    bool change(Long head, Long tail, FailureTable table, bool shared, signed char sign)
    {
        const DBLink *link = linkAt(db.linkTab, head, tail);
        if (!link)
            return stopAt(head, tail);
        if (link->id >= maxSlots) // never set up, so there is nothing to remove
            return removes || stop(EffectFlaw::tableTooLong);
        return effect.slots.append({link->id, table, shared, sign, 0}) ||
               stop(EffectFlaw::noMemory);
    }

    bool checkLink(Long head, Long tail)
    {
        return linkAt(db.linkTab, head, tail) || stopAt(head, tail);
    }

    bool checkLinks(Path path)
    {
        for (std::size_t i = 0; i + 1 < path.size(); ++i) {
            if (!checkLink(path[i], path[i + 1]))
                return false;
        }
        return true;
    }

    bool stopAt(Long head, Long tail)
    {
        effect.missingHop[0] = head;
        effect.missingHop[1] = tail;
        return stop(EffectFlaw::noLink);
    }

    const DataBase &db;
    Long src;
    Long dst;
    const LSPView &lsp;
    Effect &effect;
    const DBLabelSwitchedPath *partner = nullptr;
    bool removes = false;
    bool rerouting = false; ///< whether the link is also a hop of the partner
};

} // namespace

SlotChanges::~SlotChanges()
{
    if (items != inlineItems.data())
        myfree(items);
}

bool SlotChanges::reserve(std::size_t changes)
{
    if (changes <= capacity)
        return true;
    const bool isInline = items == inlineItems.data();
    const std::size_t bytes = changes * sizeof(SlotChange);
    auto *larger = static_cast<SlotChange *>(isInline ? mymalloc(bytes) : myrealloc(items, bytes));
    if (!larger)
        return false;
    if (isInline)
        std::copy_n(items, count, larger);
    items = larger;
    capacity = changes;
    return true;
}

bool SlotChanges::append(SlotChange change)
{
    if (count == capacity && !reserve(2 * capacity))
        return false;
    change.order = static_cast<Long>(count);
    items[count++] = change;
    return true;
}

void SlotChanges::sortBySlot()
{
    std::sort(items, items + count, [](const SlotChange &a, const SlotChange &b) {
        return std::pair{a.slot, a.order} < std::pair{b.slot, b.order};
    });
    filter = 0;
    for (const SlotChange &change : all())
        filter |= std::uint64_t{1} << (change.slot & 63);
}

std::span<const SlotChange> SlotChanges::of(Long slot) const
{
    const SlotChange *end = items + count;
    const auto isBefore = [](const SlotChange &change, Long wanted) {
        return change.slot < wanted;
    };
    const SlotChange *first = std::lower_bound(items, items + count, slot, isBefore);
    const SlotChange *last = first;
    while (last != end && last->slot == slot)
        ++last;
    return {first, last};
}

LSPView viewOf(const DBLabelSwitchedPath &lsp)
{
    return {inUse(lsp.path), inUse(lsp.primPath), lsp.bw, lsp.precedence,
            lsp.type,        lsp.noContentionId};
}

bool hasHop(std::span<const Long> path, Long src, Long dst)
{
    const std::array hop{src, dst};
    return std::search(path.begin(), path.end(), hop.begin(), hop.end()) != path.end();
}

void effectOf(const DataBase &db, Long src, Long dst, const LSPView &lsp, operation op,
              Effect &effect)
{
    effect.partnerMissing = false;
    effect.flaw = EffectFlaw::none;
    effect.slots.clear();
    std::ranges::fill(effect.primary, 0.0);
    EffectBuilder{db, src, dst, lsp, effect}.build(op);
}

const Effect &LinkEffects::on(Long src, Long dst)
{
    if (isForAll) {
        effect.concerned = hopPosition(lsp.path, src, dst) >= 0;
        return effect;
    }
    effectOf(db, src, dst, lsp, op, effect);
    effect.slots.sortBySlot();
    isForAll =
        effect.concerned && effect.isApplicable() && !isBackup(lsp.type) && lsp.noContentionId < 0;
    return effect;
}

int report(const Effect &effect)
{
    if (effect.partnerMissing)
        here.push(WARNING, "Cannot find the old LSP in %s at line %d");
    switch (effect.flaw) {
    case EffectFlaw::none:
        return 0;
    case EffectFlaw::unknownOperation:
        return here.fail("Bad argument (unknown operation) in %s at line %d");
    case EffectFlaw::wrongLevel:
        return here.fail("Bad argument (wrong index) in %s at line %d");
    case EffectFlaw::noProtectedLink:
        return here.fail("Cannot determine the link to protect in %s at line %d");
    case EffectFlaw::noLink:
        if (effect.missingHop[0] < 0 || effect.missingHop[1] < 0)
            here.push(CRITICAL, "Bad argument (NULL or negative value) in %s at line %d");
        return here.fail("Cannot determine link ID in %s at line %d");
    case EffectFlaw::tableTooLong:
        reportTooLong();
        return here.fail("Critical lack of memory in %s at line %d");
    case EffectFlaw::noMemory:
        return here.fail("Critical lack of memory in %s at line %d");
    }
    return -1;
}
