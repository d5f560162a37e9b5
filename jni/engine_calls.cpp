#include "engine_calls.h"

#include <limits>
#include <utility>

using namespace tarnex;

namespace
{

/** Takes the arguments of a call one after the other. */
class Reader
{
public:
    explicit Reader(std::span<const double> list) : rest(list) {}

    double number()
    {
        if (rest.empty())
            throw WrongUse("An argument is missing.");
        const double value = rest.front();
        rest = rest.subspan(1);
        return value;
    }
    int integer()
    {
        const double value = number();
        using Limits = std::numeric_limits<int>;
        if (!(value >= Limits::min() && value <= Limits::max()))
            throw WrongUse("An integer is out of range.");
        return static_cast<int>(value);
    }
    bool flag() { return number() != 0.0; }
    template <class Kind>
    Kind id()
    {
        return Kind{integer()};
    }
    template <class Enum>
    Enum choice(Enum last)
    {
        const int value = integer();
        if (value < 0 || value > static_cast<int>(last))
            throw WrongUse("A choice is out of range.");
        return static_cast<Enum>(value);
    }
    bool isAtEnd() const { return rest.empty(); }
    std::span<const double> remainder() const { return rest; }
    /** Ids behind their number. */
    template <class Kind>
    std::vector<Kind> ids()
    {
        const int length = integer();
        if (length < 0 || static_cast<std::size_t>(length) > rest.size())
            throw WrongUse("A list is longer than the arguments.");
        std::vector<Kind> list;
        list.reserve(static_cast<std::size_t>(length));
        for (int k = 0; k < length; ++k)
            list.push_back(id<Kind>());
        return list;
    }

private:
    std::span<const double> rest;
};

/** A request together with what it borrows. */
struct HeldRequest {
    explicit HeldRequest(Reader &in)
    {
        request.ingress = in.id<NodeId>();
        request.egress = in.id<NodeId>();
        request.bandwidth = in.number();
        request.classType = in.integer();
        request.level = in.integer();
        request.mayPreempt = in.flag();
        request.id = in.id<LspId>();
        avoided = in.ids<LinkId>();
        request.avoid = avoided;
    }
    HeldRequest(HeldRequest &&) = default;
    HeldRequest(const HeldRequest &) = delete;

