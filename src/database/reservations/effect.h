/**
 * What setting up or removing an LSP changes on one link.
 *
 * The effect is a list, in the order in which the changes apply: which slots of the link's failure
 * tables change, and by which amount per class type. Working it out touches no state and reports
 * nothing. Applying it to a state, and asking what it would give without applying it, both start
 * from the same list.
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_EFFECT_H
#define TARNEX_DATABASE_RESERVATIONS_EFFECT_H

#include "database/books/network.h"
#include "database/reservations/failure_tables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/** Setting an LSP up adds its amounts, removing it subtracts them. */
enum operation : int { SETUP = 0, REMOVE = 1 };

/** What the reservation rules read of an LSP; borrows the lists of the record it was made from. */
struct LSPView {
    std::span<const Long> path;     ///< node ids, ingress first
    std::span<const Long> primPath; ///< for a backup: path of the protected primary
    const double *bw;               ///< MAXOA bandwidths, per class type
    int precedence;                 ///< preemption level, 0 to MAXPL - 1
    DBLSPType type;                 ///< decides which tables change
    Long noContentionId;            ///< -1 when there is no partner
};

/** View of a stored or temporary record, valid as long as the record does not change. */
LSPView viewOf(const DBLabelSwitchedPath &lsp);

/** One change of one slot, in every class type. */
struct SlotChange {
    Long slot;          ///< id of the failing link
    FailureTable table; ///< `bbw` or `fbw`
    bool partnerAmount; ///< whether the partner amounts apply rather than the LSP's own
    signed char sign;   ///< +1 or -1, before the amount, which carries the operation's sign
    Long order;         ///< position among the changes, filled in by the list
};

/** The slot changes of one effect; a list of up to 64 needs no heap block. */
class SlotChanges
{
public:
    SlotChanges() = default;
    ~SlotChanges();
    SlotChanges(const SlotChanges &) = delete;
    SlotChanges &operator=(const SlotChanges &) = delete;

    /** Makes room for `changes` changes; false, with the list as it was, without memory. */
    [[nodiscard]] bool reserve(std::size_t changes);
    /** Appends a change; false without memory. */
    [[nodiscard]] bool append(SlotChange change);
    /** Empties the list and keeps its room. */
    void clear() { count = 0; }
    /** All changes, in the order in which they apply until sortBySlot is called. */
    std::span<const SlotChange> all() const { return {items, count}; }

    /** Brings the changes of each slot together, in the order in which they apply. */
    void sortBySlot();
    /** False only if no change is of this slot; after sortBySlot. */
    bool mayHave(Long slot) const { return (filter >> (slot & 63) & 1U) != 0; }
    /** The changes of one slot, in the order in which they apply; after sortBySlot. */
    std::span<const SlotChange> of(Long slot) const;

private:
    std::array<SlotChange, 64> inlineItems;
    SlotChange *items = inlineItems.data();
    std::size_t capacity = inlineItems.size();
    std::size_t count = 0;
    std::uint64_t filter = 0; ///< a bit for the last six bits of every slot, once sorted
};

/** Why an effect ends before all its changes are listed. */
enum class EffectFlaw : unsigned char {
    none,
    unknownOperation,
    wrongLevel,
    noProtectedLink, ///< the protected path does not show which link the backup protects
    noLink,          ///< a hop of the LSP or of its partner is not a link
    tableTooLong,    ///< a link's id is too large for a slot of any table
    noMemory
};

/** What one operation of one LSP changes on one link; all changes are at level `level`. */
struct Effect {
    bool concerned = false;      ///< false: the link carries and protects nothing of the LSP
    bool partnerMissing = false; ///< the LSP names a no-contention partner that is not stored
    EffectFlaw flaw = EffectFlaw::none;
    Long missingHop[2] = {};    ///< for `noLink`: the ends of the hop
    int level = 0;              ///< preemption level of every change
    double primary[MAXOA] = {}; ///< added to `pbw`, signed; 0 for a backup
    double own[MAXOA] = {};     ///< the LSP's bandwidths, signed
    double partner[MAXOA] = {}; ///< the partner amounts, signed
    SlotChanges slots;

    /** Whether every change is listed. */
    bool isWhole() const { return flaw == EffectFlaw::none; }
    /** Whether what is listed may be applied; after a flaw of the LSP or the topology it may. */
    bool isApplicable() const
    {
        return flaw != EffectFlaw::tableTooLong && flaw != EffectFlaw::noMemory;
    }

    /** Whether any value of class type `oa` changes. */
    bool changes(int oa) const { return own[oa] != 0.0 || partner[oa] != 0.0; }

    /** Amount that `change` adds to its slot in class type `oa`. */
    double amount(const SlotChange &change, int oa) const
    {
        return change.sign * (change.partnerAmount ? partner : own)[oa];
    }

    /** Whether `change` may lift a row of class type `oa`: more need, or less bandwidth freed. */
    bool addsNeed(const SlotChange &change, int oa) const
    {
        const double added = amount(change, oa);
        return change.table == FailureTable::backup ? added > 0.0 : added < 0.0;
    }
};

/**
 * Works out the effect of `op` with `lsp` on the link from `src` to `dst`.
 *
 * A link concerns an LSP when it is a hop of its path or, for a backup, of the protected path. A
 * primary adds its bandwidth to the link's primary reservation and, for the failure of each of its
 * own links, to what that failure frees. A local backup adds to the need of the one link it
 * protects and, on the primary's links that it does not bypass, takes back what that failure frees;
 * a global backup does the same for every link of the primary from its first node on.
 *
 * @param effect what it held is replaced; the room of its list is used again. With a flaw it holds
 *        the changes that come before it.
 */
void effectOf(const DataBase &db, Long src, Long dst, const LSPView &lsp, operation op,
              Effect &effect);

/**
 * The effects of one operation of one LSP on the links that it concerns. A primary without a
 * partner changes the same slots on each of its links; its list is made and sorted once.
 */
class LinkEffects
{
public:
    /** What `view` borrows has to stay until the last question. */
    LinkEffects(const DataBase &database, const LSPView &view, operation applied)
        : db(database), lsp(view), op(applied)
    {
    }

    /**
     * The effect on the link from `src` to `dst`, sorted by slot and valid until the next question;
     * where it does not concern the link, nothing else of it counts.
     */
    const Effect &on(Long src, Long dst);

    /** The LSP has this partner from now on, -1 for none. */
    void changePartner(Long id) { lsp.noContentionId = id; }

private:
    const DataBase &db;
    LSPView lsp;
    operation op;
    bool isForAll = false; ///< whether `effect` is that on every link of the path
    Effect effect;
};

/**
 * Pushes the messages of an effect: a WARNING for a missing partner, and what its flaw is.
 *
 * @return 0, or -1 when the effect is not whole
 */
[[nodiscard]] int report(const Effect &effect);

/** Whether `src` and `dst` follow each other anywhere on the path. */
bool hasHop(std::span<const Long> path, Long src, Long dst);

#endif
