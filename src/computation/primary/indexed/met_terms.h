/**
 * What links add to the score of a path (link_terms.h), judged and worked out when a search meets
 * them (unit "computation/primary/primaryPath"): for searches that meet few.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_MET_TERMS_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_MET_TERMS_H

#include "computation/primary/indexed/link_appraisal.h"

#include <array>
#include <limits>

/** One increment per link, of the few that the pieces of the Fortz-Thorup cost give. */
struct MetGradedTerms {
    explicit MetGradedTerms(LinkAppraisal &linkAppraisal)
        : appraisal(linkAppraisal), pieces(linkAppraisal.pieces())
    {
    }

    LinkAppraisal &appraisal;
    const unsigned char *pieces; ///< by link
    std::array<double, GradedTerms::noGrade> increments{};

    double extended(double score, Long link) const { return score + increments[pieces[link]]; }
    /** The score if it is less than `limit` and the link is admitted, else infinity. */
    double extendedBelow(double limit, double score, Long link) const
    {
        const double sum = extended(score, link);
        return sum < limit && appraisal.admits(link) ? sum
                                                     : std::numeric_limits<double>::infinity();
    }
    unsigned char gradeOf(Long link) const { return pieces[link]; }
    static Long nbAdditions() { return 1; }
};

/** Several increments per link. */
struct MetListedTerms {
    explicit MetListedTerms(LinkAppraisal &linkAppraisal)
        : appraisal(linkAppraisal), perLink(linkAppraisal.termsPerLink())
    {
    }

    LinkAppraisal &appraisal;
    Long perLink;

    double extended(double score, Long link) const { return appraisal.extended(score, link); }
    /** The score if it is less than `limit` and the link is admitted, else infinity. */
    double extendedBelow(double limit, double score, Long link) const
    {
        if (!(score < limit) || !appraisal.admits(link))
            return std::numeric_limits<double>::infinity();
        const double sum = extended(score, link);
        return sum < limit ? sum : std::numeric_limits<double>::infinity();
    }
    Long nbAdditions() const { return perLink; }
};

#endif