    Request request;

private:
    std::vector<LinkId> avoided; // which the request goes on to refer to when this is moved
};

/** Writes an answer value by value; lists stand behind their lengths. */
class Writer
{
public:
    void put(double value) { answer.values.push_back(value); }
    void put(LspKind kind) { put(static_cast<double>(kind)); }
    template <class Tag>
    void put(Id<Tag> id)
    {
        put(static_cast<double>(id.value));
    }
    template <class Item>
    void put(const std::vector<Item> &list)
    {
        put(static_cast<double>(list.size()));
        for (const Item &item : list)
            put(item);
    }
    void put(const Path &path)
    {
        put(path.nodes);
        put(path.links);
    }
    void put(const Lsp &lsp)
    {
        put(lsp.id);
        put(lsp.kind);
        put(lsp.classType);
        put(lsp.level);
        put(lsp.bandwidth);
        put(lsp.path);
        put(lsp.protects.primary);
        put(lsp.protects.links);
        put(lsp.protects.nodes);
    }
    void put(const LinkInTheWay &link)
    {
        put(link.link);
        put(link.room);
    }
    void put(const Placement &placement)
    {
        put(placement.id);
        put(placement.path);
        put(placement.score.value_or(std::numeric_limits<double>::quiet_NaN()));
        put(placement.victims);
    }
    void put(const Protection &protection) { put(protection.backups); }
    void put(const Refusal &refusal)
    {
        put(static_cast<double>(refusal.reason));
        put(refusal.largestBandwidth);
        put(refusal.inTheWay);
        answer.texts.push_back(refusal.sentence);
    }
    /** 1 and the value, or 0 and the refusal. */
    template <class Value>
    void put(const Result<Value> &result)
    {
        put(result ? 1.0 : 0.0);
        if (result)
            put(*result);
        else
            put(result.refusal());
    }
    /** 0 and the refusal, or 1. */
    void put(const std::optional<Refusal> &refusal)
    {
        put(refusal ? 0.0 : 1.0);
        if (refusal)
            put(*refusal);
    }
    void put(const PerLevel &table)
    {
        for (const auto &row : table) {
            for (const double value : row)
                put(value);
        }
    }
    void put(const LinkUse &use)
    {
        put(use.id);
        put(use.from);
        put(use.to);
        for (const double capacity : use.capacity)
            put(capacity);
        put(use.primary);
        put(use.shared);
        put(use.total);
    }
    void reserve(std::size_t count) { answer.values.reserve(count); }
    EngineAnswer answer;
};

/** The operations, in the order of the constants of the Java class. */
enum class Operation {
    addNode,
    addLink,
    removeLink,
    removeNode,
    place,
    placeAll,
    propose,
    protect,
    addPrimary,
    addBackup,
    remove,
    explain,
    explainProtection,
    counts,
    nodes,
    lsps,
    linkBetween,
    use,
    uses,
    lspsOn,
    has,
    lsp,
    backupsOf,
    trail
};

void addLink(Engine &engine, Reader &in)
{
    LinkSpec link;
    link.id = in.id<LinkId>();
    link.from = in.id<NodeId>();
    link.to = in.id<NodeId>();
    link.capacity = in.remainder();
    engine.addLink(link);
}

void protect(Engine &engine, Reader &in, Writer &out)
{
    const auto primary = in.id<LspId>();
    const auto scheme = in.choice(Scheme::localOrGlobal);
    const auto firstId = in.id<LspId>();
    out.put(engine.protect(primary, scheme, firstId,
                           in.flag() ? std::optional{in.number()} : std::nullopt));
}

/** A result for each, behind one another. */
void placeAll(Engine &engine, Reader &in, Writer &out)
{
    std::vector<HeldRequest> held;
    while (!in.isAtEnd())
        held.emplace_back(in);
    std::vector<Request> requests;
    requests.reserve(held.size());
    for (const HeldRequest &one : held)
        requests.push_back(one.request);
    for (const Result<Placement> &result : engine.placeAll(requests))
        out.put(result);
}

void addPrimary(Engine &engine, Reader &in, Writer &out)
{
    const HeldRequest held{in};
    out.put(engine.add(held.request, in.ids<NodeId>()));
}

void addBackup(Engine &engine, Reader &in, Writer &out)
{
    BackupSpec backup;
    backup.primary = in.id<LspId>();
    backup.kind = in.choice(LspKind::globalBackup);
    backup.id = in.id<LspId>();
    const auto path = in.ids<NodeId>();
    backup.path = path;
    out.put(engine.add(backup));
}

void explainProtection(Engine &engine, Reader &in, Writer &out)
{
    const auto primary = in.id<LspId>();
    out.put(engine.explainProtection(primary, in.choice(Scheme::localOrGlobal)));
}

void putCounts(const Engine &engine, Writer &out)
{
    out.put(static_cast<double>(engine.nbNodes()));
    out.put(static_cast<double>(engine.nbLinks()));
    out.put(static_cast<double>(engine.nbLsps()));
}

/** All links, one behind the other. */
void putUses(const Engine &engine, Writer &out)
{
    constexpr std::size_t perLink = 3 + maxClassTypes * (1 + 3 * maxLevels);
    const std::vector<LinkId> links = engine.links();
    out.reserve(links.size() * perLink);
    for (const LinkId link : links)
        out.put(engine.use(link));
}

void putLinkBetween(const Engine &engine, Reader &in, Writer &out)
{
    const auto from = in.id<NodeId>();
    out.put(engine.linkBetween(from, in.id<NodeId>()).value_or(LinkId{}));
}

void read(const Engine &engine, Operation operation, Reader &in, Writer &out)
{
    switch (operation) {
    case Operation::counts:
        return putCounts(engine, out);
    case Operation::nodes:
        return out.put(engine.nodes());
    case Operation::lsps:
        return out.put(engine.lsps());
    case Operation::linkBetween:
        return putLinkBetween(engine, in, out);
    case Operation::use:
        return out.put(engine.use(in.id<LinkId>()));
    case Operation::uses:
        return putUses(engine, out);
    case Operation::lspsOn:
        return out.put(engine.lspsOn(in.id<LinkId>()));
    case Operation::has:
        return out.put(engine.has(in.id<LspId>()) ? 1.0 : 0.0);
    case Operation::lsp:
        return out.put(engine.lsp(in.id<LspId>()));
    case Operation::backupsOf:
        return out.put(engine.backupsOf(in.id<LspId>()));
    case Operation::trail:
        return out.answer.texts.push_back(engine.trail());
    default:
        throw WrongUse("There is no such operation.");
    }
}

/** What changes an engine, or computes on it; else what only reads. */
void perform(Engine &engine, Operation operation, Reader &in, Writer &out)
{
    switch (operation) {
    case Operation::addNode:
        return engine.addNode(in.id<NodeId>());
    case Operation::addLink:
        return addLink(engine, in);
    case Operation::removeLink:
        return out.put(engine.removeLink(in.id<LinkId>()));
    case Operation::removeNode:
        return out.put(engine.removeNode(in.id<NodeId>()));
    case Operation::place:
        return out.put(engine.place(HeldRequest{in}.request));
    case Operation::placeAll:
        return placeAll(engine, in, out);
    case Operation::propose:
        return out.put(engine.propose(HeldRequest{in}.request));
    case Operation::protect:
        return protect(engine, in, out);
    case Operation::addPrimary:
        return addPrimary(engine, in, out);
    case Operation::addBackup:
        return addBackup(engine, in, out);
    case Operation::remove:
        return engine.remove(in.id<LspId>());
    case Operation::explain:
        return out.put(engine.explain(HeldRequest{in}.request));
    case Operation::explainProtection:
        return explainProtection(engine, in, out);
    default:
        read(engine, operation, in, out);
    }
}

} // namespace

Options readOptions(std::span<const double> arguments)
{
    Reader in{arguments};
    Options options;
    options.classTypes = in.integer();
    options.levels = in.integer();
    options.testsCapacity = in.flag();
    options.explainsRefusals = in.flag();
    options.allowsBackups = in.flag();
    Weights &weights = options.weights;
    for (double *weight :
         {&weights.fortz, &weights.loadBalance, &weights.load, &weights.squaredLoad,
          &weights.utilization, &weights.squaredUtilization, &weights.delay})
        *weight = in.number();
    for (auto &row : options.preemptionPrices) {
        for (double &price : row)
            price = in.number();
    }
    return options;
}

EngineAnswer callEngine(Engine &engine, int operation, std::span<const double> arguments)
{
    Reader in{arguments};
    Writer out;
    perform(engine, static_cast<Operation>(operation), in, out);
    return std::move(out.answer);
}
