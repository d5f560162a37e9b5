// Documents of ours under libFuzzer: whatever is read is written, read again and written again,
// which must come to the same bytes.
#include "formats/json/json.h"
#include "formats/write.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace
{

using namespace tarnex;

/** As a network if it is enough of one, else as demands. */
std::string written(const formats::Input &input)
{
    std::ostringstream out;
    if (input.plan)
        formats::writePlan(out, *input.plan);
    else if (input.network.classes.empty() || input.network.levels.empty())
        formats::writeDemands(out, input.network, input.demands);
    else
        formats::writeNetwork(out, input.network, input.demands);
    return out.str();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    formats::Input input;
    try {
        input = formats::readJson({reinterpret_cast<const char *>(data), size}, "input", {});
    } catch (const InputError &) {
        return 0;
    }
    const std::string once = written(input);
    if (written(formats::readJson(once, "written", {})) != once)
        std::abort();
    return 0;
}
