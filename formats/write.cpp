#include "formats/write.h"

#include "formats/json/json.h"
#include "formats/writers.h"

#include <stdexcept>

namespace tarnex::formats
{

namespace
{

/** The network goes to a `.graph` file, demands to a `.demands` file beside it. */
void writeRepetita(const std::filesystem::path &file, const Network &network,
                   std::span<const Demand> demands)
{
    std::filesystem::path graph = file;
    if (graph.extension() == ".demands")
        graph.replace_extension(".graph");
    replaceFile(graph, [&](std::ostream &out) { writeRepetitaGraph(out, network); });
    std::filesystem::path matrix = file;
    matrix.replace_extension(".demands");
    if (!demands.empty())
        replaceFile(matrix,
                    [&](std::ostream &out) { writeRepetitaDemands(out, network, demands); });
}

} // namespace

bool canWrite(Format format)
{
    switch (format) {
    case Format::sndlibNative:
    case Format::graphml:
    case Format::repetita:
    case Format::dot:
    case Format::json:
        return true;
    default:
        return false;
    }
}

void write(const std::filesystem::path &file, Format format, const Network &network,
           std::span<const Demand> demands, Remarks &remarks)
{
    if (!canWrite(format))
        throw std::invalid_argument(std::string(nameOf(format)) + " is a format that is read only");
    noteLosses(format, network, demands, remarks);
    if (format == Format::repetita) {
        writeRepetita(file, network, demands);
        return;
    }
    replaceFile(file, [&](std::ostream &out) {
        if (format == Format::sndlibNative)
            writeSndlib(out, network, demands);
        else if (format == Format::graphml)
            writeGraphml(out, network);
        else if (format == Format::dot)
            writeDot(out, network);
        else
            writeNetwork(out, network, demands);
    });
}

} // namespace tarnex::formats
