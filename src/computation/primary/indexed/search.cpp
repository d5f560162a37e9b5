#include "computation/primary/indexed/search.h"

#include "common/layout.h"
#include "common/records.h"
#include "common/setup.h"
#include "common/vector.h"
#include "computation/primary/increments.h"
#include "computation/primary/indexed/clear_search.h"
#include "computation/primary/indexed/general_search.h"
#include "computation/primary/indexed/link_appraisal.h"
#include "computation/primary/indexed/meeting_search.h"
#include "computation/primary/indexed/met_terms.h"
#include "computation/primary/indexed/pass_search.h"
#include "computation/primary/indexed/remaining_search.h"

#include <algorithm>
#include <cmath>

namespace
{

bool areFinite(const PrimaryComputationConfig &w)
{
    double size = std::abs(w.Fortz);
    for (int oa = 0; oa < MAXOA; ++oa)
        size += sizeOfWeights(w, oa) + std::abs(w.loadBal[oa]) + std::abs(w.rerouting[oa]);
    return std::isfinite(size);
}

bool isServed(const LSPRequest &req)
{
    const auto path = inUse(req.path);
    const bool isOpen =
        path.size() > 2 && std::ranges::any_of(path, [](Long id) { return id < 0; });
    const bool isFinite =
        std::ranges::all_of(req.bw, [](double bw) { return std::isfinite(bw) && bw >= 0.0; });
    return req.type == primaryLSP && isOpen && isFinite && req.rerouteInfo.id < 0 &&
           req.precedence >= 0 && req.precedence < MAXPL &&
           areFinite(tarnexConfig.primaryComputationConfig);
}

/** Writes the path from node number `src` to `dst`; false without memory. */
bool writePath(const NetworkIndex &index, const Long *before, Long src, Long dst, LongList &path)
{
    Long length = 1;
    for (Long node = dst; node != src; node = before[node])
        ++length;
    if (length > path.size && !vec::grow(path, length))
        return false;
    path.top = length;
    for (Long node = dst; length-- > 1; node = before[node])
        path.cont[length] = index.nodeIds[node];
    path.cont[0] = index.nodeIds[src];
    return true;
}

/** Number of a node that has links; -1 for any other id. */
Long linkedNode(const DataBase &db, Long id)
{
    const DBNode *node = nodeAt(db.nodeVec, id);
    return node && node->inNeighb.top + node->outNeighb.top > 0 ? node->number : -1;
}

/** One search from a node to another, in the form that the request allows. */
class Routing
{
public:
    Routing(DataBase &db, LSPRequest &request, Long source, Long destination)
        : index(db.index), req(request), appraisal(db, request), src(source), dst(destination)
    {
    }

    IndexedResult run(double &cost)
    {
        switch (appraisal.form()) {
        case LinkAppraisal::Form::alike:
            return runAlike(cost);
        case LinkAppraisal::Form::graded:
            return runGraded(cost);
        case LinkAppraisal::Form::listed:
            return runListed(cost);
        case LinkAppraisal::Form::general:
            return runGeneral(cost);
        }
        return IndexedResult::notTried;
    }

private:
    /** Gives the tables that `tables` lays out their room in the workspace; false without memory.
     */
    template <class Tables>
    bool layOut(Tables tables)
    {
        Layout measured{nullptr};
        tables(measured);
        void *workspace = workspaceOf(index, measured.bytes());
        if (!workspace)
            return false;
        Layout layout{workspace};
        tables(layout);
        return true;
    }

    IndexedResult finish(const Long *before)
    {
        return writePath(index, before, src, dst, req.path) ? IndexedResult::found
                                                            : IndexedResult::noMemory;
    }

    /** Takes over what a search has found that is not in doubt. */
    template <class Clear>
    IndexedResult take(const Clear &clear, Clearness clearness, double &cost)
    {
        if (clearness == Clearness::unreachable)
            return IndexedResult::unreachable;
        cost = clear.cost();
        return finish(clear.predecessors());
    }

    /** What the passes find; `remaining` says what is left from each node on at least. */
    template <class Remaining, class Passes>
    IndexedResult decide(Remaining &remaining, Passes &passes, double &cost)
    {
        const double *bounds = remaining.run(dst);
        if (!bounds)
            return IndexedResult::unreachable;
        passes.run(dst, bounds);
        cost = passes.costOf(dst);
        return finish(passes.predecessors());
    }

    IndexedResult runAlike(double &cost)
    {
        ListedTerms terms{appraisal.termsPerLink()};
        unsigned char *verdicts = nullptr;
        MeetingSearch search{index, appraisal};
        const auto tables = [&](Layout &layout) {
            layout.place(verdicts, index.nbLinks);
            layout.place(terms.terms, terms.perLink);
            search.layOut(layout);
        };
        if (!layOut(tables))
            return IndexedResult::noMemory;
        if (!appraisal.fillFirst(terms))
            return runGeneral(cost);
        appraisal.prepare(verdicts);
        if (!search.run(src, dst))
            return IndexedResult::unreachable;
        cost = 0.0;
        for (Long node = dst; node != src; node = search.predecessors()[node])
            cost = terms.extended(cost, 0);
        return finish(search.predecessors());
    }

