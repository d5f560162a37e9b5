// JSON under libFuzzer: fuzz_json reads documents of ours, fuzz_nodelink graphs of others. Whatever
// is read is written and read again, and must be the same.
#include "formats/json/json.h"
#include "formats/write.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace
{

using namespace tarnex;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

#ifdef FUZZ_NODELINK

/** Keys that nodes have, whatever the parser made of them, are texts that JSON can hold. */
void check(std::string_view text)
{
    const formats::Source source = formats::parseNodeLink(text, "input");
    for (const formats::SourceEdge &edge : source.edges)
        require(edge.capacity.empty() || edge.capacity.front() >= 0.0);
    Remarks remarks;
    const formats::Input input = formats::settle(source, {}, remarks);
    std::ostringstream out;
    formats::writeNetwork(out, input.network, input.demands);
    require(formats::readJson(out.str(), "written", {}).network == input.network);
}

#else

std::string written(const formats::Input &input)
{
    std::ostringstream out;
    if (input.plan)
        formats::writePlan(out, *input.plan);
    else if (input.network.links.empty())
        formats::writeDemands(out, input.network, input.demands);
    else
        formats::writeNetwork(out, input.network, input.demands);
    return out.str();
}

void check(std::string_view text)
{
    const std::string once = written(formats::readJson(text, "input", {}));
    require(written(formats::readJson(once, "written", {})) == once);
}

#endif

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    try {
        check({reinterpret_cast<const char *>(data), size});
    } catch (const InputError &) {
        return 0;
    }
    return 0;
}
