#include "computation/primary/indexed/link_appraisal.h"

#include "common/records.h"
#include "computation/primary/increments.h"
#include "error/error.h"
#include "predicate/predicate.h"
#include "rerouting/rerouting.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

namespace
{

/** The first verdict from `at` on that is not settled; null when there is none before `end`. */
unsigned char *nextUnsettled(unsigned char *at, const unsigned char *end)
{
    return static_cast<unsigned char *>(
        std::memchr(at, unsettled, static_cast<std::size_t>(end - at)));
}

/** Takes back the messages that are pushed while it lives. */
class Unheard
{
public:
    Unheard() = default;
    ~Unheard() { errorManager.top = nbMessages; }
    Unheard(const Unheard &) = delete;
    Unheard &operator=(const Unheard &) = delete;

    bool areThereAny() const { return errorManager.top != nbMessages; }

private:
    Long nbMessages = errorManager.top;
};

} // namespace

LinkAppraisal::LinkAppraisal(DataBase &database, LSPRequest &request)
    : db(database), req(request), level(levelFor(request))
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        requested.set(oa, req.bw[oa] != 0.0);
        scored.set(oa, weights.load[oa] != 0.0 || weights.loadBal[oa] != 0.0 ||
                           tellsLinksApart(weights, oa) ||
                           (weights.Fortz != 0.0 && req.bw[oa] != 0.0));
    }
}

int LinkAppraisal::levelFor(const LSPRequest &request)
{
    return tarnexConfig.predicateConfig.allowReroute ? request.precedence : MAXPL - 1;
}

LinkAppraisal::Form LinkAppraisal::form() const
{
    const auto isBalanced = [this](int oa) { return weights.loadBal[oa] != 0.0; };
    if (std::ranges::any_of(scored, isBalanced) || hasPenalties())
        return Form::general;
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
    if (hasJudged) {
        const Unheard repeated;
        judgeAll(verdicts);
    } else {
        judgeAll(verdicts);
    }
    hasJudged = true;
    assert(areRight(verdicts));
}

void LinkAppraisal::judgeAll(unsigned char *verdicts)
{
    if (tarnexConfig.predicateConfig.capacityClause)
        judgeByCapacity(verdicts);
    else
        judgeByIdsAlone(verdicts);
    if (tarnexConfig.predicateConfig.colorClause)
        refuseColors(verdicts);
    const unsigned char *end = verdicts + index.nbLinks;
    for (unsigned char *at = verdicts; (at = nextUnsettled(at, end)) != nullptr; ++at)
        *at = settle(static_cast<Long>(at - verdicts));
}

/** Whether a few figures judge a link; else a pass over all is quicker than asking for each. */
bool LinkAppraisal::judgesOneByOne() const
{
    const PredicateConfig &tests = tarnexConfig.predicateConfig;
    return tests.capacityClause && requested.count() == 1 && !index.hasUntabledLinks &&
           !(tests.colorClause && req.forbidLinks.top > 0);
}

void LinkAppraisal::prepare(unsigned char *verdicts)
{
    if (!judgesOneByOne()) {
        judge(verdicts);
        given = verdicts;
        return;
    }
    const int oa = *requested.begin();
    requestedBw = req.bw[oa];
    surelyFits = index.fits[oa][level];
    assert(areRightOneByOne());
}

/** The verdict on a link, by the figures of one class type if they leave no doubt. */
Verdict LinkAppraisal::judgeOne(Long link)
{
    const int oa = *requested.begin();
    const bool mayFit = requestedBw <= surelyFits[link];
    return !mayFit && requestedBw >= index.exceeds[oa][level][link] ? refused : settle(link);
}

/** Whether the predicate gives the same verdicts; for debug builds. */
[[maybe_unused]] bool LinkAppraisal::areRightOneByOne()
{
    const Unheard again;
    double gain[MAXOA];
    for (Long link = 0; link < index.nbLinks; ++link) {
        if (ask(link, gain) != admits(link))
            return false;
    }
    return true;
}

