#include "cli/plan_tables.h"

#include "planning/names.h"

namespace tarnex::cli
{

namespace
{

using planning::Amount;

void addAmount(std::vector<Cell> &row, const Amount &amount, Tone tone = Tone::plain)
{
    const Tone how = amount.number > 0 ? tone : Tone::plain;
    row.emplace_back(number(amount.number), how);
    row.emplace_back(Bandwidth{amount.bandwidth}, how);
}

std::vector<Cell> rowOf(const std::string &level, const planning::Fates &fates)
{
    std::vector<Cell> row{level};
    addAmount(row, fates.demanded);
    addAmount(row, fates.placed);
    addAmount(row, fates.refused, Tone::bad);
    addAmount(row, fates.preempted, Tone::bad);
    row.emplace_back(number(fates.leftOut.number));
    return row;
}

std::vector<Cell> rowOf(const std::string &level, const planning::Coverage &coverage)
{
    return {level, number(coverage.nodes.number), number(coverage.links.number),
            number(coverage.some.number), number(coverage.none.number)};
}

/** A table with a row per level and one for all of them. */
template <class RowFor>
void addLevels(Table &table, const Plan &plan, const planning::Summary &summary, RowFor rowFor)
{
    for (std::size_t level = 0; level < summary.levels.size(); ++level)
        table.rows.push_back(rowFor(plan.network.levels[level], summary.levels[level]));
    table.rows.push_back(rowFor("all", summary.all));
}

NameList linkNames(const Network &network, std::span<const LinkId> links)
{
    std::vector<std::string> names;
    for (const LinkId link : links)
        names.push_back(planning::nameOf(network, link));
    return {std::move(names)};
}

NameList nodeNames(const Network &network, std::span<const NodeId> nodes)
{
    std::vector<std::string> names;
    for (const NodeId node : nodes)
        names.push_back(network.nameOf(node));
    return {std::move(names)};
}

/** Who, from where to where, how much: the columns that tables of demands begin with. */
std::vector<Column> demandColumns()
{
    return {{"id", ""},         {"demand", "demand"}, {"from", "from"},          {"to", "to"},
            {"class", "class"}, {"level", "level"},   {"bandwidth", "bandwidth"}};
}

std::vector<Cell> demandRow(const Plan &plan, DemandId id)
{
    const Demand &demand = plan.demands[id.index()];
    const Network &network = plan.network;
    return {number(id.index()),
            planning::nameOf(network, plan.demands, id),
            network.nameOf(demand.ingress),
            network.nameOf(demand.egress),
            network.classes[static_cast<std::size_t>(demand.classType)],
            network.levels[static_cast<std::size_t>(demand.level)],
            Bandwidth{demand.bandwidth}};
}

/** Adds why something was refused to a row. */
void addRefusal(std::vector<Cell> &row, const Plan &plan, DemandId id, const Refusal &refusal)
{
    const planning::NamedRefusal why =
        planning::named(plan.network, plan.demands[id.index()], refusal);
    std::vector<std::string> links;
    for (const planning::NamedLink &link : why.inTheWay)
        links.push_back(link.name);
    row.emplace_back(std::string{textOf(why.reason)});
    row.emplace_back(Bandwidth{why.largestBandwidth});
    row.emplace_back(NameList{std::move(links)});
}

/** The row of a demand that has no LSP, or not the backups it was to have. */
struct RefusalRow {
    const Plan &plan;
    DemandId id;
    Table &table;

