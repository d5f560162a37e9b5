/**
 * The reader of one format under the fuzzer, FUZZED. What it accepts is settled, written in every
 * format and read again: the same nodes and links must come back.
 */
#include "formats/json/json.h"
#include "formats/parsers.h"
#include "formats/source.h"
#include "formats/writers.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <utility>

namespace
{

using namespace tarnex;
using namespace tarnex::formats;

constexpr Format fuzzed = Format::FUZZED;

/** Different choices for different inputs. */
ReadOptions chosenBy(std::uint8_t byte)
{
    ReadOptions options;
    options.parallel = byte % 2 == 0 ? ParallelLinks::sum : ParallelLinks::first;
    options.isStrict = byte % 16 == 15;
    if (byte % 8 >= 6)
        options.classes = {{"interactive", 0.3}, {"data", 0.7}};
    if (byte % 4 == 3)
        options.mix = {{"gold", 0.1}, {"silver", 0.3}, {"bronze", 0.6}};
    return options;
}

Input settled(const Source &source, const ReadOptions &options)
{
    Remarks remarks = source.remarks;
    return settle(source, options, remarks);
}

/** Demands between as many nodes as the first byte says. */
[[maybe_unused]] Input matrix(std::string_view text, const ReadOptions &options)
{
    Input input;
    std::vector<std::string> names;
    const std::size_t nbNames = text.empty() ? 0 : static_cast<std::uint8_t>(text[0]) % 8U;
    for (std::size_t i = 0; i < nbNames; ++i) {
        names.push_back(std::to_string(i));
        input.network.nodes.push_back({names[i], {}});
    }
    Remarks remarks;
    const Source source = parseMatrix(text.substr(text.empty() ? 0 : 1), "input", 1, names);
    input.demands = settleDemands(source, input.network, options, remarks);
    return input;
}

Input inputOf(std::string_view text, const ReadOptions &options)
{
    if constexpr (fuzzed == Format::matrix)
        return matrix(text, options);
    else
        return settled(parseSource(fuzzed, text, "input"), options);
}

void expectSame(const Network &before, const Network &after, std::string_view format)
{
    const bool isSame =
        before.nodes.size() == after.nodes.size() &&
        std::equal(before.links.begin(), before.links.end(), after.links.begin(), after.links.end(),
                   [](const Link &a, const Link &b) { return a.from == b.from && a.to == b.to; });
    if (isSame)
        return;
    std::fprintf(stderr, "another network comes back from %s\n", std::string(format).c_str());
    std::abort();
}

template <class Write>
void writeAndRead(const Input &input, Format format, Write write)
{
    std::ostringstream out;
    write(out);
    Remarks remarks;
    noteLosses(format, input.network, input.demands, remarks);
    const Input again = settled(parseSource(format, out.str(), "output"), {});
    expectSame(input.network, again.network, nameOf(format));
}

void writeEverywhere(const Input &input)
{
    const Network &network = input.network;
    writeAndRead(input, Format::sndlibNative,
                 [&](std::ostream &out) { writeSndlib(out, network, input.demands); });
    writeAndRead(input, Format::graphml, [&](std::ostream &out) { writeGraphml(out, network); });
    writeAndRead(input, Format::dot, [&](std::ostream &out) { writeDot(out, network); });
    writeAndRead(input, Format::repetita, [&](std::ostream &out) {
        writeRepetitaGraph(out, network);
        writeRepetitaDemands(out, network, input.demands);
    });
    std::ostringstream out;
    writeNetwork(out, network, input.demands);
    expectSame(network, readJson(out.str(), "output", {}).network, "json");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    Input input;
    try {
        detectFormat(text, "input");
    } catch (const InputError &) { // it need not be of any format
    }
    try {
        input = inputOf(text, chosenBy(size == 0 ? 0 : data[size - 1]));
    } catch (const InputError &) {
        return 0;
    }
    if (fuzzed != Format::matrix) // which has no network
        writeEverywhere(input);
    return 0;
}
