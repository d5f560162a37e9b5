#include "computation/backup/cost.h"

double costOf(const DBLabelSwitchedPath &lsp, Long dst, const double (&cap)[MAXOA],
              const double (&now)[MAXOA][MAXPL], const double (&then)[MAXOA][MAXPL])
{
    double after = 0.0;
    double before = 0.0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const double afterInClass = sumOf(then[oa]);
        if (afterInClass > cap[oa])
            return infeasible;
        after += afterInClass;
        before += sumOf(now[oa]);
    }
    return costOf(before, after, hopFactor(lsp, dst), totalBandwidth(lsp));
}
