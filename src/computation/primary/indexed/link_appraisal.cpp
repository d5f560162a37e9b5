#include "computation/primary/indexed/link_appraisal.h"

#include "computation/primary/increments.h"
#include "predicate/predicate.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

namespace
{

/** Increments up to this size can be added up along any path without leaving the finite numbers. */
constexpr double largestIncrement = 1e280;

bool isInRange(double increment) { return increment >= 0.0 && increment <= largestIncrement; }

/** The first verdict from `at` on that is not settled; null when there is none before `end`. */
unsigned char *nextUnsettled(unsigned char *at, const unsigned char *end)
{
    return static_cast<unsigned char *>(
        std::memchr(at, unsettled, static_cast<std::size_t>(end - at)));
}

} // namespace

LinkAppraisal::LinkAppraisal(DataBase &database, LSPRequest &request)
    : db(database), req(request), level(levelFor(request))
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        requested.set(oa, req.bw[oa] != 0.0);
        scored.set(oa, weights.load[oa] != 0.0 || tellsLinksApart(weights, oa) ||
                           (weights.Fortz != 0.0 && req.bw[oa] != 0.0));
    }
}

int LinkAppraisal::levelFor(const LSPRequest &request)
{
    return tarnexConfig.predicateConfig.allowReroute ? request.precedence : MAXPL - 1;
}

LinkAppraisal::Form LinkAppraisal::form() const
{
    const auto isLoad = [this](int oa) { return !tellsLinksApart(weights, oa); };
    if (!std::ranges::all_of(scored, isLoad))
        return Form::listed;
    if (weights.Fortz == 0.0)
        return Form::alike;
    return scored.count() == 1 && weights.load[*scored.begin()] == 0.0 ? Form::graded
                                                                       : Form::listed;
}

Long LinkAppraisal::termsPerLink() const
{
    Long count = 0;
    forEachTerm(0, [&count](double) { ++count; });
    return std::max(count, Long{1});
}

void LinkAppraisal::judge(unsigned char *verdicts)
{
    if (tarnexConfig.predicateConfig.capacityClause)
        judgeByCapacity(verdicts);
    else
        judgeByIdsAlone(verdicts);
    const unsigned char *end = verdicts + index.nbLinks;
    for (unsigned char *at = verdicts; (at = nextUnsettled(at, end)) != nullptr; ++at)
        *at = settle(static_cast<Long>(at - verdicts));
    assert(areRight(verdicts));
}

/** Whether the predicate gives the same verdicts; for debug builds. */
[[maybe_unused]] bool LinkAppraisal::areRight(const unsigned char *verdicts)
{
    for (Long link = 0; link < index.nbLinks; ++link) {
        if (ask(link) != (verdicts[link] == admitted))
            return false;
    }
    return true;
}

/** What the figures say of the capacities. */
void LinkAppraisal::judgeByCapacity(unsigned char *verdicts) const
{
    std::transform(index.maybeOverfull[level], index.maybeOverfull[level] + index.nbLinks, verdicts,
                   [own = requested](ClassTypes maybeOverfull) -> unsigned char {
                       return maybeOverfull.without(own).isEmpty() ? admitted : unsettled;
                   });
    for (const int oa : requested)
        judgeClass(oa, verdicts);
}

/**
 * Without the capacity test a link is refused only when its id is too large for any table. The
 * index does not say so, but it takes such links for maybe overfull in every class type; the few
 * that are taken so are put to the predicate.
 */
void LinkAppraisal::judgeByIdsAlone(unsigned char *verdicts) const
{
    std::transform(index.maybeOverfull[level], index.maybeOverfull[level] + index.nbLinks, verdicts,
                   [](ClassTypes maybeOverfull) -> unsigned char {
                       return maybeOverfull == ClassTypes::all() ? unsettled : admitted;
                   });
}

/** Raises verdicts by what the figures of one class type say. */
void LinkAppraisal::judgeClass(int oa, unsigned char *verdicts) const
{
    const Long count = index.nbLinks;
    const double bw = req.bw[oa];
    const double *fits = index.fits[oa][level];
    const double *exceeds = index.exceeds[oa][level];
    for (Long link = 0; link < count; ++link) {
        const int verdict = (bw <= fits[link] ? 0 : 1) + (bw >= exceeds[link] ? 1 : 0);
        verdicts[link] = std::max(verdicts[link], static_cast<unsigned char>(verdict));
    }
}

/** A class type that is overfull as it is refuses all; any other doubt is asked about. */
Verdict LinkAppraisal::settle(Long link)
{
    const bool testsCapacity = tarnexConfig.predicateConfig.capacityClause;
    for (int oa = 0; oa < MAXOA && testsCapacity; ++oa) {
        if (req.bw[oa] == 0.0 && index.exceeds[oa][level][link] < 0.0)
            return refused;
    }
    return ask(link) ? admitted : refused;
}

bool LinkAppraisal::ask(Long link)
{
    DBLink &stored = *index.links[link];
    double gain[MAXOA];
    return isValidRequestLink(&db, index.nodeIds[index.source[link]],
                              index.nodeIds[index.destination[link]], &stored.state, &req, gain);
}

template <class Add>
void LinkAppraisal::forEachTerm(Long link, Add add) const
{
    for (const int oa : scored) {
        const LinkFigures &figures = index.figures[oa][link];
        const LinkLoad terms{figures.load, figures.capacity, req.bw[oa]};
        if (weights.Fortz != 0.0)
            add(fortzIncrement(weights, terms));
        forEachIncrement(weights, oa, terms, add);
    }
}

bool LinkAppraisal::fill(GradedTerms &terms) const
{
    const int oa = *scored.begin();
    for (std::size_t piece = 0; piece < fortzSlopes.size(); ++piece) {
        terms.increments[piece] = fortzIncrement(weights, piece, req.bw[oa]);
        if (!isInRange(terms.increments[piece]))
            return false;
    }
    terms.increments[GradedTerms::noGrade] = std::numeric_limits<double>::quiet_NaN();
    std::transform(terms.grades, terms.grades + index.nbLinks, index.pieces[oa], terms.grades,
                   [](unsigned char verdict, unsigned char piece) {
                       return verdict == refused ? GradedTerms::noGrade : piece;
                   });
    return true;
}

bool LinkAppraisal::fill(ListedTerms &terms, const unsigned char *verdicts) const
{
    for (Long link = 0; link < index.nbLinks; ++link) {
        double *own = terms.terms + std::ptrdiff_t{link} * terms.perLink;
        if (verdicts[link] == refused)
            own[0] = std::numeric_limits<double>::quiet_NaN();
        else if (!fillOne(link, own))
            return false;
    }
    return true;
}

bool LinkAppraisal::fillFirst(ListedTerms &terms) const { return fillOne(0, terms.terms); }

bool LinkAppraisal::fillOne(Long link, double *own) const
{
    own[0] = 0.0;
    bool areInRange = true;
    forEachTerm(link, [&](double term) {
        *own++ = term;
        areInRange = areInRange && isInRange(term);
    });
    return areInRange;
}
