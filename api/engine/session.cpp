#include "session.h"

#include "books.h"
#include "common/common.h"
#include "database/books/change.h"
#include "database/books/lookup.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace tarnex::inside
{

namespace
{

constexpr std::int64_t mostIds = std::numeric_limits<std::int32_t>::max();

bool isAmount(double value) { return std::isfinite(value) && value >= 0.0; }

const Options &checked(const Options &options)
{
    if (options.classTypes < 1 || options.classTypes > maxClassTypes)
        wrong("There can be 1 to 8 class types, not " + std::to_string(options.classTypes) + ".");
    if (options.levels < 1 || options.levels > maxLevels)
        wrong("There can be 1 to 8 levels, not " + std::to_string(options.levels) + ".");
    const Weights &w = options.weights;
    const auto weights = {w.fortz,       w.loadBalance,        w.load, w.squaredLoad,
                          w.utilization, w.squaredUtilization, w.delay};
    if (!std::ranges::all_of(weights, isAmount))
        wrong("A weight is a finite number of 0 or more.");
    for (const auto &ofClass : options.preemptionPrices) {
        if (!std::ranges::all_of(ofClass, isAmount))
            wrong("A preemption price is a finite number of 0 or more.");
    }
    return options;
}

ErrorList newStack()
{
    auto *list = static_cast<ErrorElem *>(mycalloc(1, sizeof(ErrorElem)));
    if (!list)
        throw std::bad_alloc{};
    return {1, 0, list};
}

} // namespace

void wrong(const std::string &what) { throw WrongUse{what}; }

Session::Session(const Options &wanted) : options(checked(wanted))
{
    const Turn turn{*this};
    errorManager = newStack();
    db = DBnew(0);
    if (!db) {
        errorDestroy();
        throw std::bad_alloc{};
    }
    db->hasPrimariesAlone = !options.allowsBackups;
    centralDB = db;
}

Session::~Session()
{
    const Turn turn{*this};
    static_cast<void>(DBdestroy(db));
    errorDestroy();
}

std::span<const LspId> Session::backupsOf(LspId primary) const
{
    const auto found = backups.find(primary);
    return found == backups.end() ? std::span<const LspId>{} : found->second;
}

LspId Session::idFor(LspId wanted) const
{
    if (!wanted.isValid() && nextId > mostIds)
        wrong("There is no LSP id left.");
    const LspId id = wanted.isValid() ? wanted : LspId{static_cast<std::int32_t>(nextId)};
    if (lspAt(db->lspVec, id.value))
        wrong("There is an LSP " + std::to_string(id.value) + " already.");
    return id;
}

void Session::checkIds(std::span<const Request> requests) const
{
    std::vector<LspId> named;
    for (const Request &request : requests)
        if (request.id.isValid())
            named.push_back(idFor(request.id));
    if (named.empty() && nextId + static_cast<std::int64_t>(requests.size()) > mostIds + 1)
        wrong("There are not so many LSP ids left.");
    if (!named.empty() && named.size() < requests.size())
        wrong("Some requests name an id and some do not.");
    std::ranges::sort(named);
    if (const auto twice = std::ranges::adjacent_find(named); twice != named.end())
        wrong("LSP " + std::to_string(twice->value) + " is asked for twice.");
}

Lsp Session::lspOf(const DBLabelSwitchedPath &record) const
{
    return inside::lspOf(*db, record, classTypes[static_cast<std::size_t>(record.id)]);
}

void Session::makeRoom(std::int64_t end)
{
    if (const auto size = static_cast<std::size_t>(end); size > classTypes.size())
        classTypes.resize(size);
}

void Session::makeRoomForBackups(LspId primary, std::size_t count)
{
    const auto [place, isNew] = backups.try_emplace(primary);
    try {
        place->second.reserve(place->second.size() + count);
    } catch (...) {
        if (isNew)
            backups.erase(place);
        throw;
    }
}

std::size_t Session::placeOf(const Lsp &backup) const
{
    const DBLabelSwitchedPath &primary = *lspAt(db->lspVec, backup.protects.primary.value);
    const auto path = inUse(primary.path);
    const auto start = std::ranges::find(path, backup.path.nodes.front().value);
    return static_cast<std::size_t>(start - path.begin());
}

void Session::remember(const Lsp &lsp)
{
    nbLsps += 1;
    nextId = std::max(nextId, std::int64_t{lsp.id.value} + 1);
    classTypes[lsp.id.index()] = static_cast<std::uint8_t>(lsp.classType);
    if (!lsp.isBackup())
        return;
    std::vector<LspId> &known = backups.at(lsp.protects.primary);
    const auto startOf = [this](LspId id) {
        const DBLabelSwitchedPath &record = *lspAt(db->lspVec, id.value);
        const auto path = inUse(record.primPath);
        return std::ranges::find(path, record.path.cont[0]) - path.begin();
    };
    const auto start = static_cast<std::ptrdiff_t>(placeOf(lsp));
    known.insert(std::ranges::upper_bound(known, start, {}, startOf), lsp.id);
}

void Session::forget(const Lsp &lsp)
{
    nbLsps -= 1;
    if (!lsp.isBackup()) {
        backups.erase(lsp.id);
        return;
    }
    const auto found = backups.find(lsp.protects.primary);
    if (found != backups.end())
        std::erase(found->second, lsp.id);
}

Turn::Turn(Session &owner)
    : session(owner), savedDataBase(centralDB), savedConfig(tarnexConfig), savedTrail(errorManager),
      savedClassTypes(NBOA), savedLevels(NBPL), savedCost(COST), savedPrints(printsRemarks),
      savedFailure(failsOverOddLinks)
{
    centralDB = session.db;
    errorManager = session.trail;
    errorManager.top = 0;
    NBOA = session.options.classTypes;
    NBPL = session.options.levels;
    COST = 0.0;
    printsRemarks = false;
    failsOverOddLinks = false;
    tarnexConfig = {};
    configureForBackups();
}

Turn::~Turn()
{
    session.trail = errorManager;
    centralDB = savedDataBase;
    tarnexConfig = savedConfig;
    errorManager = savedTrail;
    NBOA = savedClassTypes;
    NBPL = savedLevels;
    COST = savedCost;
    printsRemarks = savedPrints;
    failsOverOddLinks = savedFailure;
}

void Turn::configureFor(const Request &request) const
{
    const Options &options = session.options;
    const auto oa = static_cast<std::size_t>(request.classType);
    PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    weights.Fortz = options.weights.fortz;
    weights.loadBal[oa] = options.weights.loadBalance;
    weights.load[oa] = options.weights.load;
    weights.sqLoad[oa] = options.weights.squaredLoad;
    weights.relLoad[oa] = options.weights.utilization;
    weights.sqRelLoad[oa] = options.weights.squaredUtilization;
    weights.delay[oa] = options.weights.delay;
    const auto &prices = options.preemptionPrices[oa];
    const bool isPriced = std::ranges::any_of(prices, [](double price) { return price != 0.0; });
    weights.rerouting[oa] = isPriced && request.mayPreempt && request.bandwidth > 0.0 ? 1.0 : 0.0;
    std::ranges::copy(prices, tarnexConfig.reroutingConfig.scoreCoef[oa]);
    tarnexConfig.predicateConfig.allowReroute = request.mayPreempt;
    tarnexConfig.predicateConfig.colorClause = !request.avoid.empty();
}

void Turn::configureForBackups() const
{
    tarnexConfig.predicateConfig = {.allowReroute = false,
                                    .capacityClause = session.options.testsCapacity,
                                    .colorClause = false};
}

} // namespace tarnex::inside
