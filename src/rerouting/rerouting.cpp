#include "rerouting/rerouting.h"

#include "common/records.h"
#include "common/setup.h"
#include "error/report.h"

#include <limits>

namespace
{

constexpr Unit here{"rerouting/rerouting"};

/** A need at or below it, in bandwidth units, counts as met. */
constexpr double negligibleNeed = 1e-10;

using LSPs = std::span<DBLabelSwitchedPath *const>;

/** The choice on one link for one class type: walks the sorted list once, from its head. */
struct Choice {
    LSPs lsps;
    int oa;
    double need;
    LongList *ids;
    std::size_t next = 0; ///< first LSP not looked at yet

    bool isOpen() const { return need > negligibleNeed && next < lsps.size(); }
    bool isAtLevel(int p) const { return next < lsps.size() && lsps[next]->precedence == p; }

    /** Takes every LSP of level p, which together reserve `reserved`. */
    int takeLevel(int p, double reserved)
    {
        for (; isAtLevel(p); ++next) {
            if (longVecPushBack(ids, lsps[next]->id) != 0)
                return -1;
        }
        need -= reserved;
        return 0;
    }

    /** Takes what the need asks of level p: the largest that fit, then the smallest that covers. */
    int takePartOfLevel(int p)
    {
        while (isOpen() && isAtLevel(p)) {
            if (lsps[next]->bw[oa] > need) {
                while (isAtLevel(p) && lsps[next]->bw[oa] >= need)
                    ++next;
                return take(*lsps[next - 1]);
            }
            if (take(*lsps[next]) != 0)
                return -1;
            ++next;
        }
        return 0;
    }

private:
    int take(const DBLabelSwitchedPath &lsp)
    {
        need -= lsp.bw[oa];
        return longVecPushBack(ids, lsp.id);
    }
};

} // namespace

int chooseReroutedLSPs(int precedence, DBLinkState *state, DBLSPList *lspList, double *toGain,
                       LongList *idList)
{
    if (!idList || !idList->cont || !state || !lspList || !lspList->cont)
        return here.fail("Invalid arguments in %s at line %d");
    for (int oa = 0; oa < MAXOA; ++oa) {
        Choice choice{inUse(*lspList), oa, toGain[oa], idList};
        while (choice.isOpen()) {
            const int p = choice.lsps[choice.next]->precedence;
            if (p <= precedence)
                return here.fail(
                    "Not enough preemptable bandwidth for LSP selection in %s at line %d");
            const double reserved = state->rbw[oa][p];
            const int taken =
                choice.need >= reserved ? choice.takeLevel(p, reserved) : choice.takePartOfLevel(p);
            if (taken != 0)
                return -1;
        }
        if (choice.need > negligibleNeed)
            return here.fail("Not enough preemptable bandwidth for LSP selection in %s at line %d");
    }
    return 0;
}

double makeRerouteScore(LSPRequest *req, double *gain, DBLinkState *ls, int oa)
{
    const double(&coefficient)[MAXPL] = tarnexConfig.reroutingConfig.scoreCoef[oa];
    double score = 0.0;
    double bwGained = 0.0;
    for (int p = MAXPL - 1; bwGained < gain[oa]; --p) {
        if (p < 0 || p <= req->precedence) {
            here.push(CRITICAL, "internal error: impossible to realize gain in %s at line %d");
            return std::numeric_limits<double>::infinity();
        }
        const double rest = gain[oa] - bwGained;
        const double reserved = ls->rbw[oa][p];
        const bool needsWholeLevel = rest > reserved;
        score += coefficient[p] * (needsWholeLevel ? reserved : rest);
        if (!needsWholeLevel)
            break;
        bwGained += reserved;
    }
    return score / req->bw[oa];
}
