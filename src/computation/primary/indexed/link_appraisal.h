/**
 * Which links a request that the index serves may use, and what each adds to the score (unit
 * "computation/primary/primaryPath"). Both follow from the figures of the network's index; a link
 * about which they leave a doubt is put to the predicate.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_LINK_APPRAISAL_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_LINK_APPRAISAL_H

#include "common/class_types.h"
#include "common/setup.h"
#include "computation/computation.h"
#include "computation/primary/increments.h"
#include "computation/primary/indexed/link_terms.h"
#include "database/books/network.h"

#include <limits>
#include <span>

/** What is known of a link for a request; the largest of several holds. */
enum Verdict : unsigned char { admitted = 0, unsettled = 1, refused = 2 };

/** Appraises the links for one request, over an index that is up to date for its level. */
class LinkAppraisal
{
public:
    /** Which form the increments of the links take. */
    enum class Form { alike, graded, listed, general };

    LinkAppraisal(DataBase &database, LSPRequest &request);

    /** The level up to which the reservations must fit the capacity. */
    static int levelFor(const LSPRequest &request);

    /** The cheapest form that holds under the weights. */
    Form form() const;
    /** How many increments each link has. */
    Long termsPerLink() const;

    /** Writes for each link whether it is admitted or refused. What there is to report about that
     * is reported the first time. */
    void judge(unsigned char *verdicts);

    /** To be called before `admits`, with room for the verdicts on all links: they are written now
     * where a link cannot be judged when it is met, or asking about it would report something. */
    void prepare(unsigned char *verdicts);
    /** Whether a link is admitted. */
    bool admits(Long link)
    {
        if (given)
            return given[link] == admitted;
        const bool fits = requestedBw <= surelyFits[link] &&
                          index.maybeOverfull[level][link].without(requested).isEmpty();
        return fits || judgeOne(link) == admitted;
    }

    /** What the pieces of the Fortz-Thorup cost add; false as in `fill`. */
    [[nodiscard]] bool fillIncrements(std::span<double, GradedTerms::noGrade> increments) const;
    /** By link: the piece that its load lies on. */
    const unsigned char *pieces() const { return index.pieces[*scored.begin()]; }

    /** Whether no admitted link has an increment below 0, as far as `extended` is not asked about
     * it; after `prepare`. */
    bool addsNothingBelow0();
    /** A score extended by a link: its increments added one after the other. No number when one is
     * below 0 or too large to be added up, which `metOddIncrement` tells from then on. */
    double extended(double score, Long link) const
    {
        bool areInRange = true;
        forEachTerm(link, [&](double term) {
            score += term;
            areInRange = areInRange && isInRange(term);
        });
        if (areInRange)
            return score;
        hasMetOddIncrement = true;
        return std::numeric_limits<double>::quiet_NaN();
    }
    bool metOddIncrement() const { return hasMetOddIncrement; }

    /** @name Fill in the increments of every link that is not refused.
     * False when one is below 0 or so large that they might not add up to a finite number. */
    ///@{
    /** Turns the verdicts that `terms` has for grades into grades. */
    [[nodiscard]] bool fill(GradedTerms &terms) const;
    [[nodiscard]] bool fill(ListedTerms &terms, const unsigned char *verdicts) const;
    /** The increments that all links have alike: writes only those of the first. */
    [[nodiscard]] bool fillFirst(ListedTerms &terms) const;
    ///@}

    /** The general form of the increments, without tables. */
    GeneralTerms generalTerms() const;
    /** Fills in the tables; `penalties` too if preemption has a price. False, with nothing
     * reported, when a penalty cannot be told without a message. */
    [[nodiscard]] bool fill(GeneralTerms &terms, const unsigned char *verdicts);
    /** Whether preemption has a price. */
    bool hasPenalties() const;

private:
    /** Increments up to this size can be added up along any path without leaving the finite
     * numbers. */
    static constexpr double largestIncrement = 1e280;
    static bool isInRange(double increment)
    {
        return increment >= 0.0 && increment <= largestIncrement;
    }

    template <class Add>
    void forEachTerm(Long link, Add add) const
    {
        for (const int oa : scored)
            forEachTermOf(oa, link, add);
    }
    template <class Add>
    void forEachTermOf(int oa, Long link, Add add) const
    {
        const LinkFigures &figures = index.figures[oa][link];
        const LinkLoad terms{figures.load, figures.capacity, req.bw[oa]};
        if (weights.Fortz != 0.0)
            add(fortzIncrement(weights, terms));
        forEachIncrement(weights, oa, terms, add);
    }
    bool addsNothingBelow0(int oa);
    bool fillOne(Long link, double *own) const;
    bool needsNoGain(Long link) const;
    double penaltyOf(Long link);
    void judgeAll(unsigned char *verdicts);
    void judgeByCapacity(unsigned char *verdicts) const;
    void judgeByIdsAlone(unsigned char *verdicts) const;
    void refuseColors(unsigned char *verdicts) const;
    void judgeClass(int oa, unsigned char *verdicts) const;
    bool areRight(const unsigned char *verdicts);
    bool judgesOneByOne() const;
    bool areRightOneByOne();
    Verdict judgeOne(Long link);
    Verdict settle(Long link);
    bool ask(Long link, double (&gain)[MAXOA]);

    DataBase &db;
    NetworkIndex &index = db.index;
    LSPRequest &req;
    const PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    int level;
    ClassTypes requested{};
    ClassTypes scored{};                  ///< whose increments depend on a weight
    const unsigned char *given = nullptr; ///< verdicts by link, unless they are given one by one
    double requestedBw = 0.0;             ///< in the one class type of a request judged like that
    const double *surelyFits = nullptr;   ///< by link: how much it takes
    bool hasJudged = false;               ///< all links at once
    mutable bool hasMetOddIncrement = false;
};

#endif
