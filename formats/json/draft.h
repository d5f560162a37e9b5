/** A document of ours while it is being read: what is finished, and what is under way. */
#ifndef TARNEX_FORMATS_JSON_DRAFT_H
#define TARNEX_FORMATS_JSON_DRAFT_H

#include "formats/json/text_stream.h"
#include "formats/plan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tarnex::formats::json
{

/** What a document is. */
enum class Kind { unknown, network, demands, plan };

/**
 * Networks and demands are collected in a plan, whatever the kind. The functions throw Problem at
 * what is wrong.
 */
struct Draft {
    explicit Draft(const TextStream &stream) : text(&stream) {}

    const TextStream *text; // only while it is being read
    Kind kind = Kind::unknown;
    std::string digest; // of the whole text, once that has been read
    Plan plan;
    bool hasNodes = false; // whether that list has been read
    bool hasLinks = false;
    bool hasDemands = false;

    // Under way, each of its kind.
    Node node;
    std::optional<double> longitude;
    std::optional<double> latitude;
    NodeId from; // of a link or demand
    NodeId to;
    Demand demand;
    Outcome outcome;
    PlannedLsp lsp;
    PlannedBackup backup;
    PreemptedLsp preempted;
    Refusal refusal;
    LinkInTheWay inTheWay;
    PlannedUse use;
    std::vector<NodeId> nodeIds;
    std::vector<LinkId> linkIds;
    std::vector<double> row;
    std::vector<std::vector<double>> rows;

    void setKind(const std::string &schema);
    /** One more name of a class type or level. */
    static void addName(std::vector<std::string> &names, std::string &name);
    void beginDemand();
    void addNode();
    void addLink();
    void addDemand();
    void addRow();
    /** `rows`, one per class type with a number per level. */
    std::vector<std::vector<double>> takeRows();
    void addUse();
    void addSetUp(std::int64_t demandId);

    /** The engine's numbers of class types and levels are the network's. */
    void setEngineSize();
    void setPrices();
    void addProtection(LevelScheme scheme);

    NodeId nodeId(std::int64_t id) const;
    LinkId linkId(std::int64_t id) const;
    /** The node of a name; a document of demands has all that it names. */
    NodeId nodeNamed(const std::string &name);
    /** `end` is said to be `said`, and may have been said to be something before. */
    static void setEnd(NodeId &end, NodeId said);
    /** Takes what became of the demand under way. */
    void setOutcome(Outcome &&became);
    void addBackup();

    /** The whole document is there: looks at what only then can be seen. */
    void finish() const;

private:
    void checkPreempted() const;

    std::unordered_map<std::string, NodeId> nodesByName;
    std::unordered_set<std::uint64_t> nodePairs; // with a link
    std::vector<bool> isSetUp;                   // by demand
    DemandId lastPreempting;                     // the largest that is named
};

/** Problem unless `isThere`: `member` has to come before what is being read. */
void expectBefore(bool isThere, const char *member);

/** Problem if a list of names is empty. */
void expectSome(const std::vector<std::string> &names);

/** An id that stands for the `next` thing in a list; Problem if it is another. */
void expectNextId(std::int64_t id, std::size_t next);

/** A number that is not negative; Problem otherwise. */
double amount(double value);

/** A capacity or what is asked for: an amount that sums and other units leave finite. */
double bandwidth(double value);

/** A number of times, 0 or more; Problem otherwise. */
int count(std::int64_t value);

/** The place of a text among some; Problem when it is not there. */
int placeAmong(const std::vector<std::string> &names, const std::string &name);

} // namespace tarnex::formats::json

#endif
