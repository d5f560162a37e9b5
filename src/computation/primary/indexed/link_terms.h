/**
 * What each link adds to the score of a path, and nothing that it could not be extended by (unit
 * "computation/primary/primaryPath").
 *
 * No increment is below 0. A path that is extended by a refused link has no number for a score.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_LINK_TERMS_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_LINK_TERMS_H

#include "common/link_cost.h"
#include "common/types.h"

#include <array>

#include <cstddef>

/** Increments by link, several per link that are added one after the other. */
struct ListedTerms {
    Long perLink = 0;
    double *terms = nullptr; ///< by link

    double extended(double score, Long link) const
    {
        const double *own = terms + std::ptrdiff_t{link} * perLink;
        for (Long i = 0; i < perLink; ++i)
            score += own[i];
        return score;
    }
};

/** One increment per link, of the few that the pieces of the Fortz-Thorup cost give. */
struct GradedTerms {
    static constexpr unsigned char noGrade = fortzSlopes.size();

    unsigned char *grades = nullptr; ///< by link: the piece, or `noGrade`
    std::array<double, noGrade + 1> increments{};

    double extended(double score, Long link) const { return score + increments[grades[link]]; }
    double leastIncrement() const { return increments[0]; }
};

#endif
