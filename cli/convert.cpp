#include "cli/command.h"
#include "cli/errors.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/text.h"
#include "formats/write.h"

#include <filesystem>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using formats::Format;

const std::vector<std::pair<std::string, std::optional<Format>>> &written()
{
    static const std::vector<std::pair<std::string, std::optional<Format>>> all{
        {"json", Format::json},
        {"sndlib", Format::sndlibNative},
        {"graphml", Format::graphml},
        {"repetita", Format::repetita},
        {"dot", Format::dot}};
    return all;
}

const std::vector<std::pair<std::string, Format>> &suffixes()
{
    static const std::vector<std::pair<std::string, Format>> all{{".json", Format::json},
                                                                 {".txt", Format::sndlibNative},
                                                                 {".snd", Format::sndlibNative},
                                                                 {".graphml", Format::graphml},
                                                                 {".graph", Format::repetita},
                                                                 {".dot", Format::dot},
                                                                 {".gv", Format::dot}};
    return all;
}

class ConvertCommand : public Command
{
public:
    const Page &page() const override
    {
        static const Page page{
            .name = "convert",
            .summary = "writes a network with its demands in another format",
            .purpose =
                R"(Reads a network, with the demands in its file or in another one, and writes it as tarnex JSON, SNDlib native, GraphML, Repetita or DOT. The suffix of OUT says which (.json, .txt or .snd, .graphml, .graph, .dot or .gv), or --to. With Repetita the demands go to a file of their own beside OUT, with the suffix .demands.

What a format cannot hold, as the classes of capacities, is said on standard error. A plan stays a plan as JSON; in the other formats only its network and demands are left.)",
            .examples = {{"As GraphML:", "tarnex convert abilene/abilene.network abilene.graphml"},
                         {"Network and demands in one file:",
                          "tarnex convert abilene/abilene.network abilene.json "
                          "--demands abilene/abilene.demands"}},
            .findings = {}};
        return page;
    }

    void declare(Declaration &declaration) override
    {
        declaration.file("IN", "A network or a plan, in any of the formats", in);
        declaration.file("OUT", "The file to write; one that is there is replaced", out);
        input.declareDemands(declaration);
        declaration.choice("--to", "NAME",
                           "The format to write, whatever the suffix: " + oneOf(wordsOf(written())),
                           written(), format);
        input.declareReading(declaration);
    }

    ExitStatus run() override
    {
        const Format target = format ? *format : formatOf(out);
        const NetworkInput read = readInput(in, input);
        if (read.plan && target == Format::json && input.demands.empty()) {
            replaceFiles({{out, [&](std::ostream &to) { formats::writePlan(to, *read.plan); }}});
            return ExitStatus::done;
        }
        Remarks remarks;
        if (read.plan)
            remarks.choose("what became of the demands", "left out");
        const std::vector<Demand> &demands =
            read.plan && input.demands.empty() ? read.plan->demands : read.demands;
        replaceFiles(formats::filesFor(out, target, read.theNetwork(), demands, remarks));
        tell(remarks);
        return ExitStatus::done;
    }

private:
    static Format formatOf(const std::string &file)
    {
        const std::string suffix = std::filesystem::path{file}.extension().string();
        for (const auto &[known, format] : suffixes())
            if (known == suffix)
                return format;
        throw UsageError(fmt::format("{}: no format goes with this suffix; expected {}, or --to "
                                     "NAME",
                                     file, oneOf(wordsOf(suffixes()))));
    }

    std::string in;
    std::string out;
    InputOptions input;
    std::optional<Format> format;
};

} // namespace

std::unique_ptr<Command> makeConvert() { return std::make_unique<ConvertCommand>(); }

} // namespace tarnex::cli
