/* Primary LSPs are placed, proposed and added. */
#include "admission/admission.h"
#include "admission/placement.h"
#include "books.h"
#include "call.h"
#include "explain.h"
#include "removal.h"
#include "session.h"

#include <cmath>
#include <exception>
#include <new>

namespace tarnex
{

namespace
{

using inside::CoreRequest;
using inside::Session;

/**
 * Takes the results of a placement and, if it is one, all that has to give way before it is final.
 * The core knows no exceptions: one that comes up is kept and makes the placement fail.
 */
class Report final : public PlacementReport
{
public:
    Report(Session &owner, bool isFinal) : session(owner), removesBackups(isFinal) {}

    bool takePath(std::span<const Long> nodes) override
    {
        return keep([&] { result.path = inside::pathOf(*session.db, nodes); });
    }

    bool takePreempted(std::span<const Long> ids) override
    {
        return keep([&] {
            result.victims = inside::withBackups(session, ids);
            if (removesBackups)
                removeBackups();
        });
    }

    /** Throws what came up while taking. */
    void rethrow() const
    {
        if (failure)
            std::rethrow_exception(failure);
    }

    tarnex::Placement result;

private:
    template <class Take>
    bool keep(Take take)
    {
        try {
            take();
            return true;
        } catch (...) {
            failure = std::current_exception();
            return false;
        }
    }

    void removeBackups() const
    {
        for (std::size_t k = result.victims.size(); k-- > 0;) {
            const Lsp &lsp = result.victims[k];
            if (!lsp.isBackup() || DBremoveLSP(session.db, lsp.id.value) == 0)
                continue;
            inside::restore(session, result.victims);
            throw std::bad_alloc{};
        }
    }

    Session &session;
    const bool removesBackups;
    std::exception_ptr failure;
};

/** Notes in the books of the session what a placement has changed. */
void settle(Session &session, const Request &request, const tarnex::Placement &placed)
{
    for (const Lsp &victim : placed.victims)
        session.forget(victim);
    Lsp lsp;
    lsp.id = placed.id;
    lsp.classType = request.classType;
    session.remember(lsp);
}

/** Takes a placement back of which not everything could be removed. */
void takeBack(Session &session, const tarnex::Placement &placed)
{
    static_cast<void>(DBremoveLSP(session.db, placed.id.value));
    inside::restore(session, placed.victims);
}

/** Computes a path, sets the LSP up unless it is only proposed; `explains`: a refusal in full. */
Result<tarnex::Placement> placeOrPropose(Session &session, const Request &request, LspId id,
                                         PlacementGoal goal, bool explains)
{
    if (auto refused = inside::refusedEnds(session, request))
        return std::move(*refused);
    const bool isFinal = goal == PlacementGoal::lsp;
    CoreRequest wanted{request, id};
    Report report{session, isFinal};
    switch (placePrimary(session.db, wanted.get(), goal, report)) {
    case ::Placement::done:
        break;
    case ::Placement::noPath:
        return inside::whyNoPath(session, request, explains);
    case ::Placement::notListed:
    case ::Placement::notAdded:
        return inside::whyNoRoomOn(session, request, inUse(wanted->path), inside::Origin::found,
                                   explains);
    case ::Placement::notRemoved:
        report.result.id = id;
        takeBack(session, report.result);
        throw std::bad_alloc{};
    case ::Placement::notReported:
        report.rethrow();
        throw std::bad_alloc{};
    }
    if (std::isfinite(COST))
        report.result.score = COST;
    report.result.id = isFinal ? id : request.id;
    if (isFinal)
        settle(session, request, report.result);
    return std::move(report.result);
}

} // namespace

Result<Placement> Engine::place(const Request &request)
{
    State &session = live();
    const inside::Turn turn{session};
    const Request wanted = inside::checked(session, request);
    const LspId id = session.idFor(wanted.id);
    session.makeRoom(std::int64_t{id.value} + 1);
    turn.configureFor(wanted);
    return placeOrPropose(session, wanted, id, PlacementGoal::lsp,
                          session.options.explainsRefusals);
}

std::vector<Result<Placement>> Engine::placeAll(std::span<const Request> requests)
{
    State &session = live();
    for (const Request &request : requests)
        static_cast<void>(inside::checked(session, request));
    session.checkIds(requests);
    std::vector<Result<Placement>> results;
    results.reserve(requests.size());
    for (const Request &request : requests)
        results.push_back(place(request));
    return results;
}

Result<Placement> Engine::propose(const Request &request)
{
    State &session = live();
    const inside::Turn turn{session};
    const Request wanted = inside::checked(session, request);
    const LspId id = session.idFor(wanted.id);
    turn.configureFor(wanted);
    return placeOrPropose(session, wanted, id, PlacementGoal::proposal,
                          session.options.explainsRefusals);
}

std::optional<Refusal> Engine::explain(const Request &request)
{
    State &session = live();
    const inside::Turn turn{session};
    const Request wanted = inside::checked(session, request);
    turn.configureFor(wanted);
    const auto proposed =
        placeOrPropose(session, wanted, session.idFor({}), PlacementGoal::proposal, true);
    return proposed ? std::nullopt : std::optional{proposed.refusal()};
}

Result<Placement> Engine::add(const Request &request, std::span<const NodeId> path)
{
    State &session = live();
    const inside::Turn turn{session};
    Request wanted = inside::checked(session, request);
    wanted.avoid = {};
    const std::vector<Long> nodes = inside::checkedPath(session, path);
    wanted.ingress = path.front();
    wanted.egress = path.back();
    const LspId id = session.idFor(wanted.id);
    session.makeRoom(std::int64_t{id.value} + 1);
    turn.configureFor(wanted);
    CoreRequest given{wanted, id, nodes};
    Report report{session, true};
    switch (admitPrimary(session.db, given.get(), PlacementGoal::lsp, report)) {
    case ::Placement::done:
        report.result.id = id;
        settle(session, wanted, report.result);
        return std::move(report.result);
    case ::Placement::notAdded:
        return inside::whyNoRoomOn(session, wanted, nodes, inside::Origin::given,
                                   session.options.explainsRefusals);
    case ::Placement::notRemoved:
        report.result.id = id;
        takeBack(session, report.result);
        break;
    default:
        report.rethrow();
    }
    throw std::bad_alloc{};
}

} // namespace tarnex