    IndexedResult runGraded(double &cost)
    {
        MetGradedTerms met{appraisal};
        ClearSearch<MetGradedTerms, GradedFrontier<MetGradedTerms>> clear{index, met};
        unsigned char *verdicts = nullptr;
        GradedTerms terms;
        RemainingSearch<GradedTerms, GradedFrontier<GradedTerms>> remaining{index, terms, src};
        PassSearch passes{index, terms, src};
        const auto tables = [&](Layout &layout) {
            layout.place(verdicts, index.nbLinks);
            clear.layOut(layout);
            layout.place(terms.grades, index.nbLinks);
            remaining.layOut(layout);
            passes.layOut(layout);
        };
        if (!layOut(tables))
            return IndexedResult::noMemory;
        if (!appraisal.fillIncrements(met.increments))
            return runGeneral(cost);
        appraisal.prepare(verdicts);
        const Clearness clearness = clear.run(src, dst);
        if (clearness != Clearness::doubtful)
            return take(clear, clearness, cost);
        appraisal.judge(terms.grades);
        return appraisal.fill(terms) ? decide(remaining, passes, cost) : runGeneral(cost);
    }

    IndexedResult runListed(double &cost)
    {
        MetListedTerms met{appraisal};
        ClearSearch<MetListedTerms, ListedFrontier> clear{index, met};
        unsigned char *verdicts = nullptr;
        ListedTerms terms{met.perLink};
        RemainingSearch<ListedTerms, ListedFrontier> remaining{index, terms, src};
        PassSearch passes{index, terms, src};
        const auto tables = [&](Layout &layout) {
            layout.place(verdicts, index.nbLinks);
            clear.layOut(layout);
            layout.place(terms.terms, std::int64_t{index.nbLinks} * terms.perLink);
            remaining.layOut(layout);
            passes.layOut(layout);
        };
        if (!layOut(tables))
            return IndexedResult::noMemory;
        appraisal.prepare(verdicts);
        if (!appraisal.addsNothingBelow0())
            return runGeneral(cost);
        const Clearness clearness = clear.run(src, dst);
        if (appraisal.metOddIncrement())
            return runGeneral(cost);
        if (clearness != Clearness::doubtful)
            return take(clear, clearness, cost);
        appraisal.judge(verdicts);
        return appraisal.fill(terms, verdicts) ? decide(remaining, passes, cost) : runGeneral(cost);
    }

    IndexedResult runGeneral(double &cost)
    {
        GeneralTerms terms = appraisal.generalTerms();
        unsigned char *verdicts = nullptr;
        GeneralSearch search{index, terms, src};
        const auto tables = [&](Layout &layout) {
            layout.place(verdicts, index.nbLinks);
            layout.place(terms.terms, std::int64_t{index.nbLinks} * terms.perLink);
            layout.place(terms.growths, std::int64_t{index.nbLinks} * terms.nbSums());
            if (appraisal.hasPenalties())
                layout.place(terms.penalties, index.nbLinks);
            search.layOut(layout);
        };
        if (!layOut(tables))
            return IndexedResult::noMemory;
        appraisal.judge(verdicts);
        if (!appraisal.fill(terms, verdicts))
            return IndexedResult::notTried;
        search.run(verdicts);
        if (!search.isReached(dst))
            return IndexedResult::unreachable;
        cost = search.costOf(dst);
        return finish(search.predecessors());
    }

    NetworkIndex &index;
    LSPRequest &req;
    LinkAppraisal appraisal;
    Long src;
    Long dst;
};

} // namespace

IndexedResult searchIndexed(DataBase &db, LSPRequest &req, double &cost)
{
    if (!isServed(req))
        return IndexedResult::notTried;
    if (!bringUpToDate(db, LinkAppraisal::levelFor(req)))
        return IndexedResult::noMemory;
    const Long src = linkedNode(db, req.path.cont[0]);
    const Long dstId = req.path.cont[req.path.top - 1];
    const Long dst = linkedNode(db, dstId);
    if (src < 0 || dstId < 0 || src == dst)
        return IndexedResult::notTried;
    switch (reachOf(db.index, src)) {
    case Reach::unknown:
        return IndexedResult::noMemory;
    case Reach::odd:
        if (failsOverOddLinks)
            return IndexedResult::notTried;
        break;
    case Reach::usual:
        break;
    }
    if (dst < 0)
        return IndexedResult::unreachable;
    return Routing{db, req, src, dst}.run(cost);
}