    std::vector<Cell> &begin(const char *what) const
    {
        std::vector<Cell> &row = table.rows.emplace_back(demandRow(plan, id));
        row.emplace_back(what);
        return row;
    }
    void operator()(std::monostate) const
    {
        std::vector<Cell> &row = begin("left out");
        row.insert(row.end(), 4, Cell{});
    }
    void operator()(const Refusal &refusal) const
    {
        addRefusal(begin("refused"), plan, id, refusal);
        table.rows.back().emplace_back();
    }
    void operator()(const PreemptedLsp &preempted) const
    {
        std::vector<Cell> &row = begin("preempted");
        if (preempted.retry)
            addRefusal(row, plan, id, *preempted.retry);
        else
            row.insert(row.end(), 3, Cell{});
        row.emplace_back(planning::nameOf(plan.network, plan.demands, preempted.by));
    }
    void operator()(const PlannedLsp &lsp) const
    {
        if (!lsp.unprotected)
            return;
        addRefusal(begin("not protected"), plan, id, *lsp.unprotected);
        table.rows.back().emplace_back();
    }
};

DemandId demandAt(std::size_t index) { return DemandId{static_cast<std::int32_t>(index)}; }

} // namespace

NodeNames namesOf(const Network &network, std::span<const NodeId> path)
{
    NodeNames names;
    for (const NodeId node : path)
        names.push_back(network.nameOf(node));
    return names;
}

Table levelsOf(const Plan &plan, const planning::Summary &summary)
{
    Table table{.key = "levels",
                .title = "Demands",
                .columns = {{"level", "level"},
                            {"demanded", "demanded"},
                            {"demandedBandwidth", "bandwidth"},
                            {"placed", "placed"},
                            {"placedBandwidth", "bandwidth"},
                            {"refused", "refused"},
                            {"refusedBandwidth", "bandwidth"},
                            {"preempted", "preempted"},
                            {"preemptedBandwidth", "bandwidth"},
                            {"leftOut", summary.all.leftOut.number > 0 ? "left out" : ""}}};
    addLevels(table, plan, summary, [](const std::string &level, const planning::Fates &fates) {
        return rowOf(level, fates);
    });
    return table;
}

Table reasonsOf(const planning::Summary &summary)
{
    Table table{.key = "reasons",
                .title = "Why not",
                .columns = {{"what", "what"},
                            {"reason", "reason"},
                            {"number", "number"},
                            {"bandwidth", "bandwidth"}}};
    const auto add = [&table](const char *what, const auto &amounts) {
        for (std::size_t i = 0; i < planning::nbReasons; ++i)
            if (const Amount &amount = amounts[i]; amount.number > 0)
                table.rows.push_back({what, std::string{textOf(static_cast<Reason>(i))},
                                      number(amount.number), Bandwidth{amount.bandwidth}});
    };
    add("demands refused", summary.refused);
    add("LSPs not protected", summary.unprotected);
    return table;
}

Table coverageOf(const Plan &plan, const planning::Summary &summary)
{
    Table table{.key = "coverage",
                .title = "LSPs protected against the failure of",
                .columns = {{"level", "level"},
                            {"nodes", "links and nodes"},
                            {"links", "all links"},
                            {"some", "some links"},
                            {"none", "nothing"}}};
    addLevels(table, plan, summary, [](const std::string &level, const planning::Fates &fates) {
        return rowOf(level, fates.coverage);
    });
    return table;
}

Facts protectionCost(const planning::Summary &summary)
{
    const planning::ProtectionCost &cost = summary.cost;
    const double saved = cost.dedicated > 0.0 ? 1.0 - cost.shared / cost.dedicated : 0.0;
    return {"protection",
            "Bandwidth reserved, all links added up",
            {{"primaryBandwidth", "for LSPs", Bandwidth{cost.primary}},
             {"backups", "backups", number(summary.nbBackups)},
             {"dedicatedBandwidth", "for backups, if none were shared", Bandwidth{cost.dedicated}},
             {"sharedBandwidth", "for backups, as they share", Bandwidth{cost.shared}},
             {"saved", "saved by sharing", Ratio{saved}}}};
}

Table loadsOf(const Plan &plan, const std::vector<planning::LinkLoad> &loads, std::string key,
              std::string title)
{
    Table table{.key = std::move(key),
                .title = std::move(title),
                .columns = {{"link", "link"},
                            {"class", "class"},
                            {"capacity", "capacity"},
                            {"primary", "for LSPs"},
                            {"reserved", "with backups"},
                            {"utilization", "in use"}}};
    for (const planning::LinkLoad &load : loads)
        table.rows.push_back({planning::nameOf(plan.network, load.link),
                              plan.network.classes[static_cast<std::size_t>(load.classType)],
                              Bandwidth{load.capacity}, Bandwidth{load.primary},
                              Bandwidth{load.reserved}, Ratio{load.utilization()}});
    return table;
}

Table lspsOf(const Plan &plan)
{
    Table table{.key = "lsps", .title = "LSPs", .columns = demandColumns(), .ifEmpty = "No LSPs"};
    table.columns.push_back({"backups", "backups"});
    table.columns.push_back({"path", "path"});
    for (std::size_t i = 0; i < plan.outcomes.size(); ++i) {
        const auto *const lsp = std::get_if<PlannedLsp>(&plan.outcomes[i]);
        if (lsp == nullptr)
            continue;
        std::vector<Cell> &row = table.rows.emplace_back(demandRow(plan, demandAt(i)));
        row.emplace_back(number(lsp->backups.size()));
        row.emplace_back(namesOf(plan.network, lsp->path));
    }
    return table;
}

Table backupTable()
{
    return {.key = "backups",
            .title = "Backups",
            .columns = {{"demand", "of"},
                        {"kind", "kind"},
                        {"protectedLinks", "for links"},
                        {"protectedNodes", "for nodes"},
                        {"path", "path"}}};
}

void addBackups(Table &table, const Network &network, const PlannedLsp &lsp,
                const std::string &demand)
{
    for (const PlannedBackup &backup : lsp.backups)
        table.rows.push_back({demand, backup.kind == LspKind::globalBackup ? "global" : "local",
                              linkNames(network, backup.protectedLinks),
                              nodeNames(network, backup.protectedNodes),
                              namesOf(network, backup.path)});
}

Table backupsOf(const Plan &plan)
{
    Table table = backupTable();
    table.ifEmpty = "No backups";
    for (std::size_t i = 0; i < plan.outcomes.size(); ++i)
        if (const auto *const lsp = std::get_if<PlannedLsp>(&plan.outcomes[i]))
            addBackups(table, plan.network, *lsp,
                       planning::nameOf(plan.network, plan.demands, demandAt(i)));
    return table;
}

Table refusalsOf(const Plan &plan)
{
    Table table{.key = "refusals",
                .title = "What was refused or had to give way",
                .columns = demandColumns(),
                .ifEmpty = "Nothing was refused"};
    table.columns.insert(table.columns.end(), {{"what", "what"},
                                               {"reason", "reason"},
                                               {"largestBandwidth", "would fit"},
                                               {"inTheWay", "links in the way"},
                                               {"preemptedBy", "gave way to"}});
    for (std::size_t i = 0; i < plan.outcomes.size(); ++i)
        std::visit(RefusalRow{plan, demandAt(i), table}, plan.outcomes[i]);
    return table;
}

Table linksInTheWay(const planning::NamedRefusal &refusal)
{
    Table table{.key = "inTheWay",
                .title = "Links in the way",
                .columns = {{"link", "link"}, {"room", "room"}, {"capacity", "capacity"}}};
    for (const planning::NamedLink &link : refusal.inTheWay)
        table.rows.push_back({link.name, Bandwidth{link.room}, Bandwidth{link.capacity}});
    return table;
}

} // namespace tarnex::cli
