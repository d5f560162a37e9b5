/**
 * A session of the engine driven through random operations, one per step, in and out of order:
 * nodes and links added and removed under LSPs, requests with preemption, backups, removals, calls
 * that must be refused, and memory that runs out in any of them. A plain network follows.
 *
 * Whatever does not add up is thrown as std::logic_error.
 */
#ifndef TARNEX_TESTS_SUPPORT_CHURN_H
#define TARNEX_TESTS_SUPPORT_CHURN_H

#include "admission/placement.h"
#include "support/plain_evaluation.h"

#include <set>

namespace property
{

/** Bandwidths: with any fraction, or in quarters, which add up exactly in any order. */
enum class Amounts { fractions, quarters };

class Churn
{
public:
    Churn(Rng choices, Amounts amounts);
    ~Churn();
    Churn(const Churn &) = delete;
    Churn &operator=(const Churn &) = delete;

    /** One operation. */
    void step();
    /** Compares every stored link with the plain network and with the LSP records. */
    void check() const;

    /** What was met so far; a test asks for enough of each. */
    struct Tally {
        int calls = 0, faults = 0, refusals = 0, incompletes = 0, preempted = 0, backups = 0;
        void operator+=(const Tally &other);
    };
    const Tally &tally() const { return met; }
    bool hasBytes() const { return rng.hasBytes(); }

private:
    struct Operation;

    template <class Call>
    int attempt(Call call);

    void route();
    void request();
    void protect();
    void removeAny();
    void cut();
    void restore();
    void grow();
    void ask();
    void misuse();

    bool add(PlannedLsp lsp);
    void remove(Long id);
    void follow(const PlannedLsp &lsp, bool wasAdded, const NodePath &givingWay);
    PlacementGoal anyGoal();
    void markUndefined(const PlannedLink &gone);
    PlannedLsp randomLsp();
    Long freeId();
    void pairWithAny(PlannedLsp &lsp);
    const PlannedLsp *anyLsp(bool isPrimary);

    static constexpr int maxLsps = 256;

    Rng rng;
    Amounts amounts;
    bool loses;                     ///< whether links and nodes go under their LSPs
    NetworkPlan plan;               ///< what is there
    std::vector<PlannedLink> spare; ///< what was removed
    PlainNetwork plain;
    std::set<Hop> undefined; ///< links whose reservations depend on history
    DataBase *db = nullptr;
    LongList preempted{};
    Long nextLinkId = 200; ///< of links that were not there at first
    Tally met;
    bool faulted = false; ///< whether memory ran out in the last call
    bool saidWhy = false; ///< whether it left a message of a failure
};

} // namespace property

#endif
