/**
 * What each link adds to the score of a path, and nothing that it could not be extended by (unit
 * "computation/primary/primaryPath").
 *
 * In the listed and the graded form no increment is below 0. A path that is extended by a refused
 * link has no number for a score.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_LINK_TERMS_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_LINK_TERMS_H

#include "common/class_types.h"
#include "common/link_cost.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

/** Increments by link, several per link that are added one after the other to a score. */
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
    unsigned char gradeOf(Long link) const { return grades[link]; }
};

/** How the utilization of a link grows in one class type. */
struct UtilizationGrowth {
    double ofSquare; ///< growth of its square, weighted
    double share;    ///< its growth
};

/**
 * Whatever the weights: increments of any sign, balance, which depends on what a path has added to
 * utilization so far, and the penalty of preemption, which multiplies what the path has cost so
 * far.
 */
struct GeneralTerms {
    /** What a class type with a weight adds. */
    struct Criteria {
        bool hasFortz;        ///< then it is the first increment, added before balance
        bool isBalanced;      ///< whether balance has a weight
        Long count;           ///< increments but balance
        double weightPerLink; ///< of balance, divided by the number of links
    };

    std::array<Criteria, MAXOA> classes{}; ///< the first `nbClasses`, ascending
    std::size_t nbClasses = 0;
    ClassTypes balanced{};
    Long perLink = 0;
    double *terms = nullptr;              ///< by link, class type and increment
    UtilizationGrowth *growths = nullptr; ///< by link and balanced class type
    double *penalties = nullptr;          ///< by link; null: all 0

    Long nbSums() const { return balanced.count(); }

    /** `sums`: the path's growth of utilization so far in each balanced class type. */
    double extended(double score, const double *sums, Long link) const
    {
        const double *term = terms + std::ptrdiff_t{link} * perLink;
        const UtilizationGrowth *growth = growths + std::ptrdiff_t{link} * nbSums();
        for (const Criteria &criteria : std::span{classes}.first(nbClasses)) {
            const double *end = term + criteria.count;
            if (criteria.hasFortz)
                score += *term++;
            if (criteria.isBalanced) {
                const double sum = *sums++;
                const double newSum = growth->share + sum;
                if (std::isinf(newSum))
                    return std::numeric_limits<double>::infinity();
                score += growth->ofSquare + criteria.weightPerLink * (sum * sum - newSum * newSum);
                ++growth;
            }
            while (term != end)
                score += *term++;
        }
        const double gate = score > 0.0 ? 1.0 : 0.0;
        return score + gate * (penalties ? penalties[link] : 0.0) * score;
    }

    /** Writes the growth of utilization of a path that is extended by a link. */
    void extendSums(const double *sums, Long link, double *extendedSums) const
    {
        const UtilizationGrowth *growth = growths + std::ptrdiff_t{link} * nbSums();
        for (Long i = 0; i < nbSums(); ++i)
            extendedSums[i] = growth[i].share + sums[i];
    }
};

#endif
