// What is read about failures under libFuzzer: sets of them and the lines of parts. A line that is
// read comes back the same from being written and read again.
#include "formats/remarks.h"
#include "planning/failure_lines.h"

#include <cstdint>
#include <cstdlib>

namespace
{

using namespace tarnex;
using namespace tarnex::planning;

Plan smallPlan()
{
    Plan plan;
    plan.network.classes = {"interactive", "data"};
    plan.network.levels = {"gold", "silver", "bronze"};
    for (const char *name : {"Denver", "KansasCity", "Sunnyvale", "Seattle"})
        plan.network.nodes.push_back({.name = name, .at = {}});
    for (int from = 0; from < 4; ++from)
        for (int to = 0; to < 4; ++to)
            if (from != to)
                plan.network.links.push_back({NodeId{from}, NodeId{to}, {1.0, 2.0}});
    plan.demands.resize(20);
    return plan;
}

template <class Again>
void expectSame(const std::string &line, Again again)
{
    if (again(line) != line)
        std::abort();
}

void readLine(std::string_view line, const Plan &plan)
{
    try {
        const std::string tried = lineOf(triedIn(line, plan));
        expectSame(tried, [&](const std::string &text) { return lineOf(triedIn(text, plan)); });
    } catch (const LineError &) { // it may be a header
    }
    try {
        const std::string header = lineOf(headerIn(line));
        expectSame(header, [](const std::string &text) { return lineOf(headerIn(text)); });
    } catch (const LineError &) { // or neither
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Plan plan = smallPlan();
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    readLine(text.substr(0, text.find('\n')), plan);
    try {
        formats::parseFailureSets(text, "input", plan.network);
    } catch (const InputError &) { // it need not be right
    }
    return 0;
}