/** Whether the predicate gives the same verdicts; for debug builds. */
[[maybe_unused]] bool LinkAppraisal::areRight(const unsigned char *verdicts)
{
    const Unheard again;
    double gain[MAXOA];
    for (Long link = 0; link < index.nbLinks; ++link) {
        if (ask(link, gain) != (verdicts[link] == admitted))
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

/** Refuses the links of the colours to avoid. */
void LinkAppraisal::refuseColors(unsigned char *verdicts) const
{
    for (const Long color : inUse(req.forbidLinks)) {
        for (const Long link : linksOfColor(index, color))
            verdicts[link] = refused;
    }
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
    double gain[MAXOA];
    return ask(link, gain) ? admitted : refused;
}

bool LinkAppraisal::ask(Long link, double (&gain)[MAXOA])
{
    DBLink *stored = index.links[link];
    return stored &&
           isValidRequestLink(&db, index.nodeIds[index.source[link]],
                              index.nodeIds[index.destination[link]], &stored->state, &req, gain);
}

bool LinkAppraisal::fillIncrements(std::span<double, GradedTerms::noGrade> increments) const
{
    for (std::size_t piece = 0; piece < fortzSlopes.size(); ++piece)
        increments[piece] = fortzIncrement(weights, piece, req.bw[*scored.begin()]);
    return std::ranges::all_of(increments, isInRange);
}

/**
 * Bandwidth is never below 0, so with weights that are not either, an increment is below 0 only
 * where a load is, or a capacity, or where the load will be more than the capacity. The figures
 * tell for which links more has to be known.
 */
bool LinkAppraisal::addsNothingBelow0()
{
    return weights.Fortz >= 0.0 &&
           std::ranges::all_of(scored, [this](int oa) { return addsNothingBelow0(oa); });
}

bool LinkAppraisal::addsNothingBelow0(int oa)
{
    for (const double weight : {weights.load[oa], weights.sqLoad[oa], weights.relLoad[oa],
                                weights.sqRelLoad[oa], weights.delay[oa]}) {
        if (weight < 0.0)
            return false;
    }
    const double added =
        weights.delay[oa] != 0.0 ? req.bw[oa] : -std::numeric_limits<double>::infinity();
    for (Long link = 0; link < index.nbLinks; ++link) {
        const LinkFigures &is = index.figures[oa][link];
        const bool isUsual = is.load >= 0.0 && is.capacity > 0.0 && is.capacity - is.load > added;
        if (isUsual || !admits(link))
            continue;
        extended(0.0, link);
        if (hasMetOddIncrement)
            return false;
    }
    return true;
}

bool LinkAppraisal::fill(GradedTerms &terms) const
{
    if (!fillIncrements(std::span{terms.increments}.first<GradedTerms::noGrade>()))
        return false;
    terms.increments[GradedTerms::noGrade] = std::numeric_limits<double>::quiet_NaN();
    std::transform(terms.grades, terms.grades + index.nbLinks, pieces(), terms.grades,
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

bool LinkAppraisal::hasPenalties() const
{
    return std::ranges::any_of(weights.rerouting, [](double weight) { return weight != 0.0; });
}

GeneralTerms LinkAppraisal::generalTerms() const
{
    GeneralTerms terms;
    for (const int oa : scored) {
        Long count = 0;
        forEachTermOf(oa, 0, [&count](double) { ++count; });
        const double balance = weights.loadBal[oa];
        terms.classes[terms.nbClasses++] = {weights.Fortz != 0.0, balance != 0.0, count,
                                            balance / static_cast<double>(db.nbLinks)};
        terms.balanced.set(oa, balance != 0.0);
        terms.perLink += count;
    }
    return terms;
}

bool LinkAppraisal::fill(GeneralTerms &terms, const unsigned char *verdicts)
{
    double *term = terms.terms;
    UtilizationGrowth *growth = terms.growths;
    for (Long link = 0; link < index.nbLinks; ++link) {
        forEachTerm(link, [&term](double one) { *term++ = one; });
        for (const int oa : terms.balanced) {
            const LinkFigures &is = index.figures[oa][link];
            const double before = is.load / is.capacity;
            const double after = (is.load + req.bw[oa]) / is.capacity;
            *growth++ = {weights.loadBal[oa] * (after * after - before * before),
                         req.bw[oa] / is.capacity};
        }
    }
    const Unheard reasons;
    for (Long link = 0; link < index.nbLinks && terms.penalties; ++link)
        terms.penalties[link] = verdicts[link] == admitted ? penaltyOf(link) : 0.0;
    return !reasons.areThereAny();
}

/** Whether the figures leave no doubt that nobody has to give way on a link. */
bool LinkAppraisal::needsNoGain(Long link) const
{
    const auto fits = [&](int oa) { return req.bw[oa] <= index.fits[oa][MAXPL - 1][link]; };
    return std::ranges::all_of(requested, fits) &&
           index.maybeOverfull[MAXPL - 1][link].without(requested).isEmpty();
}

/** The weighted preemption penalty of a link, over all class types. */
double LinkAppraisal::penaltyOf(Long link)
{
    double gain[MAXOA] = {};
    if (!needsNoGain(link))
        ask(link, gain);
    double penalty = 0.0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (weights.rerouting[oa] != 0.0)
            penalty +=
                weights.rerouting[oa] * makeRerouteScore(&req, gain, &index.links[link]->state, oa);
    }
    return penalty;
}
