#include "formats/json/parts.h"
#include "formats/json/schemas.h"
#include "formats/write.h"

#include <span>
#include <stdexcept>

namespace tarnex::formats
{

namespace json
{

namespace
{

using Table = std::vector<std::vector<double>>;

void writeTable(Output &out, const Table &table)
{
    out.list(table, [&](const std::vector<double> &row) {
        out.list(row, [&](double value) { out.number(value); });
    });
}

template <class Id>
void writeIds(Output &out, const std::vector<Id> &ids)
{
    out.list(ids, [&](Id id) { out.integer(id.value); });
}

// --- options ---

/** The prices of the class types and levels that the network has. */
Table pricesOf(const Plan &plan)
{
    Table prices;
    for (std::size_t classType = 0; classType < plan.network.classes.size(); ++classType) {
        const auto &row = plan.options.engine.preemptionPrices.at(classType);
        prices.emplace_back(row.begin(),
                            row.begin() + static_cast<std::ptrdiff_t>(plan.network.levels.size()));
    }
    return prices;
}

void writeWeights(Output &out, const Weights &weights)
{
    out.raw(R"({"fortz":)").number(weights.fortz);
    out.raw(R"(,"loadBalance":)").number(weights.loadBalance);
    out.raw(R"(,"load":)").number(weights.load);
    out.raw(R"(,"squaredLoad":)").number(weights.squaredLoad);
    out.raw(R"(,"utilization":)").number(weights.utilization);
    out.raw(R"(,"squaredUtilization":)").number(weights.squaredUtilization);
    out.raw(R"(,"delay":)").number(weights.delay).raw("}");
}

void writeOptions(Output &out, const Plan &plan)
{
    const PlanOptions &options = plan.options;
    writeWeights(out.raw(R"({"weights":)"), options.engine.weights);
    writeTable(out.raw(",\n\"preemptionPrices\":"), pricesOf(plan));
    out.raw(",\n\"testsCapacity\":").flag(options.engine.testsCapacity);
    out.raw(R"(,"explainsRefusals":)").flag(options.engine.explainsRefusals);
    out.raw(R"(,"order":)").text(wordFor(options.order));
    out.raw(R"(,"preempts":)").flag(options.preempts);
    out.raw(R"(,"retryRounds":)").integer(options.retryRounds);
    out.raw(R"(,"protection":)").list(options.protection, [&](const LevelScheme &scheme) {
        out.text(wordFor(scheme));
    });
    out.raw("}");
}

// --- what became of a demand ---

void writeRefusal(Output &out, const Refusal &refusal)
{
    out.raw(R"({"reason":)").text(textOf(refusal.reason));
    out.raw(R"(,"sentence":)").text(refusal.sentence);
    out.raw(R"(,"largestBandwidth":)").number(refusal.largestBandwidth);
    out.raw(R"(,"inTheWay":)").list(refusal.inTheWay, [&](const LinkInTheWay &one) {
        out.raw(R"({"link":)").integer(one.link.value).raw(R"(,"room":)").number(one.room).raw("}");
    });
    out.raw("}");
}

void writeBackup(Output &out, const PlannedBackup &backup)
{
    out.raw(R"({"kind":)").text(wordFor(backup.kind));
    writeIds(out.raw(R"(,"path":)"), backup.path);
    writeIds(out.raw(R"(,"links":)"), backup.protectedLinks);
    writeIds(out.raw(R"(,"nodes":)"), backup.protectedNodes);
    out.raw("}");
}

/** Writes the member of a demand that says what became of it. */
struct OutcomeWriter {
    Output &out;

    void operator()(std::monostate /*leftOut*/) const {}

    void operator()(const PlannedLsp &lsp) const
    {
        writeIds(out.raw(R"(,"lsp":{"path":)"), lsp.path);
        if (lsp.score)
            out.raw(R"(,"score":)").number(*lsp.score);
        if (!lsp.backups.empty())
            out.raw(R"(,"backups":)").list(lsp.backups, [&](const PlannedBackup &backup) {
                writeBackup(out, backup);
            });
        if (lsp.unprotected)
            writeRefusal(out.raw(R"(,"unprotected":)"), *lsp.unprotected);
        out.raw("}");
    }

    void operator()(const PreemptedLsp &preempted) const
    {
        out.raw(R"(,"preempted":{"by":)").integer(preempted.by.value);
        if (preempted.retry)
            writeRefusal(out.raw(R"(,"retry":)"), *preempted.retry);
        out.raw("}");
    }

    void operator()(const Refusal &refusal) const
    {
        writeRefusal(out.raw(R"(,"refused":)"), refusal);
    }
};

void writeDemand(Output &out, const Plan &plan, std::size_t id)
{
    writeDemandMembers(out.raw("{"), plan.network, plan.demands[id], id);
    std::visit(OutcomeWriter{out}, plan.outcomes[id]);
    out.raw("}");
}

void writeUse(Output &out, const PlannedUse &use, std::size_t link)
{
    writeTable(out.raw(R"({"link":)").integer(link).raw(R"(,"primary":)"), use.primary);
    writeTable(out.raw(R"(,"total":)"), use.total);
    out.raw("}");
}

} // namespace

} // namespace json

void writePlan(std::ostream &out, const Plan &plan)
{
    if (plan.outcomes.size() != plan.demands.size())
        throw std::invalid_argument("a plan without an outcome for each demand");
    json::Output to(out);
    json::beginDocument(to, json::planSchema);
    json::writeNetworkMembers(to.raw("\"network\":{"), plan.network);
    json::writeOptions(to.raw("},\n\"options\":"), plan);
    std::size_t id = 0;
    to.raw(",\n\"demands\":")
        .list(
            plan.demands, [&](const Demand &) { json::writeDemand(to, plan, id++); }, "\n");
    id = 0;
    to.raw(",\n\"use\":")
        .list(
            plan.use, [&](const PlannedUse &use) { json::writeUse(to, use, id++); }, "\n");
    json::writeIds(to.raw(",\n\"setUp\":"), plan.setUp);
    to.raw("}\n").finish();
}

} // namespace tarnex::formats
