#include "formats/json/schemas.h"
#include "formats/json/shapes.h"

#include <utility>

namespace tarnex::formats::json
{

namespace
{

// --- a table of numbers per class type and level ---

constexpr Shape<Draft> cell{
    .what = "a number of 0 or more",
    .number = [](Draft &draft, double value) { draft.row.push_back(amount(value)); }};

constexpr Shape<Draft> row{.what = "a list of numbers",
                           .element = &cell,
                           .begin = [](Draft &draft) { draft.row.clear(); },
                           .end = [](Draft &draft) { draft.addRow(); }};

constexpr Shape<Draft> tableTo(void (*take)(Draft &))
{
    return {.what = "a list per class of a number per level",
            .element = &row,
            .begin = [](Draft &draft) { draft.rows.clear(); },
            .end = take};
}

// --- options ---

Weights &weights(Draft &draft) { return draft.plan.options.engine.weights; }

template <double Weights::*weight>
constexpr Shape<Draft> weightOf{.what = "a number", .number = [](Draft &draft, double value) {
                                    weights(draft).*weight = value;
                                }};

constexpr Member<Draft> weightMembers[] = {
    {"fortz", &weightOf<&Weights::fortz>},
    {"loadBalance", &weightOf<&Weights::loadBalance>},
    {"load", &weightOf<&Weights::load>},
    {"squaredLoad", &weightOf<&Weights::squaredLoad>},
    {"utilization", &weightOf<&Weights::utilization>},
    {"squaredUtilization", &weightOf<&Weights::squaredUtilization>},
    {"delay", &weightOf<&Weights::delay>},
};

constexpr Shape<Draft> weightsObject{.what = "weights", .members = weightMembers};
constexpr Shape<Draft> preemptionPrices = tableTo([](Draft &draft) { draft.setPrices(); });

template <bool Options::*option>
constexpr Shape<Draft> engineFlag{.what = "true or false", .flag = [](Draft &draft, bool value) {
                                      draft.plan.options.engine.*option = value;
                                  }};

constexpr Shape<Draft> order{.what = "an order", .text = [](Draft &draft, std::string &word) {
                                 draft.plan.options.order = orderFor(word);
                             }};

constexpr Shape<Draft> preempts{.what = "true or false", .flag = [](Draft &draft, bool value) {
                                    draft.plan.options.preempts = value;
                                }};

constexpr Shape<Draft> retryRounds{.what = "an integer of 0 or more",
                                   .integer = [](Draft &draft, std::int64_t rounds) {
                                       draft.plan.options.retryRounds = count(rounds);
                                   }};

constexpr Shape<Draft> levelScheme{
    .what = "how a level is protected",
    .text = [](Draft &draft, std::string &word) { draft.addProtection(schemeFor(word)); }};

constexpr Shape<Draft> protection{.what = "a list of how levels are protected",
                                  .element = &levelScheme};

constexpr Member<Draft> optionMembers[] = {
    {"weights", &weightsObject},
    {"preemptionPrices", &preemptionPrices},
    {"testsCapacity", &engineFlag<&Options::testsCapacity>},
    {"explainsRefusals", &engineFlag<&Options::explainsRefusals>},
    {"order", &order},
    {"preempts", &preempts},
    {"retryRounds", &retryRounds},
    {"protection", &protection},
};

// --- what links reserve ---

constexpr Shape<Draft> useNumber{
    .what = "the id of a link",
    .integer = [](Draft &draft, std::int64_t id) { expectNextId(id, draft.plan.use.size()); }};

constexpr Shape<Draft> primaryUse =
    tableTo([](Draft &draft) { draft.use.primary = draft.takeRows(); });
constexpr Shape<Draft> totalUse = tableTo([](Draft &draft) { draft.use.total = draft.takeRows(); });

constexpr Member<Draft> useMembers[] = {
    {"link", &useNumber}, {"primary", &primaryUse}, {"total", &totalUse}};

constexpr Shape<Draft> use{.what = "the use of a link",
                           .members = useMembers,
                           .begin = [](Draft &draft) { draft.use = {}; },
                           .end = [](Draft &draft) { draft.addUse(); }};

constexpr Shape<Draft> setUpDemand{
    .what = "the id of a demand",
    .integer = [](Draft &draft, std::int64_t id) { draft.addSetUp(id); }};

} // namespace

constexpr Shape<Draft> planOptions{
    .what = "options", .members = optionMembers, .begin = [](Draft &draft) {
        expectBefore(draft.hasLinks, "network");
        draft.setEngineSize();
    }};

constexpr Shape<Draft> useList{
    .what = "a list of uses of links", .element = &use, .begin = [](Draft &draft) {
        expectBefore(draft.hasLinks, "network");
    }};

constexpr Shape<Draft> setUpList{
    .what = "a list of demand ids", .element = &setUpDemand, .begin = [](Draft &draft) {
        expectBefore(draft.hasDemands, "demands");
    }};

} // namespace tarnex::formats::json
